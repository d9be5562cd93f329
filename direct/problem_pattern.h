#pragma once

#include "solvers/node_couplings.h"

namespace morlen {

struct Problem;

namespace direct {

/// The couplings of the nodes by the elements of a problem.
NodePattern PatternOf(const Problem& problem);

}  // namespace direct
}  // namespace morlen
