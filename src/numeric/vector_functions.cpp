#include "numeric/vector_functions.h"

#include <iomanip>
#include <limits>

#include "numeric/matriu.h"

namespace morlen {

VectorRange ResolveRange(int n, int start, int length)
{
  const long long first = start < 0 ? static_cast<long long>(n) + start : start - 1LL;
  const long long last = length == 0 ? n - 1LL : first + length - 1LL;
  const bool lastIsInside = 0 <= last && last < n;
  if (!lastIsInside || first < 0 || first > last)
    Fatal("Index ", lastIsInside ? first : last, " out of range.");
  return {static_cast<int>(first), static_cast<int>(last - first + 1)};
}

int JoinedLength(int na, int nb)
{
  const long long length = static_cast<long long>(na) + nb;
  if (length > std::numeric_limits<int>::max())
    FatalVectorSize(length);
  return static_cast<int>(length);
}

int ColumnLength(const Matriu& m)
{
  if (m.Cols() != 1)
    Fatal("error: Assigning Vector=Matrix where M(num cols)=", m.Cols(), "\n");
  return m.Rows();
}

void FatalVectorIndex()
{
  Fatal("Out of Dimension in Vector");
}

void FatalVectorSize(long long length)
{
  Fatal("Can't create a vector of size ", length);
}

void FatalVectorLengths(int na, int nb)
{
  Fatal("Different lenght vectors ", na, " != ", nb);
}

void WriteVector(std::ostream& out, std::span<const double> values)
{
  if (values.empty())
    out << "\n\t(Zero size vector)\n";
  const std::ios_base::fmtflags flags = out.flags();
  out << std::scientific;
  const int width = static_cast<int>(out.precision()) + 7;
  for (const double value : values)
    out << "  " << std::setw(width) << value;
  out.flags(flags);
  out.flush();
}

}  // namespace morlen
