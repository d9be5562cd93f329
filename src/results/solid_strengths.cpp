#include "results/solid_strengths.h"

#include <iterator>

#include "assembly/relative_motion.h"
#include "assembly/solid.h"
#include "assembly/solution.h"
#include "base/array_size.h"
#include "base/interruption.h"
#include "model/elem.h"
#include "model/mesh.h"
#include "numeric/plex_range.h"
#include "problem/problem.h"

namespace morlen {

void CalcSolidStrengths(const Problem& problem, const Mesh& mesh, const Solution& solution,
                        MeshResults& results)
{
  constexpr int kStresses = 6;
  results.blockSize = kStresses * results.points;
  results.strengths.resize(ArrayLength(std::ssize(results.numbers), results.blockSize), 0.0);
  SolidEvaluator solid;
  double u[3 * 10];
  int offset = 0;
  for (const Elem& elem : Each<Elem>(*mesh.GiveElemPlex())) {
    CheckInterruption();
    solid.Evaluate(elem, problem.RequireMaterial(elem));
    CalcRelativeSolid(elem, solution.Displacements(), u);
    solid.AddStrengths(u, results.strengths, offset);
    offset += results.blockSize;
  }
}

}  // namespace morlen
