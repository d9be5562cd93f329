#include "numeric/reavec.h"

#include <algorithm>

#include "numeric/matriu.h"

namespace morlen {

ReaVec& ReaVec::operator=(double value)
{
  std::fill(begin(), end(), value);
  return *this;
}

ReaVec& ReaVec::operator=(const Matriu& column)
{
  n = RequireSize(ColumnLength(column));
  std::copy_n(column.Data(), n, components);
  return *this;
}

ReaVec& ReaVec::operator=(MatriuT& column)
{
  *this = static_cast<const Matriu&>(column);
  column.Release();
  return *this;
}

void ReaVec::resize(int length, double value)
{
  const int kept = std::min(n, RequireSize(length));
  n = length;
  std::fill(begin() + kept, end(), value);
}

ReaVec ReaVec::subVec(int start, int length) const
{
  ReaVec part;
  if (length == 0)
    return part;
  const VectorRange range = ResolveRange(n, start, length);
  part.n = range.length;
  std::copy_n(begin() + range.first, range.length, part.begin());
  return part;
}

}  // namespace morlen
