#pragma once

namespace morlen {

/// Vector instructions beyond the base set of the build; each set includes those before it.
enum class Processor
{
  kPlain,
  kAvx2,   ///< 4 doubles, with fused multiplication and addition
  kAvx512  ///< 8 doubles
};

/// The widest vectors that the processor of this run has.
Processor ThisProcessor();

}  // namespace morlen
