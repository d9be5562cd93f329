#include "base/interruption.h"

namespace morlen {

constinit thread_local InterruptionTest interruptionTest = nullptr;

}  // namespace morlen
