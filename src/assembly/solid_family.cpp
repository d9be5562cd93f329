#include "assembly/solid_family.h"

#include "assembly/element_assembly.h"
#include "assembly/internal_forces.h"
#include "assembly/relative_motion.h"
#include "assembly/solid.h"
#include "base/read_observer.h"
#include "model/elem.h"
#include "model/material.h"
#include "model/mesh.h"
#include "model/node.h"
#include "numeric/plex_range.h"
#include "problem/loads_on_element.h"
#include "problem/problem.h"

namespace morlen {

void AddSolidStiffness(const Problem& problem, const Mesh& mesh, int applyLocalAxes,
                       ElementSink& sink)
{
  SolidEvaluator solid;
  const int nnode = mesh.GiveNnode();
  BlockAssembler assembler(sink, problem.components.count, applyLocalAxes);
  assembler.Assemble(mesh, [&](const Elem& elem) {
    solid.Evaluate(elem, problem.RequireMaterial(elem));
    for (int i = 0; i < nnode; ++i) {
      for (int j = i; j < nnode; ++j)
        solid.CalcStiffness(i, j, assembler.NextBlock());
    }
  });
}

void AddSolidForces(const Problem& problem, const Mesh& mesh, InternalForces& forces)
{
  SolidEvaluator solid;
  double relative[3 * 10];
  double nodal[3 * 10];
  forces.ForEachWanted(mesh, [&](const Elem& elem) {
    solid.Evaluate(elem, problem.RequireMaterial(elem));
    for (int index = 0; index < forces.Count(); ++index) {
      CalcRelativeSolid(elem, forces.Displacements(index), relative);
      solid.CalcForces(relative, nodal);
      forces.Add(elem, index, nodal);
    }
  });
}

void AddSolidLoads(const Problem& problem, const Mesh& mesh, ReaVecV& loads)
{
  for (const Elem& elem : Each<Elem>(*mesh.GiveElemPlex())) {
    AttemptOn(ReadItem::Element, elem.Num(), [&] {
      const double weight = problem.RequireMaterial(elem).Weight;
      // Solids are in space whatever the header of the file says.
      ForEachLoadOn(problem, elem, weight, kSpace,
                    [&](const BaseElemLoads& load) { load.AddToLoadVectorTetra(elem, loads); });
    });
  }
}

double SolidIterationFactor(const Problem&, const Mesh& mesh)
{
  constexpr double kFourNodes = 6.5;
  constexpr double kTenNodes = 13.0;
  return mesh.GiveNnode() == 4 ? kFourNodes : kTenNodes;
}

}  // namespace morlen
