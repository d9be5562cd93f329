#pragma once

#include "case_file/study.h"
#include "cases/solved_cases.h"
#include "common/result_data.h"

namespace morlen::cases {

/// The results of a case or a combination as plain data. With principal values of shells only when
/// the problem asks for them.
results::Results ResultsOf(const Study& study, const SolvedCases& cases,
                           const Combination& combination);

}  // namespace morlen::cases
