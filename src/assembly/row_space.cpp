#include "assembly/row_space.h"

#include <algorithm>
#include <cmath>

namespace morlen {

namespace {

// A row is dependent when the elimination leaves less than this part of its largest entry.
constexpr double kDependent = 1e-7;

void Subtract(SixNumbers& row, const SixNumbers& other, double factor)
{
  for (int k = 0; k < 6; ++k)
    row[k] -= factor * other[k];
}

int LargestColumn(const SixNumbers& row)
{
  return static_cast<int>(
      std::max_element(row.begin(), row.end(),
                       [](double a, double b) { return std::fabs(a) < std::fabs(b); }) -
      row.begin());
}

}  // namespace

void RowSpace::Add(SixNumbers row)
{
  const double before = std::fabs(row[LargestColumn(row)]);
  for (const Reduced& known : rows)
    Subtract(row, known.values, row[known.column]);
  const int column = LargestColumn(row);
  if (!(std::fabs(row[column]) > kDependent * before))
    return;
  const double pivot = row[column];
  for (double& value : row)
    value /= pivot;
  for (Reduced& known : rows)
    Subtract(known.values, row, known.values[column]);
  rows.push_back({column, row});
}

std::vector<SixNumbers> RowSpace::FreeMotions(const std::vector<int>& columns) const
{
  std::vector<SixNumbers> motions;
  for (const int column : columns) {
    if (std::any_of(rows.begin(), rows.end(),
                    [column](const Reduced& r) { return r.column == column; }))
      continue;
    SixNumbers motion{};
    motion[column] = 1.0;
    for (const Reduced& known : rows)
      motion[known.column] = -known.values[column];
    motions.push_back(motion);
  }
  return motions;
}

}  // namespace morlen
