#include "numeric/matriu.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <ostream>
#include <span>

#include "base/errorwriter.h"
#include "base/stprintf.h"
#include "numeric/reavec.h"
#include "numeric/reavecv.h"

namespace morlen {

namespace {

std::span<double> Entries(Matriu& m)
{
  return {m.Data(), static_cast<std::size_t>(m.Size())};
}

std::span<const double> Entries(const Matriu& m)
{
  return {m.Data(), static_cast<std::size_t>(m.Size())};
}

/// Refuses a matrix without entries. `name` is the quantity for the message.
void RequireEntries(const Matriu& m, const char* name)
{
  if (m.Size() == 0)
    Fatal("Can't compute the ", name, " of a zero size Matriu");
}

/// Folds f(accumulator, entry) from 0 over all entries.
template <class F>
double Reduce(const Matriu& m, const char* name, F f)
{
  RequireEntries(m, name);
  double result = 0.0;
  for (const double entry : Entries(m))
    result = f(result, entry);
  return result;
}

/// The largest over k of the sum over l of entry(k, l), at least 0.
template <class Entry>
double LargestSum(int kCount, int lCount, Entry entry)
{
  double largest = 0.0;
  for (int k = 1; k <= kCount; k++) {
    double sum = 0.0;
    for (int l = 1; l <= lCount; l++)
      sum += entry(k, l);
    largest = std::max(largest, sum);
  }
  return largest;
}

/// Writes `from` over the entries of `to` from (row, col) on; `to` must be large enough.
void CopyBlock(const Matriu& from, int row, int col, Matriu& to)
{
  for (int i = 1; i <= from.Rows(); i++)
    for (int j = 1; j <= from.Cols(); j++)
      to(row + i - 1, col + j - 1) = from(i, j);
}

}  // namespace

Matriu::Matriu(const ReaVec& v)
{
  Reshape(v.Size(), 1);
  std::copy(v.begin(), v.end(), Data());
}

Matriu::Matriu(const ReaVecV& v)
{
  Reshape(v.Size(), 1);
  std::copy(v.begin(), v.end(), Data());
}

MatriuT Matriu::I(int n)
{
  if (n < 1)
    Fatal("Can't construct an identity Matriu of size ", n);
  MatriuT identity(n, n);
  identity = 0.0;
  for (int k = 1; k <= n; k++)
    identity(k, k) = 1.0;
  return identity;
}

Matriu& Matriu::operator=(const Matriu& m)
{
  if (this != &m) {
    Reshape(m.nrows, m.ncols);
    std::ranges::copy(Entries(m), Data());
  }
  return *this;
}

Matriu& Matriu::operator=(double value)
{
  if (Size() == 0)
    Fatal("Can't fill with ", value, " a zero size Matriu");
  std::ranges::fill(Entries(*this), value);
  return *this;
}

void Matriu::redimension(int rows, int cols)
{
  if (rows < 0 || cols < 0)
    Fatal("Can't redimension to a negative values");
  Reshape(rows, cols);
}

MatriuT Matriu::subMatriu(int row0, int col0, int row1, int col1) const
{
  const bool rowsAreInside = row0 > 0 && row0 <= row1 && row1 <= nrows;
  const bool colsAreInside = col0 > 0 && col0 <= col1 && col1 <= ncols;
  if (!rowsAreInside || !colsAreInside)
    Fatal("subMatriu incorrect size :\n\tMatriu size nrows=", nrows, ", ncols=", ncols,
          "\tsubMatriu start: row=", row0, ", col=", col0, ", end: row=", row1, ", col=", col1);
  MatriuT part(row1 - row0 + 1, col1 - col0 + 1);
  for (int i = row0; i <= row1; i++)
    for (int j = col0; j <= col1; j++)
      part(i - row0 + 1, j - col0 + 1) = (*this)(i, j);
  return part;
}

void Matriu::AddSubmatriu(int row, int col, const Matriu& m)
{
  assert(row >= 1 && col >= 1);
  if (&m == this)
    return AddSubmatriu(row, col, Matriu(m));
  if (m.Size() == 0)
    return;
  Enlarge(row - 1LL + m.nrows, col - 1LL + m.ncols);
  CopyBlock(m, row, col, *this);
}

ReaVec Matriu::GiveColumn(int j) const
{
  ReaVec column(nrows);
  for (int i = 1; i <= nrows; i++)
    column(i) = (*this)(i, j);
  return column;
}

double Matriu::maxAbsVal() const
{
  return Reduce(*this, "maxAbsVal", [](double a, double x) { return std::max(a, std::abs(x)); });
}

double Matriu::sumAbsVal() const
{
  return Reduce(*this, "sumAbsVal", [](double a, double x) { return a + std::abs(x); });
}

double Matriu::sumSquare() const
{
  return Reduce(*this, "sumSquare", [](double a, double x) { return a + x * x; });
}

double Matriu::colNorm() const
{
  RequireEntries(*this, "colNorm");
  return LargestSum(ncols, nrows, [this](int col, int row) { return (*this)(row, col); });
}

double Matriu::rowNorm() const
{
  RequireEntries(*this, "rowNorm");
  return LargestSum(nrows, ncols, [this](int row, int col) { return (*this)(row, col); });
}

double Matriu::trace() const
{
  RequireEntries(*this, "trace");
  if (nrows != ncols)
    Fatal("Can't compute the trace of a non square Matriu");
  double sum = 0.0;
  for (int k = 1; k <= nrows; k++)
    sum += (*this)(k, k);
  return sum;
}

bool Matriu::isZero() const
{
  return Size() > 0 && std::ranges::all_of(Entries(*this), [](double x) { return x == 0.0; });
}

void Matriu::scorn(double eps)
{
  if (Size() == 0)
    Fatal("Can't scorn a zero size Matriu");
  std::ranges::replace_if(
      Entries(*this), [eps](double x) { return std::abs(x) <= eps; }, 0.0);
}

void Matriu::ReadAscii(std::FILE* file)
{
  if (Size() == 0)
    Fatal("error: can't ascii read 0x0 matrix\n");
  for (double& entry : Entries(*this))
    if (std::fscanf(file, "%lf", &entry) != 1)
      Fatal("error: can't ascii read matrix\n");
}

void Matriu::WriteAscii(std::FILE* file) const
{
  if (Size() == 0)
    Fatal("error: can't ascii write 0x0 matrix\n");
  for (int i = 1; i <= nrows; i++) {
    for (int j = 1; j <= ncols; j++)
      std::fprintf(file, "%lf  ", (*this)(i, j));
    std::fputc('\n', file);
  }
}

void Matriu::ReadBinary(std::FILE* /*file*/)
{
  Fatal("error: Function 'ReadBinary' should not be used\n");
}

void Matriu::WriteBinary(std::FILE* file) const
{
  if (Size() == 0)
    Fatal("error: can't write 0x0 matrix\n");
  std::fwrite(Data(), sizeof(double), static_cast<std::size_t>(Size()), file);
}

Matriu& Matriu::MoveFrom(Matriu& m) noexcept
{
  if (this != &m) {
    nrows = std::exchange(m.nrows, 0);
    ncols = std::exchange(m.ncols, 0);
    data = std::move(m.data);
  }
  return *this;
}

std::unique_ptr<double[]> Matriu::Release() noexcept
{
  nrows = 0;
  ncols = 0;
  return std::move(data);
}

/// Gives the matrix its shape, keeping the array when the size stays.
void Matriu::Reshape(long long rows, long long cols)
{
  constexpr long long kMaxSize = std::numeric_limits<int>::max();
  const bool fits = 0 <= rows && rows <= kMaxSize && 0 <= cols && cols <= kMaxSize;
  if (!fits || rows * cols > kMaxSize)
    Fatal("Can't create a Matriu of size ", rows, " X ", cols);
  const auto size = static_cast<std::size_t>(rows * cols);
  if (size != static_cast<std::size_t>(Size())) {
    Release();
    data = size == 0 ? nullptr : std::make_unique_for_overwrite<double[]>(size);
  }
  nrows = static_cast<int>(rows);
  ncols = static_cast<int>(cols);
}

/// Gives the matrix at least this shape, keeping the old entries and filling the new ones with 0.
void Matriu::Enlarge(long long rows, long long cols)
{
  if (rows <= nrows && cols <= ncols)
    return;
  Matriu enlarged(std::max<long long>(rows, nrows), std::max<long long>(cols, ncols));
  enlarged = 0.0;
  if (Size() > 0)
    CopyBlock(*this, 1, 1, enlarged);
  MoveFrom(enlarged);
}

bool AreVeryEqual(const Matriu& a, const Matriu& b, double tol)
{
  const auto areClose = [tol](double x, double y) { return !(std::abs(x - y) > tol); };
  return a.Rows() == b.Rows() && a.Cols() == b.Cols() &&
         std::ranges::equal(Entries(a), Entries(b), areClose);
}

std::ostream& operator<<(std::ostream& out, const Matriu& m)
{
  if (m.Size() == 0)
    return out << "\n\t(Zero size Matriu)\n";
  out << "\n   ";
  for (int j = 1; j <= m.Cols(); j++)
    stprintf(out, "%10i ", j);
  for (int i = 1; i <= m.Rows(); i++) {
    stprintf(out, "\n%2i ", i);
    for (int j = 1; j <= m.Cols(); j++)
      stprintf(out, "%10g ", m(i, j));
  }
  return out;
}

}  // namespace morlen
