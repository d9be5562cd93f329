#pragma once

#include "numeric/reavecv.h"

namespace morlen {

/// A vector of about twice the digits of a double: component i is value(i) + rest(i), and
/// value(i) is that sum rounded.
///
/// Displacements of a long or stiff structure need the second part: forces follow from the
/// differences of nearly equal displacements, for which a double leaves too few digits.
struct SplitVector
{
  SplitVector() = default;
  /// The rest is 0.
  explicit SplitVector(ReaVecV v);

  /// Adds a vector of the same length.
  void Add(const ReaVecV& correction);

  ReaVecV value;
  ReaVecV rest;
};

/// The two parts of a vector, borrowed, entries from 0. A null rest is 0.
struct SplitView
{
  SplitView(const ReaVecV& v) : value(v.Data()) {}  // NOLINT: a vector is its own view
  SplitView(const ReaVecV& v, const ReaVecV& r) : value(v.Data()), rest(r.Data()) {}
  SplitView(const SplitVector& v) : SplitView(v.value, v.rest) {}  // NOLINT

  const double* value;
  const double* rest = nullptr;
};

}  // namespace morlen
