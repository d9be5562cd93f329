#include "solvers/skymatriu.h"

#include <algorithm>
#include <cassert>
#include <cmath>

#include "base/constants.h"
#include "base/errorwriter.h"
#include "base/interruption.h"
#include "base/memory_limit.h"
#include "base/stprintf.h"
#include "numeric/matriu.h"
#include "solvers/ldlt_factorisation.h"
#include "solvers/ldlt_kernels.h"
#include "solvers/profile_rows.h"

namespace morlen {

namespace {

constexpr int kEquationsPerMessage = 500;
/// Distance in rows of the prefetch in the substitutions: the processor itself does not prefetch
/// across the end of a row, nor backwards.
constexpr int kRowsAhead = 4;
/// Rows of a substitution between two calls of CheckInterruption.
constexpr int kRowsPerCheck = 64;

bool IsZero(double value)
{
  return std::fabs(value) < EPSILON;
}

}  // namespace

SkyMatriu::SkyMatriu(int n_, Processor processor) : n(n_), kernel(LdltKernels(processor).front())
{
  if (n < 0)
    Fatal("Not space available on heap");
  heights.assign(static_cast<std::size_t>(n), 0);
  rows.assign(static_cast<std::size_t>(n), nullptr);
}

void SkyMatriu::EnterMaxDiff(int node1, int node2, int ndof)
{
  const auto [low, high] = std::minmax(node1, node2);
  const int firstEquation = (low - 1) * ndof + 1;
  for (int k = 1; k <= ndof; ++k)
    EnterMaxDiff(firstEquation, (high - 1) * ndof + k);
}

void SkyMatriu::EnterMaxDiff(int eq1, int eq2)
{
  const auto [low, high] = std::minmax(eq1, eq2);
  assert(low >= 1 && high <= n && values.empty());
  heights[high - 1] = std::max(heights[high - 1], high - low + 1);
}

int SkyMatriu::HeightWithBlock(int i, int ndof) const
{
  assert(ndof >= 1);
  return std::max(heights[i - 1], (i - 1) % ndof + 1);
}

std::size_t SkyMatriu::StorageBytes(int ndof) const
{
  std::size_t entries = 0;
  for (int i = 1; i <= n; ++i)
    entries += static_cast<std::size_t>(HeightWithBlock(i, ndof));
  return entries * sizeof(double);
}

void SkyMatriu::Create(int ndof)
{
  for (int i = 1; i <= n; ++i)
    heights[i - 1] = HeightWithBlock(i, ndof);
  AllocateRows();
  FindLastRows();
  factorised = false;
}

void SkyMatriu::AllocateRows()
{
  const std::size_t bytes = StorageBytes();
  values = LargeArray<double>();  // unlike {}, gives the memory back
  RequireMemory(bytes);
  values.resize(bytes / sizeof(double), 0.0);
  double* next = values.data();
  for (int i = 0; i < n; ++i) {
    rows[i] = next;
    next += heights[i];
  }
}

void SkyMatriu::FindLastRows()
{
  lastRow.assign(static_cast<std::size_t>(n), 0);
  for (int i = 1; i <= n; ++i)
    lastRow[i - heights[i - 1]] = i;
  for (int i = 1; i < n; ++i)
    lastRow[i] = std::max(lastRow[i], lastRow[i - 1]);
}

double* SkyMatriu::Find(int i, int j) const
{
  const auto [low, high] = std::minmax(i, j);
  assert(low >= 1 && high <= n && !values.empty());
  const int d = high - low;
  return d < heights[high - 1] ? &rows[high - 1][d] : nullptr;
}

double SkyMatriu::Value(int i, int j) const
{
  const double* entry = Find(i, j);
  return entry ? *entry : 0.0;
}

double& SkyMatriu::operator()(int i, int j)
{
  double* entry = Find(i, j);
  if (entry)
    return *entry;
  outside = 0.0;
  return outside;
}

template <class Visit>
void SkyMatriu::ForEachInRow(int i, Visit visit) const
{
  for (int j = i - heights[i - 1] + 1; j <= i; ++j)
    visit(j, rows[i - 1][i - j]);
  for (int j = i + 1; j <= lastRow[i - 1]; ++j)
    if (j - i < heights[j - 1])
      visit(j, rows[j - 1][j - i]);
}

void SkyMatriu::SetToZero()
{
  std::fill(values.begin(), values.end(), 0.0);
  factorised = false;
}

void SkyMatriu::AddSubMatriu(int row, int col, const Matriu& m)
{
  const int cols = m.Cols();
  for (int b = 0; b < cols; ++b) {
    // Column j of the block, upwards from the diagonal, is row j in the order of its storage.
    const int j = col + b;
    assert(row >= 1 && j <= n && !values.empty());
    double* const entries = rows[j - 1];
    const int begin = std::max(row, j - heights[j - 1] + 1);
    const int end = std::min(row + m.Rows(), j + 1);
    for (int i = begin; i < end; ++i)
      entries[j - i] += m.Data()[static_cast<std::ptrdiff_t>(i - row) * cols + b];
  }
}

int SkyMatriu::Txolesky(std::FILE* info)
{
  factorised = false;
  const auto report = [&](int row) {
    if ((row + 1) % kEquationsPerMessage == 0)
      Progress(info, "Solving degree %i of %i\n", row + 1, n);
  };
  LdltOptions options = {.kernel = kernel, .onRow = report, .lostPart = lostPart};
  held.clear();
  if (holdsRefused)
    options.hold = [this](int row, double diagonal) {
      held.push_back({row + 1, diagonal > 0.0 ? diagonal : 1.0});
      return held.back().stiffness;
    };
  const int refused = FactoriseLdlt({rows.data(), heights.data()}, n, options);
  factorised = refused < 0;
  return refused + 1;
}

// With the rows before the equation as L11·D1·L11ᵀ, those of K·u are 0 for L11ᵀ·u1 = -l, where l is
// the row of the equation in L. This is the second substitution, begun at that row.
ReaVecV SkyMatriu::MotionOfRefused(int equation) const
{
  ReaVecV motion;
  motion.resize(n, 0.0);
  motion(equation) = 1.0;
  for (int i = equation; i > 1; --i) {
    const double value = motion(i);
    for (int d = 1; value != 0.0 && d < heights[i - 1]; ++d)
      motion(i - d) -= rows[i - 1][d] * value;
  }
  return motion;
}

// Each row is used for all sides while it is in the cache.
void SkyMatriu::Substitute(const RightHandSides& sides, std::FILE* info) const
{
  assert(factorised);
  Progress(info, "Beginning 1st substitution in LU system\n");
  // The rows are stored from the diagonal leftwards; a reversed vector has the same order.
  for (ReaVecV* const b : sides)
    std::reverse(b->Data(), b->Data() + n);
  for (int i = 0; i < n; ++i) {
    if (i % kRowsPerCheck == 0)
      CheckInterruption();
    if (i + kRowsAhead < n)
      FetchRow(rows[i + kRowsAhead], heights[i + kRowsAhead]);
    for (ReaVecV* const b : sides) {
      double* const xi = b->Data() + (n - 1 - i);
      *xi -= DotProduct(rows[i] + 1, xi + 1, heights[i] - 1);
    }
  }

  Progress(info, "Beginning 2nd substitution in LU system\n");
  for (ReaVecV* const b : sides)
    for (int i = 0; i < n; ++i)
      b->Data()[n - 1 - i] /= rows[i][0];
  for (int i = n - 1; i > 0; --i) {
    if (i % kRowsPerCheck == 0)
      CheckInterruption();
    if (i > kRowsAhead)
      FetchRow(rows[i - kRowsAhead], heights[i - kRowsAhead]);
    for (ReaVecV* const b : sides) {
      double* const xi = b->Data() + (n - 1 - i);
      SubtractMultiple(xi + 1, rows[i] + 1, *xi, heights[i] - 1);
    }
  }
  for (ReaVecV* const b : sides)
    std::reverse(b->Data(), b->Data() + n);
}

int SkyMatriu::Factorise(std::FILE* info)
{
  const int refused = Txolesky(info);
  if (refused == 0)
    Progress(info, "Txolesky finished\n");
  return refused;
}

int SkyMatriu::ApplyConstraint(int eq, std::span<const double> prescribed,
                               std::span<ReaVecV* const> sides)
{
  assert(prescribed.size() == sides.size());
  for (std::size_t k = 0; k < sides.size(); ++k) {
    ReaVecV& b = *sides[k];
    const double value = prescribed[k];
    if (value != 0.0)
      ForEachInRow(eq, [&](int i, double entry) { b(i) -= value * entry; });
    b(eq) = value;
  }
  EraseRowColumn(eq);
  val(eq, eq) = 1.0;
  return eq;
}

void SkyMatriu::EraseRowColumn(int eq)
{
  ForEachInRow(eq, [eq](int j, double& entry) {
    if (j != eq)
      entry = 0.0;
  });
}

double SkyMatriu::ReturnRowPerVector(int i, const ReaVecV& v) const
{
  double sum = 0.0;
  ForEachInRow(i, [&](int j, double entry) { sum += entry * v(j); });
  return sum;
}

int SkyMatriu::HasVoidRows() const
{
  std::vector<bool> isVoid(static_cast<std::size_t>(n), true);
  for (int i = 0; i < n; ++i)
    for (int d = 0; d < heights[i]; ++d)
      if (!IsZero(rows[i][d]))
        isVoid[i] = isVoid[i - d] = false;
  const auto found = std::find(isVoid.begin(), isVoid.end(), true);
  return found == isVoid.end() ? 0 : static_cast<int>(found - isVoid.begin()) + 1;
}

void SkyMatriu::CheckDegree(int eq) const
{
  std::vector<double> row(static_cast<std::size_t>(n), 0.0);
  ForEachInRow(eq, [&](int j, double entry) { row[j - 1] = entry; });
  std::vector<int> significant;
  for (int j = 1; j <= n; ++j)
    if (!IsZero(row[j - 1]))
      significant.push_back(j);

  for (int i = 1; i <= n; ++i)
    if (i != eq && IsMultiple(i, row, significant))
      errorwriter.Stream() << "error: Degree of freedom " << eq << " and " << i
                           << " are dependent\n";
}

bool SkyMatriu::IsMultiple(int i, const std::vector<double>& row,
                           const std::vector<int>& significant) const
{
  const auto ratio = [&](int j) { return Value(i, j) / row[j - 1]; };
  for (const int j : significant)
    if (!(std::fabs(ratio(j) - ratio(significant.front())) <= EPSILON))
      return false;

  // The other entries of row i must be 0.
  bool isZero = true;
  ForEachInRow(
      i, [&](int j, double entry) { isZero = isZero && (!IsZero(row[j - 1]) || IsZero(entry)); });
  return isZero;
}

}  // namespace morlen
