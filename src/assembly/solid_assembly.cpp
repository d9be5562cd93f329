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
  Matriu K;
  BlockAssembler assembler(*solver, freeDegrees, applyLocalAxes != 0);
  for (const Elem& elem : Each<Elem>(*mesh->GiveElemPlex())) {
    solid.Evaluate(elem, RequireMaterial(elem));
    for (int i = 0; i < elem.Nnode(); ++i) {
      for (int j = i; j < elem.Nnode(); ++j) {
        solid.CalcStiffness(i, j, K);
        assembler.Add(*elem(i), *elem(j), K);
      }
    }
  }
}
