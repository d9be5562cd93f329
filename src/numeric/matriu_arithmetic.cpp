#include "numeric/matriu_arithmetic.h"

#include <algorithm>

namespace morlen {

namespace {

using namespace matriu_kernels;

constexpr const char* kJoinZeroText = "Can't concatenate a zero size Matriu";

}  // namespace

Transpose Matriu::t() const&
{
  return Transpose(*this);
}

Transpose Matriu::t() &&
{
  return Transpose(std::move(*this));
}

Transpose MatriuT::t()
{
  return Transpose(*this);
}

Transpose::operator MatriuT() const
{
  return Build(Rows(), Cols(), *this);
}

Matriu Transpose::t()
{
  return borrowed ? Matriu(*borrowed) : std::move(owned);
}

Transpose Transpose::i() const
{
  return Source().i().t();
}

MatriuT operator-(MatriuT& m)
{
  EntryWiseInPlace(m, Negated());
  return m;
}

MatriuT operator-(MatriuT&& m)
{
  return -m;
}

Matriu& Matriu::operator+=(double value)
{
  return EntryWiseInPlace(*this, Plus{value});
}

Matriu& Matriu::operator-=(double value)
{
  return EntryWiseInPlace(*this, Less{value});
}

Matriu& Matriu::operator*=(double value)
{
  return EntryWiseInPlace(*this, Times{value});
}

Matriu& Matriu::operator/=(double value)
{
  return EntryWiseInPlace(*this, DividedBy{value});
}

Matriu& Matriu::operator+=(const Matriu& m)
{
  return EntryWiseInPlace(*this, m, Sum());
}

Matriu& Matriu::operator-=(const Matriu& m)
{
  return EntryWiseInPlace(*this, m, Difference());
}

MatriuT operator&(const Matriu& a, const Matriu& b)
{
  RequireEntries(a, b, kJoinZeroText);
  if (a.Rows() != b.Rows())
    FatalShapes(a, b, "Horizontal concatenation with diferent number of rows\n");
  MatriuT joined(a.Rows(), 0LL + a.Cols() + b.Cols());
  joined.AddSubmatriu(1, 1, a);
  joined.AddSubmatriu(1, a.Cols() + 1, b);
  return joined;
}

MatriuT operator|(const Matriu& a, const Matriu& b)
{
  RequireEntries(a, b, kJoinZeroText);
  if (a.Cols() != b.Cols())
    FatalShapes(a, b, "Vertical concatenation with diferent number of columns\n");
  MatriuT joined(0LL + a.Rows() + b.Rows(), a.Cols());
  joined.AddSubmatriu(1, 1, a);
  joined.AddSubmatriu(a.Rows() + 1, 1, b);
  return joined;
}

bool operator==(const Matriu& a, const Matriu& b)
{
  return a.Rows() == b.Rows() && a.Cols() == b.Cols() &&
         std::equal(a.Data(), a.Data() + a.Size(), b.Data());
}

}  // namespace morlen
