#include "numeric/reavecv.h"

#include <algorithm>

#include "numeric/matriu.h"

namespace morlen {

namespace {

std::unique_ptr<double[]> NewArray(int length)
{
  if (length < 0)
    FatalVectorSize(length);
  return length == 0 ? nullptr : std::make_unique_for_overwrite<double[]>(length);
}

}  // namespace

ReaVecV::ReaVecV(int length) : data(NewArray(length))
{
  n = length;
}

ReaVecV& ReaVecV::operator=(const ReaVecV& v)
{
  return this == &v ? *this : CopyFrom(v.Data(), v.n);
}

ReaVecV& ReaVecV::operator=(const ReaVec& v)
{
  return CopyFrom(v.Data(), v.Size());
}

ReaVecV& ReaVecV::operator=(const Matriu& column)
{
  const int length = ColumnLength(column);
  return CopyFrom(column.Data(), length);
}

ReaVecV& ReaVecV::operator=(MatriuT& column)
{
  n = ColumnLength(column);
  data = column.Release();
  return *this;
}

ReaVecV& ReaVecV::operator=(double value)
{
  if (n == 0)
    Fatal("Can't fill with ", value, " a zero lenght vector.");
  std::fill(begin(), end(), value);
  return *this;
}

void ReaVecV::resize(int length, double value)
{
  if (length == n)
    return;
  std::unique_ptr<double[]> resized = NewArray(length);
  const int kept = std::min(n, length);
  std::copy_n(data.get(), kept, resized.get());
  std::fill(resized.get() + kept, resized.get() + length, value);
  data = std::move(resized);
  n = length;
}

ReaVecVT ReaVecV::subVec(int start, int length) const
{
  const VectorRange range = ResolveRange(n, start, length);
  ReaVecVT part(range.length);
  std::copy_n(begin() + range.first, range.length, part.begin());
  return part;
}

ReaVecV& ReaVecV::MoveFrom(ReaVecV& v) noexcept
{
  if (this != &v) {
    n = std::exchange(v.n, 0);
    data = std::move(v.data);
  }
  return *this;
}

ReaVecV& ReaVecV::CopyFrom(const double* values, int length)
{
  if (length != n) {
    n = 0;
    data.reset();
    data = NewArray(length);
    n = length;
  }
  std::copy_n(values, length, begin());
  return *this;
}

}  // namespace morlen
