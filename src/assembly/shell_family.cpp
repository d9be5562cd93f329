#include "assembly/shell_family.h"

#include <algorithm>

#include "assembly/element_assembly.h"
#include "assembly/internal_forces.h"
#include "assembly/shell.h"
#include "base/read_observer.h"
#include "model/elem.h"
#include "model/material.h"
#include "model/mesh.h"
#include "model/node.h"
#include "numeric/block_rotation.h"
#include "numeric/plex_range.h"
#include "problem/loads_on_element.h"
#include "problem/problem.h"

namespace morlen {

namespace {

/// The number of iterations of thin plates grows by the square of width over thickness of their
/// elements. The result is the largest such square, at least 1.
double SlendernessFactor(const Meshes& meshes, const VoidPlex& materials)
{
  constexpr double kMost = 1e6;  // the square is infinite for a thickness of 0
  double slender = 1.0;
  for (const auto& mesh : meshes) {
    if (mesh->GiveElemType() != Triangle)
      continue;
    for (const Elem& elem : Each<Elem>(*mesh->GiveElemPlex())) {
      const double t = RequireMaterial(elem, materials).t;
      slender = std::max(slender, dist2(elem(0), elem(1)) / (t * t));
    }
  }
  return std::min(slender, kMost);
}

}  // namespace

std::array<bool, 6> FoldedNodes(const std::vector<int>& coplanarity, const Elem& shell)
{
  std::array<bool, 6> folded{};
  for (int i = 0; i < shell.Nnode(); ++i)
    folded[i] = coplanarity[shell(i)->number - 1] != 1;
  return folded;
}

void AddShellStiffness(const Problem& problem, const Mesh& mesh, int applyLocalAxes,
                       ElementSink& sink)
{
  ShellEvaluator shell;
  Matriu K(6, 6);
  const int nnode = mesh.GiveNnode();
  BlockAssembler assembler(sink, problem.components.count, applyLocalAxes);
  assembler.Assemble(mesh, [&](const Elem& elem) {
    shell.Evaluate(elem, problem.RequireMaterial(elem));
    const std::array<bool, 6> folded = FoldedNodes(problem.coplanarity, elem);
    for (int i = 0; i < nnode; ++i) {
      for (int j = i; j < nnode; ++j) {
        shell.CalcStiffness(i, j, K);
        shell.AddTurnsAboutNormal(i, j, folded, K);
        if (i == j && !folded[i])
          K(6, 6) += shell.TurnAgainstGround();
        TurnRows(shell.Frame(), Turn::ToGlobal, K);
        TurnColumns(shell.Frame(), Turn::ToGlobal, K);
        assembler.Append(K);
      }
    }
  });
}

void AddShellForces(const Problem& problem, const Mesh& mesh, InternalForces& forces)
{
  ShellEvaluator shell;
  double local[6 * 6];
  double nodal[6 * 6];
  forces.ForEachWanted(mesh, [&](const Elem& elem) {
    shell.Evaluate(elem, problem.RequireMaterial(elem));
    const std::array<bool, 6> folded = FoldedNodes(problem.coplanarity, elem);
    for (int index = 0; index < forces.Count(); ++index) {
      shell.CalcRelative(elem, folded, forces.Displacements(index), local);
      shell.CalcForces(local, folded, nodal);
      for (int i = 0; i < elem.Nnode(); ++i)
        TurnVector(shell.Frame(), Turn::ToGlobal, 6, nodal + 6 * i);
      forces.Add(elem, index, nodal);
    }
  });
}

void AddShellLoads(const Problem& problem, const Mesh& mesh, ReaVecV& loads)
{
  Matriu T, Tbig;
  for (const Elem& elem : Each<Elem>(*mesh.GiveElemPlex())) {
    AttemptOn(ReadItem::Element, elem.Num(), [&] {
      const Material& material = problem.RequireMaterial(elem);
      bool hasFrame = false;  // T is computed only for elements with loads
      ForEachLoadOn(problem, elem, material.Weight * material.t, problem.problemType,
                    [&](const BaseElemLoads& load) {
                      if (!hasFrame)
                        elem.CalcTransfMatrixTriangle(T, Tbig, &material);
                      hasFrame = true;
                      load.AddToLoadVectorTriangle(elem, T, loads);
                    });
    });
  }
}

double ShellIterationFactor(const Problem& problem, const Mesh& mesh)
{
  // The plates' constants are for elements at most as wide as thick.
  constexpr double kThreeNodePlate = 10.0;
  constexpr double kSixNodePlate = 25.0;
  constexpr double kCurvedShell = 250.0;
  const auto flat = std::count(problem.coplanarity.begin(), problem.coplanarity.end(), 1);
  if (flat < problem.numNodes)
    return kCurvedShell;
  return SlendernessFactor(problem.meshes, problem.materials) *
         (mesh.GiveNnode() == 3 ? kThreeNodePlate : kSixNodePlate);
}

}  // namespace morlen
