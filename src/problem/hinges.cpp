#include "problem/hinges.h"

#include <algorithm>
#include <memory>
#include <string_view>
#include <vector>

#include "base/digits.h"
#include "base/errorwriter.h"
#include "base/number_text.h"
#include "base/read_observer.h"
#include "base/record_hint.h"
#include "base/text_parts.h"
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

// Any words may follow the number. Another number is probably a node that is lost.
void NoteMoreNodes(std::string_view tail)
{
  const std::size_t word = tail.find_first_not_of(" \t,;");
  if (word != std::string_view::npos && IsDigit(tail[word]))
    Note(ReadEvent::LineTail, tail);
}

void ReadNodeHinge(TextScan& text, int number, Node& node, bool& hasHinges)
{
  node.hasRotule = true;
  hasHinges = true;
  if (text.AtEnd()) {
    Explain("the file ends after the node: a line 'end rotules' is missing");
    Fatal("Not reading correctly the rotules. Number=", number, "\n");
  }
  NoteMoreNodes(text.ReadRestOfLine());
}

constexpr const char* kCodes =
    "the code has a digit for each end of the beam, 1 continuous and 0 hinged: 11, 10, 01 or 00";

HingeCode ReadHingeCode(TextScan& text, int number)
{
  if (text.AtEnd()) {
    Explain("the file ends after the number of the element: ", kCodes);
    Fatal("Not reading correctly the rotules -a-. Number=", number, "\n");
  }
  int code = 0;
  const RecordText record(UpToNull(text.ReadRestOfLine()), &text);
  std::string_view tail = record.text;
  const bool isRead = ScanInt(tail, code, 10, 2);
  if (!isRead || !HingeCode::IsValid(code))
    Explain(LinePrefix(record), kCodes);
  if (!isRead)
    Fatal("Not reading correctly the rotules -b-. Number=", number, "\n");
  NoteNumberEnd(tail.data(), text);
  Note(ReadEvent::LineTail, tail.substr(std::min(tail.find_first_of(" \t\r"), tail.size())));
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
    Node& node =
        RequireNode(problem, number, text, "error: Trying to assign rotule to unknown node\n");
    ReadNodeHinge(text, number, node, problem.hasHinges);
  });
}

void ReadElementHinges(TextScan& text, Problem& problem)
{
  ReadRecords(text, [&](int number) {
    RequireElem(problem, number, text, "error: trying to assign a rotule to element number ");
    const char* const record = text.Here();
    const HingeCode code = ReadHingeCode(text, number);
    const auto [known, added] = problem.hingeCodes.try_emplace(number, code);
    if (!added && known->second != code)
      Note(ReadEvent::RepeatedItem, FirstWord({record, text.Here()}));
    known->second = code;
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
