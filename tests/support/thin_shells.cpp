#include "support/thin_shells.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <numbers>
#include <vector>

#include "run/project.h"

namespace morlen {

namespace {

constexpr double kPi = std::numbers::pi;
constexpr double kRoofRadius = 25.0;
constexpr double kHalfRoof = 25.0;

/// The generator at the relative angle u, and the relative place v along it.
Vector3 OnRoof(double u, double v)
{
  const double angle = u * 40.0 * kPi / 180.0;
  return {kRoofRadius * std::sin(angle), kHalfRoof * v, kRoofRadius * std::cos(angle)};
}

/// Supports a roof of flat places (u, v, 0) by symmetry at u = 0 and v = 0, and by the diaphragm at
/// v = 1.
Structure Supported(Structure s)
{
  for (int i = 0; i < s.NodeCount(); ++i) {
    const bool crown = s.nodes[i][0] == 0.0;
    const bool middle = s.nodes[i][1] == 0.0;
    const bool end = s.nodes[i][1] == 1.0;
    if (crown || middle || end)
      s.HoldNode(i + 1, {crown || end, middle, end, middle, crown, crown || middle});
  }
  return s.LoadAll({0, 0, -1, 0, 0, 0});
}

Structure Roof(int n, double ratio, int nnode)
{
  const auto flat = [](double u, double v) { return Vector3{u, v, 0}; };
  Structure s = Supported(ShellOn(flat, n, n, kRoofRadius / ratio, nnode));
  s.shell = {4.32e8, 0.3, 4.32e8 / 2.6, kRoofRadius / ratio, true};
  return s.Map([](const Vector3& p) { return OnRoof(p[0], p[1]); });
}

/// Moves the middles of the edges to the middle of the chords.
void Straighten(Structure& s)
{
  for (const std::vector<int>& triangle : s.triangles) {
    for (int i = 0; i < 3; ++i)
      s.nodes[triangle[3 + i] - 1] =
          0.5 * (s.nodes[triangle[i] - 1] + s.nodes[triangle[(i + 1) % 3] - 1]);
  }
}

/// The largest difference and the largest value among those at [begin, end) of each `period`.
class Kind
{
public:
  Kind(int period_, int begin_, int end_) : period(period_), begin(begin_), end(end_) {}

  void Compare(const double* actual, const double* exact, std::size_t count)
  {
    for (std::size_t i = 0; i < count; ++i) {
      const int place = static_cast<int>(i) % period;
      if (place < begin || place >= end)
        continue;
      largest = std::max(largest, std::fabs(exact[i]));
      const double d = std::fabs(actual[i] - exact[i]);
      if (!(d <= difference))  // true for NaN too
        difference = d;
    }
  }
  double Error() const { return difference == 0.0 ? 0.0 : difference / largest; }

private:
  int period, begin, end;
  double largest = 0.0;
  double difference = 0.0;
};

}  // namespace

Structure QuarterRoof(int n, double ratio, int nnode)
{
  Structure s = Roof(n, ratio, nnode);
  if (nnode == 6)
    Straighten(s);
  return s;
}

Structure QuarterRoofOnCylinder(int n, double ratio)
{
  return Roof(n, ratio, 6);
}

Structure WaterTank(int n, double ratio, int nnode)
{
  constexpr double kRadius = 10.0;
  constexpr double kHeight = 10.0;
  const auto place = [](double u, double v) {
    return Vector3{kRadius * std::cos(2 * kPi * u), kRadius * std::sin(2 * kPi * u), kHeight * v};
  };
  const int around = static_cast<int>(std::lround(1.5 * n));
  const int upwards = static_cast<int>(std::lround(n / 1.5));
  Structure s = ShellOn(place, around, upwards, kRadius / ratio, nnode);
  s.shell = {3e7, 0.2, 1.25e7, kRadius / ratio, true};
  for (int i = 0; i < s.NodeCount(); ++i) {
    const Vector3& p = s.nodes[i];
    const double force = (kHeight - p[2]) / kRadius;
    s.Load(i + 1, {force * p[0], force * p[1], 0, 0, 0, 0});
  }
  return s.Hold(At(2, 0));
}

double KindErrors::Largest() const
{
  return std::max({displacement, rotation, normalForce, moment, shear, reaction, reactionMoment});
}

KindErrors KindErrorsOf(const Solved& solved, const Structure& s, const PreciseResults& exact)
{
  Kind u(6, 0, 3), turns(6, 3, 6), reactions(6, 0, 3), reactionMoments(6, 3, 6);
  for (int node = 1; node <= s.NodeCount(); ++node) {
    const double* const precise = exact.displacements.data() + 6 * (node - 1);
    const std::vector<double> actual = solved.Displacement(node);
    u.Compare(actual.data(), precise, 6);
    turns.Compare(actual.data(), precise, 6);
  }
  for (const Frame::Support& support : s.supports) {
    const double* const precise = exact.reactions.data() + 6 * (support.node - 1);
    const std::vector<double> actual = solved.Reaction(support.node);
    reactions.Compare(actual.data(), precise, 6);
    reactionMoments.Compare(actual.data(), precise, 6);
  }
  std::array<Kind, 3> strengths = {Kind(8, 0, 3), Kind(8, 3, 6), Kind(8, 6, 8)};
  for (Kind& kind : strengths)
    kind.Compare(solved.Result().results[0].strengths.Data(), exact.triangles.data(),
                 exact.triangles.size());
  return {u.Error(),
          turns.Error(),
          strengths[0].Error(),
          strengths[1].Error(),
          strengths[2].Error(),
          reactions.Error(),
          reactionMoments.Error()};
}

}  // namespace morlen
