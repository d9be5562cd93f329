// Hinges: at nodes, where every beam end is hinged, and at the ends of single beams.

#include <string_view>
#include <vector>

#include "base/errorwriter.h"
#include "base/number_text.h"
#include "base/read_observer.h"
#include "model/constraint.h"
#include "model/elem.h"
#include "model/mesh.h"
#include "model/node.h"
#include "numeric/plex_range.h"
#include "problem/project.h"

namespace morlen {

namespace {

bool IsHingeCode(int code)
{
  return code == 11 || code == 10 || code == 1 || code == 0;
}

// Fixes the rotations of a node that no connection holds. A spring holds its rotation by
// itself.
void FixRotations(Node& node, int components)
{
  if (!node.constraint)
    node.constraint = std::make_unique<Constraint>(components);
  for (int k = TranslationsOf(components); k < components; ++k) {
    if (node.constraint->flags[k] == Constraint::kFree)
      node.constraint->flags[k] = Constraint::kPrescribed;
  }
}

}  // namespace

int Project::GiveHingeCode(int elemNumber) const
{
  constexpr int kContinuous = 11;
  const auto found = hingeCodes.find(elemNumber);
  return found == hingeCodes.end() ? kContinuous : found->second;
}

void Project::ReadFARotules(TextScan& text)
{
  for (int number = 0; ReadRecordNumber(text, number);)
    Attempt(&text, [&] { ReadHinge(text, number); });
  SkipBlockEnd(text);
}

void Project::ReadHinge(TextScan& text, int number)
{
  Node* node = FindNode(number);
  if (!node)
    Fatal("error: Trying to assign rotule to unknown node\n");
  node->hasRotule = true;
  hasHinges = true;
  if (text.ReadRestOfLine().empty())
    Fatal("Not reading correctly the rotules. Number=", number, "\n");
}

void Project::ReadFARotulesElems(TextScan& text)
{
  for (int number = 0; ReadRecordNumber(text, number);)
    Attempt(&text, [&] { ReadElemHinges(text, number); });
  SkipBlockEnd(text);
}

void Project::ReadElemHinges(TextScan& text, int number)
{
  if (!GiveElem(number))
    Fatal("error: trying to assign a rotule to element number ", number,
          " and it does not exist\n");
  const std::string_view line = text.ReadRestOfLine();
  if (line.empty())
    Fatal("Not reading correctly the rotules -a-. Number=", number, "\n");
  int code = 0;
  std::string_view tail = UpToNull(line);
  if (!ScanInt(tail, code, 10, 2))
    Fatal("Not reading correctly the rotules -b-. Number=", number, "\n");
  Note(ReadEvent::LineTail, tail);
  if (!IsHingeCode(code))
    Fatal("error: hinge code of element ", number, " must be 11, 10, 01 or 00\n");
  hingeCodes[number] = code;
  hasHinges = true;
}

void Project::CalcElemsRotules()
{
  std::vector<bool> held(static_cast<std::size_t>(numNodes) + 1, false);  // by system number
  for (const auto& mesh : meshes) {
    const bool beams = mesh->GiveElemType() == Linear;
    for (const Elem& elem : Each<Elem>(*mesh->GiveElemPlex())) {
      if (beams)
        MergeHinges(elem);
      const int code = beams ? GiveHingeCode(elem.Num()) : 11;
      for (int i = 0; i < elem.Nnode(); ++i) {
        if ((i == 0 ? code / 10 : code % 10) == 1)
          held[elem(i)->number] = true;
      }
    }
  }
  const bool rotations = problemType == kPlane || freeDegrees == 6;  // solids have none
  for (Node& node : Each<Node>(GiveNodes())) {
    if (rotations && !held[node.number])
      FixRotations(node, freeDegrees);
  }
}

// The element's own code with the hinges of its nodes.
void Project::MergeHinges(const Elem& elem)
{
  const int own = GiveHingeCode(elem.Num());
  const int first = elem(0)->hasRotule ? 0 : own / 10;
  const int second = elem(1)->hasRotule ? 0 : own % 10;
  if (const int merged = 10 * first + second; merged != own)
    hingeCodes[elem.Num()] = merged;
}

}  // namespace morlen
