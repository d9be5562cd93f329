#include "assembly/beam_family.h"

#include "assembly/beam_blocks.h"
#include "assembly/element_assembly.h"
#include "assembly/internal_forces.h"
#include "assembly/relative_motion.h"
#include "base/read_observer.h"
#include "model/elem.h"
#include "model/mesh.h"
#include "model/node.h"
#include "numeric/block_rotation.h"
#include "numeric/matriu.h"
#include "numeric/plex_range.h"
#include "problem/loads_on_element.h"
#include "problem/problem.h"

namespace morlen {

void AddBeamStiffness(const Problem& problem, const Mesh& mesh, int applyLocalAxes,
                      ElementSink& sink)
{
  BeamBlocks blocks;  // outside the loop, so that it is allocated once
  Matriu T;
  BlockAssembler assembler(sink, problem.components.count, applyLocalAxes);
  assembler.Assemble(mesh, [&](const Elem& elem) {
    blocks.Construct(MakeSpan(problem, elem, T));
    for (Matriu* K : {&blocks.K11, &blocks.K12, &blocks.K22}) {
      TurnRows(T, Turn::ToGlobal, *K);
      TurnColumns(T, Turn::ToGlobal, *K);
      assembler.Append(*K);
    }
  });
}

void AddBeamForces(const Problem& problem, const Mesh& mesh, InternalForces& forces)
{
  const int n = problem.components.count;
  BeamBlocks K;
  Matriu T;
  double local[2 * kMaxComponents];
  double ends[2 * kMaxComponents];
  forces.ForEachWanted(mesh, [&](const Elem& elem) {
    const BeamSpan beam = MakeSpan(problem, elem, T);
    K.Construct(beam);
    for (int index = 0; index < forces.Count(); ++index) {
      CalcRelativeBeam(elem, beam.hingeCode, n, T, forces.Displacements(index), local);
      K.Multiply(local, ends);
      for (double* end : {ends, ends + n})
        TurnVector(T, Turn::ToGlobal, n, end);
      forces.Add(elem, index, ends);
    }
  });
}

void AddBeamLoads(const Problem& problem, const Mesh& mesh, ReaVecV& loads)
{
  Matriu T;
  for (const Elem& elem : Each<Elem>(*mesh.GiveElemPlex())) {
    AttemptOn(ReadItem::Element, elem.Num(), [&] {
      const BeamSpan beam = MakeSpan(problem, elem, T);
      const SpanLoad load = LoadOn(problem, beam);
      if (!load.IsZero())
        load.AddToLoadVectorBeam(beam, problem.Equation(*elem(0), 1), problem.Equation(*elem(1), 1),
                                 loads);
    });
  }
}

double BeamIterationFactor(const Problem& problem, const Mesh&)
{
  constexpr double kPlaneFrame = 2.8;
  constexpr double kSpaceFrame = 7.0;
  return problem.components.count == 3 ? kPlaneFrame : kSpaceFrame;
}

}  // namespace morlen
