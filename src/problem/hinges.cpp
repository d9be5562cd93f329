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

namespace morlen {

namespace {

void ReadNodeHinge(TextScan& text, int number, Problem& problem)
{
  Node* node = problem.FindNode(number);
  if (!node)
    Fatal("error: Trying to assign rotule to unknown node\n");
  node->hasRotule = true;
  problem.hasHinges = true;
  if (text.ReadRestOfLine().empty())
    Fatal("Not reading correctly the rotules. Number=", number, "\n");
}

void ReadElementHinge(TextScan& text, int number, Problem& problem)
{
  if (!problem.GiveElem(number))
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
  problem.hingeCodes[number] = HingeCode(code);
  problem.hasHinges = true;
}

// Fixes the rotations of a node that no connection holds. A spring holds its rotation by
// itself.
void FixRotations(Node& node, const NodeComponents& components)
{
  if (!node.constraint)
    node.constraint = std::make_unique<Constraint>(components);
  for (int k = components.translations; k < components.count; ++k) {
    if (node.constraint->flags[k] == Constraint::kFree)
      node.constraint->flags[k] = Constraint::kPrescribed;
  }
}

// The code of a beam with the hinges of its nodes, entered where it differs.
HingeCode MergeBeam(const Elem& beam, Problem& problem)
{
  const HingeCode read = problem.GiveHingeCode(beam.Num());
  const HingeCode merged = read.Merged(beam(0)->hasRotule, beam(1)->hasRotule);
  if (merged != read)
    problem.hingeCodes[beam.Num()] = merged;
  return merged;
}

// Marks, by system number, the nodes whose rotations an element holds.
void MergeMesh(const Mesh& mesh, Problem& problem, std::vector<bool>& held)
{
  const bool beams = mesh.GiveElemType() == Linear;
  for (const Elem& elem : Each<Elem>(*mesh.GiveElemPlex())) {
    const HingeCode code = beams ? MergeBeam(elem, problem) : HingeCode();
    for (int i = 0; i < elem.Nnode(); ++i) {
      if (!(i == 0 ? code.FirstHinged() : code.SecondHinged()))
        held[elem(i)->number] = true;
    }
  }
}

}  // namespace

void ReadNodeHinges(TextScan& text, Problem& problem)
{
  for (int number = 0; ReadRecordNumber(text, number);)
    Attempt(&text, [&] { ReadNodeHinge(text, number, problem); });
  SkipBlockEnd(text);
}

void ReadElementHinges(TextScan& text, Problem& problem)
{
  for (int number = 0; ReadRecordNumber(text, number);)
    Attempt(&text, [&] { ReadElementHinge(text, number, problem); });
  SkipBlockEnd(text);
}

void MergeHinges(Problem& problem)
{
  std::vector<bool> held(static_cast<std::size_t>(problem.numNodes) + 1, false);
  for (const auto& mesh : problem.meshes)
    MergeMesh(*mesh, problem, held);
  if (problem.components.Rotations() == 0)
    return;
  for (Node& node : Each<Node>(problem.GiveNodes())) {
    if (!held[node.number])
      FixRotations(node, problem.components);
  }
}

}  // namespace morlen
