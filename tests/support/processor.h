#pragma once

#include "base/processor.h"

namespace morlen {

/// The vector instructions with which the tests solve: those of the option --processor of this
/// run, else all that the processor has.
Processor TestedProcessor();

}  // namespace morlen
