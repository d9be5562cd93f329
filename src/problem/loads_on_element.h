#pragma once

#include "numeric/plex_range.h"
#include "problem/beam_span.h"
#include "problem/pressure_load.h"
#include "problem/problem.h"

namespace morlen {

/// Calls visit(load) for the self-weight of an element, where it has some, and for each of its
/// loads in the order of the file.
///
/// weight: per length, area or volume of the element, along the direction of gravity. type: decides
/// about the z component of gravity, see PreassureLT::EnterWeight.
template <class Visit>
void ForEachLoadOn(const Problem& problem, const Elem& elem, double weight, PROBLEMTYPE type,
                   Visit visit)
{
  if (weight > 0.0) {
    PreassureLT selfWeight(PreassureLT_type::Global);
    selfWeight.EnterWeight(weight, problem.gravityDirection, type);
    visit(static_cast<const BaseElemLoads&>(selfWeight));
  }
  for (const BaseElemLoads* load = Find<BaseElemLoads>(problem.elemLoads, elem.Num()); load;
       load = load->Next())
    visit(*load);
}

/// A beam and its frame, which is written to T. Fatal without a material.
BeamSpan MakeSpan(const Problem& problem, const Elem& beam, Matriu& T);

/// The sum of self-weight and loads on a beam.
SpanLoad LoadOn(const Problem& problem, const BeamSpan& beam);

}  // namespace morlen
