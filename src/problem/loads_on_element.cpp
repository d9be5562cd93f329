#include "problem/loads_on_element.h"

#include <cmath>

#include "model/elem.h"
#include "model/material.h"
#include "model/node.h"
#include "numeric/matriu.h"

namespace morlen {

BeamSpan MakeSpan(const Problem& problem, const Elem& beam, Matriu& T)
{
  const Material& material = problem.RequireMaterial(beam);
  beam.CalcTransfMatrixBeam(T, &material, problem.problemType);
  BeamSpan span{.elem = beam,
                .material = material,
                .T = T,
                .type = problem.problemType,
                .hingeCode = problem.GiveHingeCode(beam.Num()),
                .L = std::sqrt(dist2(beam(0), beam(1))),
                .EIy = 0.0,
                .EIz = 0.0,
                .EA = 0.0};
  material.GiveEI(span.EIy, span.EIz, span.EA);
  return span;
}

SpanLoad LoadOn(const Problem& problem, const BeamSpan& beam, double factor)
{
  SpanLoad sum;
  ForEachLoadOn(problem, beam.elem, beam.material.Weight * beam.material.A, problem.problemType,
                [&](const BaseElemLoads& load) { load.AddToSpanLoad(beam, sum); });
  return factor == 1.0 ? sum : sum * factor;
}

}  // namespace morlen
