#include "assembly/internal_forces.h"

#include <array>
#include <cstddef>
#include <utility>

#include "assembly/beam_blocks.h"
#include "assembly/relative_motion.h"
#include "assembly/shell.h"
#include "assembly/solid.h"
#include "model/constraint.h"
#include "model/elem.h"
#include "model/material.h"
#include "model/mesh.h"
#include "model/node.h"
#include "numeric/block_rotation.h"
#include "numeric/matriu.h"
#include "numeric/plex_range.h"
#include "problem/element_family.h"
#include "problem/project.h"

namespace morlen {

InternalForces::InternalForces(std::vector<SplitView> displacements_, int equations,
                               int components_, Elements elements)
    : displacements(std::move(displacements_)), components(components_), which(elements)
{
  for (int index = 0; index < Count(); ++index) {
    sums.emplace_back();
    sums.back().resize(equations, 0.0);
  }
}

bool InternalForces::Wants(const Elem& elem) const
{
  if (which == Elements::All)
    return true;
  for (int i = 0; i < elem.Nnode(); ++i) {
    if (elem(i)->constraint)
      return true;
  }
  return false;
}

void InternalForces::Add(const Elem& elem, int index, const double* forces)
{
  double* const sum = sums[index].Data();
  for (int i = 0; i < elem.Nnode(); ++i) {
    double* const own = sum + static_cast<std::ptrdiff_t>(elem(i)->number - 1) * components;
    for (int k = 0; k < components; ++k)
      own[k] += *forces++;
  }
}

void Project::AddForcesOfBeams(const Mesh& mesh, InternalForces& forces) const
{
  BeamBlocks K;
  Matriu T;
  double local[2 * kMaxComponents];
  double ends[2 * kMaxComponents];
  for (const Elem& elem : Each<Elem>(*mesh.GiveElemPlex())) {
    if (!forces.Wants(elem))
      continue;
    const BeamSpan beam = SpanOf(elem, T);
    K.Construct(beam);
    for (int index = 0; index < forces.Count(); ++index) {
      TakeRelativeBeam(elem, beam.hingeCode, freeDegrees, T, forces.Displacements(index), local);
      K.Multiply(local, ends);
      for (double* end : {ends, ends + freeDegrees})
        TurnVector(T, Turn::ToGlobal, freeDegrees, end);
      forces.Add(elem, index, ends);
    }
  }
}

void Project::AddForcesOfTriangles(const Mesh& mesh, InternalForces& forces) const
{
  ShellEvaluator shell;
  double local[6 * 6];
  double nodal[6 * 6];
  for (const Elem& elem : Each<Elem>(*mesh.GiveElemPlex())) {
    if (!forces.Wants(elem))
      continue;
    shell.Evaluate(elem, RequireMaterial(elem));
    const std::array<bool, 6> folded = FoldedNodes(elem);
    for (int index = 0; index < forces.Count(); ++index) {
      shell.TakeRelative(elem, folded, forces.Displacements(index), local);
      shell.CalcForces(local, folded, nodal);
      for (int i = 0; i < elem.Nnode(); ++i)
        TurnVector(shell.Frame(), Turn::ToGlobal, 6, nodal + 6 * i);
      forces.Add(elem, index, nodal);
    }
  }
}

void Project::AddForcesOfTetras(const Mesh& mesh, InternalForces& forces) const
{
  SolidEvaluator solid;
  double relative[3 * 10];
  double nodal[3 * 10];
  for (const Elem& elem : Each<Elem>(*mesh.GiveElemPlex())) {
    if (!forces.Wants(elem))
      continue;
    solid.Evaluate(elem, RequireMaterial(elem));
    for (int index = 0; index < forces.Count(); ++index) {
      TakeRelativeSolid(elem, forces.Displacements(index), relative);
      solid.CalcForces(relative, nodal);
      forces.Add(elem, index, nodal);
    }
  }
}

void Project::AddForces(InternalForces& forces) const
{
  for (const auto& mesh : meshes)
    (this->*FamilyOf(*mesh).addForces)(*mesh, forces);
}

}  // namespace morlen
