#include <algorithm>
#include <iterator>

#include "assembly/relative_motion.h"
#include "assembly/solid.h"
#include "base/array_size.h"
#include "model/elem.h"
#include "model/mesh.h"
#include "model/node.h"
#include "numeric/plex_range.h"
#include "problem/project.h"

namespace morlen {

void Project::CalcStrengthsTetras(int mesh)
{
  constexpr int kStresses = 6;
  const int nnode = meshes[mesh]->GiveNnode();
  MeshResults& result = results[mesh];
  result.points = nnode == 4 ? 1 : 4;
  result.blockSize = kStresses * result.points;
  result.strengths.resize(ArrayLength(std::ssize(result.numbers), result.blockSize), 0.0);
  SolidEvaluator solid;
  double u[3 * 10];
  int offset = 0;
  for (const Elem& elem : Each<Elem>(*meshes[mesh]->GiveElemPlex())) {
    solid.Evaluate(elem, RequireMaterial(elem));
    TakeRelativeSolid(elem, {displacements, displacementRests}, u);
    solid.AddStrengths(u, result.strengths, offset);
    offset += result.blockSize;
  }
}

}  // namespace morlen
