#pragma once

#include <memory>
#include <utility>

#include "numeric/reavec.h"
#include "numeric/vector_functions.h"

namespace morlen {

class Matriu;
class MatriuT;
class ReaVecVT;

/// Vector of n doubles on the heap; indices run from 1.
///
/// Expressions return a ReaVecVT, whose array the target of an assignment takes
/// over, so that v = a + b allocates once. Taking over works from a named
/// temporary too and leaves it empty (length 0).
///
/// Fatal: a negative length, an index outside 1..n, operands of unequal length,
/// a matrix that is not a column.
class ReaVecV : public VectorMembers<ReaVecV>
{
public:
  using Owner = ReaVecV;
  using Temporary = ReaVecVT;

  ReaVecV() = default;
  explicit ReaVecV(int length);  ///< values not initialised
  ReaVecV(const ReaVecV& v) { *this = v; }
  ReaVecV(ReaVecV&& v) noexcept { MoveFrom(v); }
  ReaVecV(ReaVecVT& v) noexcept;  ///< leaves the temporary empty
  explicit ReaVecV(const ReaVec& v) { *this = v; }
  explicit ReaVecV(const Matriu& column) { *this = column; }
  explicit ReaVecV(MatriuT& column) { *this = column; }  ///< leaves the temporary empty
  explicit ReaVecV(MatriuT&& column) { *this = column; }
  ~ReaVecV() = default;

  ReaVecV& operator=(const ReaVecV& v);
  ReaVecV& operator=(ReaVecV&& v) noexcept { return MoveFrom(v); }
  ReaVecV& operator=(ReaVecVT& v) noexcept;  ///< leaves the temporary empty
  ReaVecV& operator=(const ReaVec& v);
  ReaVecV& operator=(const Matriu& column);
  ReaVecV& operator=(MatriuT& column);  ///< leaves the temporary empty
  ReaVecV& operator=(MatriuT&& column) { return *this = column; }
  ReaVecV& operator=(double value);  ///< fills; fatal on length 0

  int Size() const { return n; }
  double* Data() { return data.get(); }
  const double* Data() const { return data.get(); }

  double& operator()(int i) { return data[RequireIndex(i) - 1]; }
  double operator()(int i) const { return data[RequireIndex(i) - 1]; }

  /// Changes the length, keeping the components up to the shorter one, and sets
  /// the components added to the value. The array is kept when the length stays.
  void resize(int length, double value);
  /// A copy of `length` components from `start` on, both read as by ResolveRange.
  ReaVecVT subVec(int start, int length) const;

private:
  int RequireIndex(int i) const
  {
    if (i < 1 || i > n)
      FatalVectorIndex();
    return i;
  }
  ReaVecV& MoveFrom(ReaVecV& v) noexcept;
  /// The array is kept when the length stays.
  ReaVecV& CopyFrom(const double* values, int length);

  int n = 0;
  std::unique_ptr<double[]> data = nullptr;  ///< null, or exactly n doubles
};

/// A result on its way to its owner: a ReaVecV that gives its array away.
class ReaVecVT : public ReaVecV
{
public:
  using ReaVecV::ReaVecV;
  using ReaVecV::operator=;

  ReaVecVT() = default;
  ReaVecVT(ReaVecVT& v) noexcept : ReaVecV(v) {}
  ReaVecVT(ReaVecVT&& v) noexcept : ReaVecV(v) {}
  explicit ReaVecVT(const ReaVecV& v) : ReaVecV(v) {}
  explicit ReaVecVT(ReaVecV&& v) noexcept : ReaVecV(std::move(v)) {}
  ~ReaVecVT() = default;

  ReaVecVT& operator=(ReaVecVT& v) noexcept;
  ReaVecVT& operator=(ReaVecVT&& v) noexcept { return *this = v; }
};

inline ReaVecV::ReaVecV(ReaVecVT& v) noexcept
{
  MoveFrom(v);
}

inline ReaVecV& ReaVecV::operator=(ReaVecVT& v) noexcept
{
  return MoveFrom(v);
}

inline ReaVecVT& ReaVecVT::operator=(ReaVecVT& v) noexcept
{
  ReaVecV::operator=(v);
  return *this;
}

}  // namespace morlen
