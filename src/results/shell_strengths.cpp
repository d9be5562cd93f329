#include <algorithm>
#include <cmath>

#include "assembly/shell.h"
#include "base/array_size.h"
#include "model/constraint.h"
#include "model/elem.h"
#include "model/mesh.h"
#include "model/node.h"
#include "numeric/block_rotation.h"
#include "numeric/plex_range.h"
#include "problem/project.h"
#include "results/principal_values.h"

namespace morlen {

void Project::CalcStrengthsTriangles(int mesh)
{
  constexpr int kValues = 8;
  constexpr int kAngles = 6;
  const int nnode = meshes[mesh]->GiveNnode();
  const int points = nnode == 3 ? 1 : 3;
  MeshResults& result = results[mesh];
  const int count = static_cast<int>(result.numbers.size());
  result.points = points;
  result.blockSize = kValues * points;
  result.strengths.resize(ArrayLength(count, result.blockSize), 0.0);
  if (stressOutput != StressOutput::Local)
    result.mainAngles.resize(ArrayLength(count, kAngles * points), 0.0);
  if (stressOutput == StressOutput::MainAndLocal)
    result.mainStrengths.resize(ArrayLength(count, result.blockSize), 0.0);

  ShellEvaluator shell;
  double local[6 * 6];
  int place = 0;
  for (const Elem& elem : Each<Elem>(*meshes[mesh]->GiveElemPlex())) {
    shell.Evaluate(elem, RequireMaterial(elem));
    shell.TakeRelative(elem, FoldedNodes(elem), {displacements, displacementRests}, local);
    const int offset = place * result.blockSize;
    shell.AddStrengths(local, result.strengths, offset);
    if (stressOutput != StressOutput::Local)
      ConvertResultsToMainValues(
          result.strengths, offset, points, result.mainAngles, place * kAngles * points,
          AxesFromMatriu(shell.Frame()),
          stressOutput == StressOutput::MainAndLocal ? &result.mainStrengths : nullptr,
          std::sqrt(shell.Area()));
    ++place;
  }
}

// The mid-side nodes that the conversion made are in no result file: what supports them is
// handed to the corners of their edge.
void Project::HandOverMidSideReactions()
{
  for (const auto& mesh : meshes) {
    if (mesh->GiveElemType() != Triangle || mesh->GiveNnode() != 6)
      continue;
    for (const Elem& elem : Each<Elem>(*mesh->GiveElemPlex())) {
      for (int i = 0; i < 3; ++i) {
        Constraint* middle = elem(i + 3)->constraint.get();
        if (middle && IsAddedNode(*elem(i + 3)))
          middle->TransferYourReaction(freeDegrees, elem(i)->constraint.get(),
                                       elem((i + 1) % 3)->constraint.get());
      }
    }
  }
}

}  // namespace morlen
