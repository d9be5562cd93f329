#pragma once

#include "numeric/vector_functions.h"

namespace morlen {

class Matriu;
class MatriuT;

/// Vector of at most three doubles inside the object: a point, a direction, a
/// set of Euler angles. Indices run from 1. Nothing is allocated.
///
/// The operators and functions of vector_functions.h return a new ReaVec.
/// Fatal: a length outside 0..3, an index outside 1..n, operands of unequal
/// length, a matrix that is not a column.
class ReaVec : public VectorMembers<ReaVec>
{
public:
  using Owner = ReaVec;
  using Temporary = ReaVec;
  static constexpr int kMaxSize = 3;

  ReaVec() = default;
  explicit ReaVec(int length) : n(RequireSize(length)) {}  ///< zeros
  ReaVec(double x, double y) : components{x, y, 0.0}, n(2) {}
  ReaVec(double x, double y, double z) : components{x, y, z}, n(3) {}
  explicit ReaVec(const Matriu& column) { *this = column; }
  explicit ReaVec(MatriuT& column) { *this = column; }  ///< leaves the temporary empty
  explicit ReaVec(MatriuT&& column) { *this = column; }

  ReaVec& operator=(double value);  ///< fills
  ReaVec& operator=(const Matriu& column);
  ReaVec& operator=(MatriuT& column);  ///< leaves the temporary empty
  ReaVec& operator=(MatriuT&& column) { return *this = column; }

  int Size() const { return n; }
  double* Data() { return components; }
  const double* Data() const { return components; }

  double& operator()(int i) { return components[RequireIndex(i) - 1]; }
  double operator()(int i) const { return components[RequireIndex(i) - 1]; }

  /// Changes the length and sets the components added to the value.
  void resize(int length, double value);
  /// A copy of `length` components from `start` on, which is read as by
  /// ResolveRange. Unlike there, a length of 0 gives an empty vector.
  ReaVec subVec(int start, int length) const;

private:
  static int RequireSize(int length)
  {
    if (length < 0 || length > kMaxSize)
      FatalVectorSize(length);
    return length;
  }
  int RequireIndex(int i) const
  {
    if (i < 1 || i > n)
      FatalVectorIndex();
    return i;
  }

  double components[kMaxSize] = {};  ///< the first n are meaningful
  int n = 0;                         ///< last, so that a derived class can use the padding after it
};

/// Square of the distance between two points. Not used by the analysis itself.
inline double distance2(const ReaVec& a, const ReaVec& b)
{
  return (a - b).sumsq();
}

}  // namespace morlen
