#pragma once

#include "base/processor.h"

namespace morlen {

/// The vector instructions that the solvers use in the tests: those of the option --processor of
/// this run, by default all that the processor has.
Processor TestedProcessor();

}  // namespace morlen
