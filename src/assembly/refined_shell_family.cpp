#include "assembly/refined_shell_family.h"

#include <algorithm>
#include <cmath>

#include "assembly/element_assembly.h"
#include "assembly/internal_forces.h"
#include "assembly/refined_shell.h"
#include "assembly/shell_family.h"
#include "base/read_observer.h"
#include "model/material.h"
#include "model/mesh.h"
#include "model/node.h"
#include "model/shape_functions.h"
#include "numeric/block_rotation.h"
#include "numeric/plex_range.h"
#include "problem/loads_on_element.h"
#include "problem/problem.h"

namespace morlen {

namespace {

// Appends the blocks of an element whose mid-side nodes are off its plane. K: working storage.
template <int N>
void AppendWithOffsets(const ShellStiffness<N>& stiffness, const MidSideOffsets& offsets,
                       const Matriu& T, Matriu& K, BlockAssembler& assembler)
{
  double all[36][36] = {};
  for (int i = 0; i < N; ++i) {
    for (int j = 0; j < N; ++j) {
      stiffness.CopyBlock(i, j, K.Data());
      for (int k = 0; k < 6; ++k)
        std::copy_n(K.Data() + 6 * k, 6, &all[6 * i + k][6 * j]);
    }
  }
  offsets.TransformStiffness(all);
  for (int i = 0; i < N; ++i) {
    for (int j = i; j < N; ++j) {
      for (int k = 0; k < 6; ++k)
        std::copy_n(&all[6 * i + k][6 * j], 6, K.Data() + 6 * k);
      TurnRows(T, Turn::ToGlobal, K);
      TurnColumns(T, Turn::ToGlobal, K);
      assembler.Append(K);
    }
  }
}

template <class Shell>
void AddStiffnessOf(const Problem& problem, const Mesh& mesh, int applyLocalAxes, ElementSink& sink)
{
  constexpr int kNodes = Shell::kNodes;
  RefinedShellEvaluator<Shell> shell(problem.shellShares);
  ShellStiffness<kNodes> stiffness;
  Matriu K(6, 6);
  BlockAssembler assembler(sink, problem.components.count, applyLocalAxes);
  assembler.Assemble(mesh, [&](const Elem& elem) {
    shell.Evaluate(elem, problem.RequireMaterial(elem));
    shell.Element().CalcStiffness(stiffness);
    if (shell.Offsets().Any())
      return AppendWithOffsets(stiffness, shell.Offsets(), shell.Frame(), K, assembler);
    const ShellAxes axes(shell.Frame());
    for (int i = 0; i < kNodes; ++i) {
      for (int j = i; j < kNodes; ++j)
        stiffness.CopyBlock(axes, i, j, assembler.NextBlock());
    }
  });
}

template <class Shell>
void AddForcesOf(const Problem& problem, const Mesh& mesh, InternalForces& forces)
{
  constexpr int kNodes = Shell::kNodes;
  RefinedShellEvaluator<Shell> shell(problem.shellShares);
  double local[6 * kNodes];
  double nodal[6 * kNodes];
  forces.ForEachWanted(mesh, [&](const Elem& elem) {
    shell.Evaluate(elem, problem.RequireMaterial(elem));
    for (int index = 0; index < forces.Count(); ++index) {
      shell.CalcRelative(elem, forces.Displacements(index), local);
      shell.Element().CalcForces(local, nodal);
      if (shell.Offsets().Any())
        shell.Offsets().TransformForces(nodal);
      for (int i = 0; i < kNodes; ++i)
        TurnVector(shell.Frame(), Turn::ToGlobal, 6, nodal + 6 * i);
      forces.Add(elem, index, nodal);
    }
  });
}

// Adds the moments at the ends of an edge under a load per length. edge: from its corner to the
// next. T: the frame of the element.
void AddEdgeMoments(const Problem& problem, const Elem& elem, int edge, const Matriu& T,
                    const double* load, ReaVecV& loads)
{
  const Node& first = *elem(edge);
  const Node& second = *elem((edge + 1) % 3);
  double x[3], y[3];
  CalcLocalCoordinates(elem, T, x, y);
  const double cx = x[(edge + 1) % 3] - x[edge];
  const double cy = y[(edge + 1) % 3] - y[edge];
  const double length = std::hypot(cx, cy);
  double local[3];
  std::copy_n(load, 3, local);
  TurnVector(T, Turn::ToLocal, 3, local);
  const double normal = (local[0] * cy - local[1] * cx) / length;
  const double moment = EdgeMoment(normal, length, problem.shellShares[first.number - 1],
                                   problem.shellShares[second.number - 1]);
  for (int k = 1; k <= 3; ++k) {
    loads(problem.Equation(first, 3 + k)) -= moment * T(k, 3);
    loads(problem.Equation(second, 3 + k)) += moment * T(k, 3);
  }
}

// The largest ratio of longest edge to thickness in a mesh.
double Slenderness(const Problem& problem, const Mesh& mesh)
{
  constexpr double kMost = 1e4;  // the ratio is infinite for a thickness of 0
  double squares = 0.0;
  for (const Elem& elem : Each<Elem>(*mesh.GiveElemPlex())) {
    const double t = problem.RequireMaterial(elem).t;
    for (int i = 0; i < 3; ++i)
      squares = std::max(squares, dist2(elem(i), elem((i + 1) % 3)) / (t * t));
  }
  return std::min(std::sqrt(squares), kMost);
}

}  // namespace

void AddRefinedShellStiffness(const Problem& problem, const Mesh& mesh, int applyLocalAxes,
                              ElementSink& sink)
{
  if (mesh.GiveNnode() == ThreeNodeShell::kNodes)
    AddStiffnessOf<ThreeNodeShell>(problem, mesh, applyLocalAxes, sink);
  else
    AddStiffnessOf<SixNodeShell>(problem, mesh, applyLocalAxes, sink);
}

void AddRefinedShellForces(const Problem& problem, const Mesh& mesh, InternalForces& forces)
{
  if (mesh.GiveNnode() == ThreeNodeShell::kNodes)
    AddForcesOf<ThreeNodeShell>(problem, mesh, forces);
  else
    AddForcesOf<SixNodeShell>(problem, mesh, forces);
}

void AddRefinedShellLoads(const Problem& problem, const Mesh& mesh, ReaVecV& loads)
{
  AddShellLoads(problem, mesh, loads);
  if (mesh.GiveNnode() != ThreeNodeShell::kNodes)
    return;
  Matriu T, Tbig;
  for (const Elem& elem : Each<Elem>(*mesh.GiveElemPlex())) {
    for (const BaseElemLoads* load = Find<BaseElemLoads>(problem.elemLoads, elem.Num()); load;
         load = load->Next()) {
      const ElemLoadRecord record = load->Describe();
      if (record.face < 0)
        continue;
      elem.CalcTransfMatrixTriangle(T, Tbig, &problem.RequireMaterial(elem));
      AddEdgeMoments(problem, elem, record.face, T, record.values.data(), loads);
    }
  }
}

double RefinedShellIterationFactor(const Problem& problem, const Mesh& mesh)
{
  const double slenderness = Slenderness(problem, mesh);
  if (mesh.GiveNnode() == ThreeNodeShell::kNodes)
    return 8.0 + 24.0 * slenderness / (1.0 + slenderness);
  return 15.0 + 12.0 * slenderness;
}

}  // namespace morlen
