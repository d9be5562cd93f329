#include "assembly/element_assembly.h"
#include "assembly/solid.h"
#include "model/elem.h"
#include "model/mesh.h"
#include "model/node.h"
#include "numeric/plex_range.h"
#include "problem/project.h"

void Project::AddKToGlobalMatrixTetras(Mesh* mesh, int applyLocalAxes)
{
  SolidEvaluator solid;
  Matriu K(3, 3);
  const int nnode = mesh->GiveNnode();
  BlockAssembler assembler(*solver, freeDegrees, applyLocalAxes);
  for (const Elem& elem : Each<Elem>(*mesh->GiveElemPlex())) {
    if (!assembler.Takes(elem))
      continue;
    solid.Evaluate(elem, RequireMaterial(elem));
    for (int i = 0; i < nnode; ++i) {
      for (int j = i; j < nnode; ++j) {
        solid.CalcStiffness(i, j, K);
        assembler.Add(*elem(i), *elem(j), K);
      }
    }
  }
}
