#pragma once

#include <cstddef>
#include <functional>

#include "solvers/ldlt_kernel.h"
#include "solvers/pivot_check.h"
#include "solvers/profile_rows.h"

namespace morlen {

/// Kernel, memory and progress of a factorisation.
struct LdltOptions
{
  const LdltKernel* kernel;          ///< one of LdltKernels()
  std::function<void(int)> onRow;    ///< called with each finished row, before its pivot is judged
  std::size_t keptBytes = 12 << 20;  ///< limit of the blocks of finished rows that are kept; an
                                     ///< eighth of the size of the matrix is added
  double lostPart = kLostPart;       ///< see AcceptsPivot
  /// Where set, it is called with each refused row and its diagonal entry. The result is added to
  /// the pivot, and the factorisation goes on.
  std::function<double(int, double)> hold = {};
};

/// Factorises n rows in place as L·D·Lᵀ, without pivoting. Returns -1, or the first row whose
/// pivot is refused (see AcceptsPivot); that row is then finished, the rows after it are undefined.
/// With `hold`, a row is refused only if its pivot is then 0 or not finite.
int FactoriseLdlt(const ProfileRows& matrix, int n, const LdltOptions& options);

}  // namespace morlen
