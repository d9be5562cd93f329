#include "problem/hinges.h"

#include <memory>
#include <string_view>
#include <vector>

#include "base/errorwriter.h"
#include "base/number_text.h"
#include "base/read_observer.h"
#include "base/textscan.h"
#include "model/constraint.h"
#include "model/elem.h"
#include "model/mesh.h"
#include "model/node.h"
#include "numeric/plex_range.h"
#include "problem/problem.h"
#include "problem/record_items.h"

namespace morlen {

namespace {

void ReadNodeHinge(TextScan& text, int number, Node* node, bool& hasHinges)
{
  if (!node)
    Fatal("error: Trying to assign rotule to unknown node\n");
  node->hasRotule = true;
  hasHinges = true;
  if (text.ReadRestOfLine().empty())
    Fatal("Not reading correctly the rotules. Number=", number, "\n");
}

HingeCode ReadHingeCode(TextScan& text, int number, const Elem* elem)
{
  if (!elem)
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
  if (!HingeCode::IsValid(code))
    Fatal("error: hinge code of element ", number, " must be 11, 10, 01 or 00\n");
  return HingeCode(code);
}

// Fixes the free rotations of a node that no element holds. Springs stay.
void FixRotations(Node& node, const NodeComponents& components)
{
  if (!node.constraint)
    node.constraint = std::make_unique<Constraint>(components);
  for (int k = components.translations; k < components.count; ++k) {
    if (node.constraint->flags[k] == Constraint::kFree)
      node.constraint->flags[k] = Constraint::kPrescribed;
  }
}

// Merges the hinges of a beam's nodes into its code, and returns the code.
HingeCode MergeBeam(const Elem& beam, HingeCodes& codes)
{
  const HingeCode read = GiveHingeCode(codes, beam.Num());
  const HingeCode merged = read.Merged(beam(0)->hasRotule, beam(1)->hasRotule);
  if (merged != read)
    codes[beam.Num()] = merged;
  return merged;
}

// Merges the codes of a mesh. Marks in `held`, by system number, the nodes whose rotations an
// element of the mesh holds.
void MergeMesh(const Mesh& mesh, HingeCodes& codes, std::vector<bool>& held)
{
  const bool beams = mesh.GiveElemType() == Linear;
  for (const Elem& elem : Each<Elem>(*mesh.GiveElemPlex())) {
    const HingeCode code = beams ? MergeBeam(elem, codes) : HingeCode();
    for (int i = 0; i < elem.Nnode(); ++i) {
      if (!(i == 0 ? code.FirstHinged() : code.SecondHinged()))
        held[elem(i)->number] = true;
    }
  }
}

}  // namespace

void ReadNodeHinges(TextScan& text, Problem& problem)
{
  ReadRecords(text, [&](int number) {
    ReadNodeHinge(text, number, problem.FindNode(number), problem.hasHinges);
  });
}

void ReadElementHinges(TextScan& text, Problem& problem)
{
  ReadRecords(text, [&](int number) {
    const HingeCode code = ReadHingeCode(text, number, problem.GiveElem(number));
    problem.hingeCodes[number] = code;
    problem.hasHinges = true;
  });
}

void MergeHinges(Problem& problem)
{
  std::vector<bool> held(static_cast<std::size_t>(problem.numNodes) + 1, false);
  for (const auto& mesh : problem.meshes)
    MergeMesh(*mesh, problem.hingeCodes, held);
  if (problem.components.Rotations() == 0)
    return;
  for (Node& node : Each<Node>(problem.GiveNodes())) {
    if (!held[node.number])
      FixRotations(node, problem.components);
  }
}

}  // namespace morlen
