#include <array>

#include "assembly/element_assembly.h"
#include "assembly/shell.h"
#include "model/elem.h"
#include "model/material.h"
#include "model/mesh.h"
#include "model/node.h"
#include "numeric/block_rotation.h"
#include "numeric/plex_range.h"
#include "problem/project.h"
#include "solvers/bsolver.h"

namespace morlen {

std::array<bool, 6> Project::FoldedNodes(const Elem& shell) const
{
  std::array<bool, 6> folded{};
  for (int i = 0; i < shell.Nnode(); ++i)
    folded[i] = coplanarity[shell(i)->number - 1] != 1;
  return folded;
}

void Project::AddKToGlobalMatrixTriangles(Mesh* mesh, int applyLocalAxes)
{
  ShellEvaluator shell;
  Matriu K(6, 6);
  const int nnode = mesh->GiveNnode();
  BlockAssembler assembler(*solver, freeDegrees, applyLocalAxes);
  assembler.Assemble(*mesh, [&](const Elem& elem) {
    const Material& material = RequireMaterial(elem);
    shell.Evaluate(elem, material);
    const std::array<bool, 6> folded = FoldedNodes(elem);
    for (int i = 0; i < nnode; ++i) {
      for (int j = i; j < nnode; ++j) {
        shell.CalcStiffness(i, j, K);
        shell.AddTurnsAboutNormal(i, j, folded, K);
        if (i == j && !folded[i])
          K(6, 6) += shell.TurnAgainstGround();
        TurnRows(shell.Frame(), Turn::ToGlobal, K);
        TurnColumns(shell.Frame(), Turn::ToGlobal, K);
        assembler.Take(K);
      }
    }
  });
}

}  // namespace morlen
