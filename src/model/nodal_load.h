#pragma once

#include <array>
#include <ostream>

#include "model/constraint.h"

namespace morlen {

/// The forces and moments on one node, in global axes.
class Load : public Pooled<Load>
{
public:
  explicit Load(int n) : Load(n, TranslationsOf(n)) {}
  /// For nodes whose first `translations` components are displacements.
  Load(int, int translationCount) : translations(translationCount) {}

  /// Adds n values, converted by the two unit ratios: forces, then moments.
  void AddValues(const double* given, int n, double forceFactor, double lengthFactor);
  /// Adds to component i, from 1.
  void AddNewDegree(int i, double v) { values[i - 1] += v; }

  /// One line with the values.
  void PrintTo(std::ostream& out, int n) const;

  std::array<double, kMaxComponents> values{};

private:
  int translations;
};

}  // namespace morlen
