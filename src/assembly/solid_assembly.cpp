#include "assembly/element_assembly.h"
#include "assembly/solid.h"
#include "model/elem.h"
#include "model/mesh.h"
#include "model/node.h"
#include "numeric/plex_range.h"
#include "problem/project.h"
#include "solvers/bsolver.h"

namespace morlen {

void Project::AddKToGlobalMatrixTetras(Mesh* mesh, int applyLocalAxes)
{
  SolidEvaluator solid;
  const int nnode = mesh->GiveNnode();
  BlockAssembler assembler(*solver, freeDegrees, applyLocalAxes);
  assembler.Assemble(*mesh, [&](const Elem& elem) {
    solid.Evaluate(elem, RequireMaterial(elem));
    for (int i = 0; i < nnode; ++i) {
      for (int j = i; j < nnode; ++j)
        solid.CalcStiffness(i, j, assembler.NextBlock());
    }
  });
}

}  // namespace morlen
