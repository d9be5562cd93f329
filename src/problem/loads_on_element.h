#pragma once

#include "numeric/plex_range.h"
#include "problem/beam_span.h"
#include "problem/pressure_load.h"
#include "problem/problem.h"

namespace morlen {

// These functions take the whole Problem: together they collect the data of one element from its
// materials, hinge codes, element loads, gravity direction and problem type.

/// Calls visit(load) for the self-weight of an element, if it has any, and for each of its loads in
/// the order of the file.
///
/// weight: per length, area or volume of the element. type: a plane problem refuses gravity along
/// +z, see PreassureLT::EnterWeight.
template <class Visit>
void ForEachLoadOn(const Problem& problem, const Elem& elem, double weight, PROBLEMTYPE type,
                   Visit visit)
{
  if (weight > 0.0 && problem.selfWeight) {
    PreassureLT selfWeight(PreassureLT_type::Global);
    selfWeight.EnterWeight(weight, problem.gravityDirection, type);
    visit(static_cast<const BaseElemLoads&>(selfWeight));
  }
  for (const BaseElemLoads* load = Find<BaseElemLoads>(problem.elemLoads, elem.Num()); load;
       load = load->Next())
    visit(*load);
}

/// The beam as its loads need it. Writes its frame to T, which must outlive the result. Fatal
/// without a material.
BeamSpan MakeSpan(const Problem& problem, const Elem& beam, Matriu& T);

/// The sum of self-weight and loads on a beam, times a factor.
SpanLoad LoadOn(const Problem& problem, const BeamSpan& beam, double factor = 1.0);

}  // namespace morlen
