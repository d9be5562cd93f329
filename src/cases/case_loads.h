#pragma once

#include "problem/load_set.h"

namespace morlen {

class BaseElemLoads;
struct Problem;
struct SpanLoad;

/// The sum of the loads on a beam between its ends, as an element load: for results of combined
/// loads. The writers of results take it, load vectors do not.
std::unique_ptr<BaseElemLoads> MakeSpanSum(const SpanLoad& sum);

/// The loads of a case in a problem that has no loads, until the scope ends. In a prepared problem
/// the nodes that the conversion to six nodes has added follow.
class CaseInPlace
{
public:
  CaseInPlace(Problem& problem, LoadSet& loads);

private:
  LoadsInPlace loads;
};

}  // namespace morlen
