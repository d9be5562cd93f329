#include "run/element_families.h"

#include "assembly/beam_family.h"
#include "assembly/refined_shell_family.h"
#include "assembly/shell_family.h"
#include "assembly/solid_family.h"
#include "model/shape_functions.h"
#include "problem/problem.h"
#include "results/beam_strengths.h"
#include "results/finite_results.h"
#include "results/kiv_beams.h"
#include "results/kiv_shells.h"
#include "results/kiv_solids.h"
#include "results/shell_strengths.h"
#include "results/smooth_shell.h"
#include "results/smooth_solid.h"
#include "results/solid_strengths.h"
#include "results/text_results.h"

namespace morlen {

namespace {

constexpr ElementFamily kBeams = {.type = Linear,
                                  .nnode = 2,
                                  .points = 0,
                                  .spaceOnly = false,
                                  .addStiffness = AddBeamStiffness,
                                  .addForces = AddBeamForces,
                                  .addLoads = AddBeamLoads,
                                  .iterationFactor = BeamIterationFactor,
                                  .calcStrengths = CalcBeamStrengths,
                                  .areSpansBounded = AreBeamSpansBounded,
                                  .smooth = nullptr,
                                  .writeText = WriteBeamForces,
                                  .writePointSet = WriteBeamPointSet,
                                  .writeBlocks = WriteBeamBlocks};

constexpr ElementFamily Shells(int nnode)
{
  return {.type = Triangle,
          .nnode = nnode,
          .points = GaussPointCount(Triangle, nnode),
          .spaceOnly = true,
          .addStiffness = AddShellStiffness,
          .addForces = AddShellForces,
          .addLoads = AddShellLoads,
          .iterationFactor = ShellIterationFactor,
          .calcStrengths = CalcShellStrengths,
          .areSpansBounded = nullptr,
          .smooth = SmoothShells,
          .writeText = nullptr,
          .writePointSet = WriteShellPointSet,
          .writeBlocks = WriteShellBlocks};
}

constexpr ElementFamily RefinedShells(int nnode)
{
  ElementFamily family = Shells(nnode);
  family.addStiffness = AddRefinedShellStiffness;
  family.addForces = AddRefinedShellForces;
  family.addLoads = AddRefinedShellLoads;
  family.iterationFactor = RefinedShellIterationFactor;
  family.calcStrengths = CalcRefinedShellStrengths;
  return family;
}

constexpr ElementFamily Solids(int nnode)
{
  return {.type = Tetrahedra,
          .nnode = nnode,
          .points = GaussPointCount(Tetrahedra, nnode),
          .spaceOnly = false,
          .addStiffness = AddSolidStiffness,
          .addForces = AddSolidForces,
          .addLoads = AddSolidLoads,
          .iterationFactor = SolidIterationFactor,
          .calcStrengths = CalcSolidStrengths,
          .areSpansBounded = nullptr,
          .smooth = SmoothSolids,
          .writeText = nullptr,
          .writePointSet = nullptr,
          .writeBlocks = WriteSolidBlocks};
}

constexpr ElementFamily kRows[] = {kBeams, Shells(3), Shells(6), Solids(4), Solids(10)};
constexpr ElementFamily kRefinedRows[] = {kBeams, RefinedShells(3), RefinedShells(6), Solids(4),
                                          Solids(10)};
constexpr ElementFamilies kFamilies(kRows);
constexpr ElementFamilies kRefinedFamilies(kRefinedRows);

}  // namespace

const ElementFamilies& FamiliesOf(const Problem& problem)
{
  return problem.shellFormulation == ShellFormulation::Refined ? kRefinedFamilies : kFamilies;
}

}  // namespace morlen
