#pragma once

#include <cstddef>
#include <functional>

#include "solvers/ldlt_kernel.h"
#include "solvers/pivot_check.h"
#include "solvers/profile_rows.h"

namespace morlen {

/// What the factorisation reports, and by what it is done.
struct LdltOptions
{
  const LdltKernel* kernel;          ///< one of LdltKernels()
  std::function<void(int)> onRow;    ///< called with each finished row, before its pivot is judged
  std::size_t keptBytes = 12 << 20;  ///< how much of the finished rows may be kept, besides a part
                                     ///< of what the matrix takes
  double lostPart = kLostPart;       ///< see AcceptsPivot
};

/// Factorises n rows in place as L·D·Lᵀ, without pivoting. Returns -1, or the first row whose
/// pivot is refused (see AcceptsPivot); what the rows from there on hold is then undefined.
int FactoriseLdlt(const ProfileRows& matrix, int n, const LdltOptions& options);

}  // namespace morlen
