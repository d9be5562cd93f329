// The differences between results of the program and those of the reference.

#include <algorithm>
#include <cmath>
#include <vector>

#include "run/project.h"
#include "support/precise.h"

namespace morlen {

namespace {

/// The largest value and the largest difference of the values of one kind.
struct Kind
{
  double largest = 0.0;
  double difference = 0.0;

  void Compare(double actual, double exact)
  {
    largest = std::max(largest, std::fabs(exact));
    const double d = std::fabs(actual - exact);
    if (!(d <= difference))  // true for NaN too
      difference = d;
  }
  /// The largest difference relative to the largest value or to `other`, whichever is larger.
  double Error(double other) const
  {
    const double scale = std::max(largest, other);
    return difference == 0.0 ? 0.0 : difference / scale;
  }
};

/// Two kinds of values that alternate, as forces and moments of nodes do.
struct Kinds
{
  Kind first;
  Kind second;

  /// Compares values in groups of `period`. In each group those of the second kind are in
  /// [begin, end).
  void Compare(const double* actual, const std::vector<double>& exact, int period, int begin,
               int end)
  {
    for (std::size_t i = 0; i < exact.size(); ++i) {
      const int place = static_cast<int>(i) % period;
      (place >= begin && place < end ? second : first).Compare(actual[i], exact[i]);
    }
  }
};

double SizeOf(const Structure& s)
{
  const Vector3 extent = s.Extent();
  return std::sqrt(Dot(extent, extent));
}

Kinds DisplacementsOf(const Solved& solved, const Structure& s, const PreciseResults& exact)
{
  std::vector<double> actual;
  for (int node = 1; node <= s.NodeCount(); ++node) {
    const std::vector<double> u = solved.Displacement(node);
    actual.insert(actual.end(), u.begin(), u.end());
  }
  Kinds kinds;
  kinds.Compare(actual.data(), exact.displacements, s.Components(), s.Translations(), 6);
  return kinds;
}

Kinds ReactionsOf(const Solved& solved, const Structure& s, const PreciseResults& exact)
{
  const int n = s.Components();
  Kinds kinds;
  for (const Frame::Support& support : s.supports) {
    const auto first = exact.reactions.begin() + (support.node - 1) * n;
    kinds.Compare(solved.Reaction(support.node).data(), {first, first + n}, n, s.Translations(), 6);
  }
  return kinds;
}

}  // namespace

double Errors::Largest() const
{
  return std::max({displacement, rotation, force, moment, reaction, reactionMoment});
}

Errors ErrorsOf(const Solved& solved, const Structure& s, const PreciseResults& exact)
{
  const double length = s.MeanLength();
  const double size = SizeOf(s);
  const Kinds u = DisplacementsOf(solved, s, exact);
  const Kinds r = ReactionsOf(solved, s, exact);
  Errors errors{.displacement = u.first.Error(u.second.largest * length),
                .rotation = u.second.Error(u.first.largest / size),
                .reaction = r.first.Error(r.second.largest / size),
                .reactionMoment = r.second.Error(r.first.largest * length)};
  int mesh = 0;
  const auto take = [&](const std::vector<double>& values, int period, int begin, int end) {
    if (values.empty())
      return;
    Kinds forces;
    forces.Compare(solved.Result().results[mesh++].strengths.Data(), values, period, begin, end);
    errors.force = std::max(errors.force, forces.first.Error(forces.second.largest / size));
    errors.moment = std::max(errors.moment, forces.second.Error(forces.first.largest * length));
  };
  take(exact.beams, s.Components(), s.Translations(), 6);
  take(exact.triangles, 8, 3, 6);
  take(exact.tetrahedra, 6, 6, 6);
  return errors;
}

}  // namespace morlen
