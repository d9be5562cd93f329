#include "direct/upper_matrix.h"

#include <algorithm>
#include <utility>

#include "base/errorwriter.h"
#include "base/memory_limit.h"
#include "numeric/matriu.h"

namespace morlen::direct {

UpperMatrix::UpperMatrix(NodePattern pattern_, int ndof_)
    : ndof(ndof_), pattern(std::move(pattern_))
{
  const int lines = pattern.Lines();
  firstUpper.reserve(static_cast<std::size_t>(lines));
  blockNumber.reserve(static_cast<std::size_t>(lines));
  int blocks = 0;
  for (int p = 0; p < lines; ++p) {
    const auto begin = pattern.columns.begin() + pattern.starts[p];
    const auto end = pattern.columns.begin() + pattern.starts[p + 1];
    const auto own = std::lower_bound(begin, end, p);
    firstUpper.push_back(static_cast<int>(own - pattern.columns.begin()));
    blockNumber.push_back(blocks);
    blocks += static_cast<int>(end - own);
  }
  const std::size_t count = static_cast<std::size_t>(blocks) * ndof * ndof;
  RequireMemory(count * sizeof(double));
  values.resize(count, 0.0);
}

void UpperMatrix::SetToZero()
{
  std::fill(values.begin(), values.end(), 0.0);
}

std::ptrdiff_t UpperMatrix::FindBlock(int p, int q) const
{
  const int* const first = pattern.columns.data() + firstUpper[p];
  const int* const end = pattern.columns.data() + pattern.starts[p + 1];
  constexpr std::ptrdiff_t kLong = 32;  // few nodes have so many neighbours
  const int* place = end - first > kLong ? std::lower_bound(first, end, q) : first;
  while (place != end && *place < q)
    ++place;
  return place != end && *place == q ? blockNumber[p] + (place - first) : -1;
}

double* UpperMatrix::Find(int i, int j)
{
  const int low = std::min(i, j) - 1;
  const int high = std::max(i, j) - 1;
  const std::ptrdiff_t block = FindBlock(low / ndof, high / ndof);
  return block < 0 ? nullptr : values.data() + (block * ndof + low % ndof) * ndof + high % ndof;
}

void UpperMatrix::AddNodeBlock(int p, int q, const double* m, bool transposed)
{
  const std::ptrdiff_t block = FindBlock(p, q);
  if (block < 0)
    Fatal("error: nodes ", p + 1, " and ", q + 1, " are not coupled in the matrix\n");
  double* const to = values.data() + block * ndof * ndof;
  for (int a = 0; a < ndof; ++a) {
    for (int b = 0; b < ndof; ++b)
      to[a * ndof + b] += transposed ? m[b * ndof + a] : m[a * ndof + b];
  }
}

void UpperMatrix::AddElement(const ElementBlocks& element)
{
  const double* block = element.values;
  for (std::size_t i = 0; i < element.nodes.size(); ++i) {
    for (std::size_t j = i; j < element.nodes.size(); ++j, block += ndof * ndof) {
      const int p = element.nodes[i] - 1;
      const int q = element.nodes[j] - 1;
      AddNodeBlock(std::min(p, q), std::max(p, q), block, p > q);
    }
  }
}

void UpperMatrix::AddBlock(int row, int col, const Matriu& m)
{
  for (int i = 1; i <= m.Rows(); ++i) {
    for (int j = std::max(1, row + i - col); j <= m.Cols(); ++j) {
      if (double* const entry = Find(row + i - 1, col + j - 1))
        *entry += m(i, j);
    }
  }
}

// visit(j, entry) for the whole row i, with the entries below the diagonal.
template <class Visit>
void UpperMatrix::ForEachInRow(int i, Visit visit) const
{
  const int p = (i - 1) / ndof;
  const int a = (i - 1) % ndof;
  for (int s = pattern.starts[p]; s < pattern.starts[p + 1]; ++s) {
    const int q = pattern.columns[s];
    const std::ptrdiff_t block = FindBlock(std::min(p, q), std::max(p, q));
    double* const entries = values.data() + block * ndof * ndof;
    for (int b = 0; b < ndof; ++b) {
      const bool above = p < q || (p == q && a <= b);
      visit(q * ndof + b + 1, entries[above ? a * ndof + b : b * ndof + a]);
    }
  }
}

void UpperMatrix::Constrain(int eq, std::span<const double> prescribed,
                            std::span<ReaVecV* const> sides)
{
  for (std::size_t k = 0; k < sides.size(); ++k) {
    ReaVecV& b = *sides[k];
    const double value = prescribed[k];
    if (value != 0.0)
      ForEachInRow(eq, [&](int j, double entry) { b(j) -= value * entry; });
    b(eq) = value;
  }
  ForEachInRow(eq, [&](int j, double& entry) { entry = j == eq ? 1.0 : 0.0; });
}

double UpperMatrix::RowTimes(int i, const ReaVecV& v) const
{
  double sum = 0.0;
  ForEachInRow(i, [&](int j, double entry) { sum += entry * v(j); });
  return sum;
}

namespace {

// Moves the entries of a block of the nodes p and q that are not 0 to the end of those found.
void MoveBlock(const double* block, int p, int q, int ndof, Coordinates& found)
{
  for (int a = 0; a < ndof; ++a) {
    for (int b = p == q ? a : 0; b < ndof; ++b) {
      const double value = block[a * ndof + b];
      if (value == 0.0)
        continue;
      found.values[found.rows.size()] = value;
      found.rows.push_back(p * ndof + a + 1);
      found.columns.push_back(q * ndof + b + 1);
    }
  }
}

}  // namespace

Coordinates UpperMatrix::Compress()
{
  const auto count = static_cast<std::size_t>(
      std::count_if(values.begin(), values.end(), [](double value) { return value != 0.0; }));
  RequireMemory(2 * count * sizeof(int));
  Coordinates found;
  found.rows.reserve(count);
  found.columns.reserve(count);
  found.values = values.data();
  const double* block = values.data();
  for (int p = 0; p < pattern.Lines(); ++p) {
    for (int s = firstUpper[p]; s < pattern.starts[p + 1]; ++s, block += ndof * ndof)
      MoveBlock(block, p, pattern.columns[s], ndof, found);
  }
  return found;
}

}  // namespace morlen::direct
