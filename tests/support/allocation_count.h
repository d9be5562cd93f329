#pragma once

namespace morlen {

/// How often the operator new of this program has been called by this thread. Always 0 with the
/// address sanitizer, which has its own.
long AllocationCount();

}  // namespace morlen
