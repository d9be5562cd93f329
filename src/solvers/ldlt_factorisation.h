#pragma once

#include <cstddef>
#include <functional>

#include "solvers/ldlt_kernel.h"
#include "solvers/profile_rows.h"

/// What the factorisation reports, and by what it is done.
struct LdltOptions
{
  const LdltKernel* kernel;          ///< one of LdltKernels()
  std::function<void(int)> onRow;    ///< called with each finished row, before its pivot is judged
  std::size_t keptBytes = 12 << 20;  ///< how much of the finished rows may be kept, besides a part
                                     ///< of what the matrix takes
};

/// Factorises n rows in place as L·D·Lᵀ, without pivoting. Returns -1, or the first row whose
/// pivot is refused (see PivotCheck); what the rows from there on hold is then undefined.
int FactoriseLdlt(const ProfileRows& matrix, int n, const LdltOptions& options);
