// Refined shells of any thickness against a computation with more digits, and six-node triangles
// whose mid-side nodes are off the plane of their corners.

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <functional>
#include <string>
#include <vector>

#include "run/project.h"
#include "support/judged.h"
#include "support/precise.h"
#include "support/thin_shells.h"

namespace morlen {

namespace {

/// A shell is built only by the test that uses it: the list of the tests is made in every process.
struct ThinShell
{
  std::string name;
  std::function<Structure()> build;
};

void PrintTo(const ThinShell& shell, std::ostream* out)
{
  *out << shell.name;
}

std::string NameOf(const testing::TestParamInfo<ThinShell>& info)
{
  return info.param.name;
}

/// Roofs and tanks with radii of 100 to 10,000 thicknesses. n: squares of three nodes; half as many
/// of six nodes have the same number of equations.
std::vector<ThinShell> RoofsAndTanks(int n)
{
  std::vector<ThinShell> shells;
  for (const int nnode : {3, 6}) {
    for (const int ratio : {100, 1000, 10000}) {
      const std::string name = std::to_string(nnode) + "Ratio" + std::to_string(ratio);
      const int m = nnode == 3 ? n : n / 2;
      shells.push_back({"Roof" + name, [=] { return QuarterRoof(m, ratio, nnode); }});
      shells.push_back({"Tank" + name, [=] { return WaterTank(m, ratio, nnode); }});
    }
  }
  for (const int ratio : {100, 1000, 10000})
    shells.push_back({"RoofOnCylinderRatio" + std::to_string(ratio),
                      [=] { return QuarterRoofOnCylinder(n / 2, ratio); }});
  return shells;
}

/// Solves with the default settings and expects results without a warning, within a tolerance of
/// the largest displacement, rotation, force and so on.
void ExpectDigits(const Structure& s, const PreciseResults& exact, double tolerance)
{
  testing::internal::CaptureStderr();
  const Solved solved(s.Text());
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
  EXPECT_LE(KindErrorsOf(solved, s, exact).Largest(), tolerance);
}

/// The deflection of the free edge of a roof in the middle of the span.
double EdgeDeflection(const Structure& roof)
{
  const Solved solved(roof.Text());
  return solved.Displacement(roof.NodeAt({100, 0, 0}))[2];
}

/// A strip of six-node triangles on a cylinder with the middles of all edges on it, without
/// supports.
Structure CurvedStrip()
{
  Structure s = QuarterRoofOnCylinder(4, 100);
  s.supports.clear();
  s.loads.clear();
  return s;
}

}  // namespace

class RefinedShellDigits : public testing::TestWithParam<ThinShell>
{
};

TEST_P(RefinedShellDigits, AgreeWithHigherPrecision)
{
  const Structure s = GetParam().build();
  // A refined direct solution has more digits than its files.
  ExpectDigits(s, SolvePrecisely(s), 1e-9);
}

INSTANTIATE_TEST_SUITE_P(All, RefinedShellDigits, testing::ValuesIn(RoofsAndTanks(10)), NameOf);

class LargeRefinedShell : public testing::TestWithParam<ThinShell>
{
};

TEST_P(LargeRefinedShell, AgreesWithHigherPrecision)
{
  const Structure s = GetParam().build();
  ASSERT_GE(s.Equations(), 15000);
  ExpectDigits(s, RefinePrecisely(s), 1e-5);  // with either solver
}

INSTANTIATE_TEST_SUITE_P(All, LargeRefinedShell, testing::ValuesIn(RoofsAndTanks(50)), NameOf);

// A flat element takes the place of the curved one, wherever the middles of its edges are.
TEST(RefinedMidSideNodes, MayLieOnTheCurvedSurface)
{
  // The loads on the middles are further out, and the supports hold other places.
  for (const double ratio : {20.0, 100.0, 1000.0}) {
    const double onChords = EdgeDeflection(QuarterRoof(16, ratio, 6));
    EXPECT_NEAR(EdgeDeflection(QuarterRoofOnCylinder(16, ratio)), onChords,
                5e-3 * std::fabs(onChords))
        << ratio;
  }
}

TEST(RefinedMidSideNodes, OffThePlaneResistNoRigidMotion)
{
  Structure s = CurvedStrip();
  const Vector3 turn = {0.3, -0.5, 0.2};
  const auto moved = [&](const Vector3& p) {
    return Vector3{1 + turn[1] * p[2] - turn[2] * p[1], 2 + turn[2] * p[0] - turn[0] * p[2],
                   3 + turn[0] * p[1] - turn[1] * p[0]};
  };
  for (const int node : {1, 5, s.NodeAt({0, 25, 25})}) {
    const Vector3 u = moved(s.nodes[node - 1]);
    s.HoldNode(node, {1, 1, 1, 0, 0, 0});
    std::copy_n(u.begin(), 3, s.supports.back().values.begin());
  }
  const Solved solved(s.Text());
  const double rounding = 1e-13 * s.shell.E * s.shell.t * 25;  // of a motion of about 25
  for (int node = 1; node <= s.NodeCount(); ++node) {
    const Vector3 u = moved(s.nodes[node - 1]);
    ExpectValues(solved.Displacement(node), {u[0], u[1], u[2], turn[0], turn[1], turn[2]}, 1e-9);
  }
  const ReaVecV& strengths = solved.Result().results[0].strengths;
  for (int k = 1; k <= strengths.Size(); ++k)
    EXPECT_NEAR(strengths(k), 0.0, rounding);
}

TEST(RefinedMidSideNodes, OffThePlaneDoNotHoldAFreeShell)
{
  Structure s = CurvedStrip();
  s.Hold(At(1, 0), {0, 0, 1, 0, 0, 0}).HoldNode(5, kBall).LoadAll({0, 0.1, -1, 0, 0, 0});
  EXPECT_TRUE(Judge(s, "").IsSolverRefusal());
  s = CurvedStrip();
  s.HoldNode(1, kBall).HoldNode(5, kBall).LoadAll({0, 0.1, -1, 0, 0, 0});
  EXPECT_TRUE(Judge(s, "").IsSolverRefusal());
}

}  // namespace morlen
