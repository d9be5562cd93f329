#pragma once

#include <cstddef>
#include <vector>

namespace morlen {

/// A square matrix in compressed storage, borrowed: values and indices of one line after the
/// other, line i from starts[i] to starts[i + 1] - 1. A line is a row (the indices are
/// columns) or, in column storage, a column. Everything runs from 0.
struct CompressedView
{
  int n;
  const double* values;
  const int* indices;
  const int* starts;  ///< n + 1 of them

  int LineLength(int i) const { return starts[i + 1] - starts[i]; }
};

/// A matrix in compressed storage that is filled line by line.
struct CompressedRows
{
  std::vector<double> values;
  std::vector<int> indices;
  std::vector<int> starts = {0};

  /// Reserves memory for so many lines and entries.
  void Reserve(std::size_t lines, std::size_t entries)
  {
    values.reserve(entries);
    indices.reserve(entries);
    starts.reserve(lines + 1);
  }

  void Add(int index, double value)
  {
    indices.push_back(index);
    values.push_back(value);
  }

  void EndLine() { starts.push_back(static_cast<int>(indices.size())); }

  CompressedView View() const
  {
    return {static_cast<int>(starts.size()) - 1, values.data(), indices.data(), starts.data()};
  }

  /// A double and an int for every entry, an int for every start.
  std::size_t StorageBytes() const
  {
    return values.size() * (sizeof(double) + sizeof(int)) + starts.size() * sizeof(int);
  }
};

/// The sum of values[k]·x[indices[k]], k ascending (step 1) or descending (step -1), in four
/// independent sums, so that no addition waits for the one before. The last terms are added last:
/// a triangular solve chooses the step so that these belong to the unknowns found last.
template <int step>
double IndexedDot(const double* values, const int* indices, int count, const double* x)
{
  if constexpr (step < 0) {
    if (count == 0)
      return 0.0;
    values += count - 1;
    indices += count - 1;
  }
  double sum0 = 0.0, sum1 = 0.0, sum2 = 0.0, sum3 = 0.0;
  for (; count >= 4; count -= 4) {
    sum0 += values[0] * x[indices[0]];
    sum1 += values[step] * x[indices[step]];
    sum2 += values[2 * step] * x[indices[2 * step]];
    sum3 += values[3 * step] * x[indices[3 * step]];
    values += 4 * step;
    indices += 4 * step;
  }
  double sum = (sum0 + sum1) + (sum2 + sum3);
  for (; count > 0; --count) {
    sum += *values * x[*indices];
    values += step;
    indices += step;
  }
  return sum;
}

}  // namespace morlen
