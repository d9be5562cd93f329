#pragma once

#include "common/run_record.h"

namespace morlen {

class SolvedCases;
struct Problem;

/// How the cases were solved: residual and error of the worst one.
RunFacts FactsOfAll(const SolvedCases& solved, const Problem& problem);

}  // namespace morlen
