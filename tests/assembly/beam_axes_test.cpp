// Whole frames whose beams deviate a little from their Euler angles or from the vertical.

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "support/frame.h"
#include "support/solved.h"

namespace morlen {

namespace {

const Frame::Section kSection = {
    .E = 2e8, .G = 8e7, .A = 0.01, .Iy = 1e-5, .Iz = 2e-5, .J = 1e-5, .euler = {}};

Frame Cantilever(const Vector3& end, const std::array<double, 6>& load)
{
  Frame frame;
  frame.nodes = {{0, 0, 0}, end};
  frame.sections = {kSection};
  frame.beams = {{}};
  frame.supports = {{.node = 1, .flags = kClamped, .values = {}, .euler = {}}};
  frame.loads = {{.node = 2, .values = load}};
  return frame;
}

}  // namespace

// A force of 10000 along X on a lever of h has the moment 10000 h about Y, which a local x along
// X instead of the beam would lose.
TEST(BeamAxes, ForcesAlongTheEulerAxisLoseNoMoment)
{
  for (const double h : {0.0044, 0.004, -0.004, 1e-5}) {
    Frame frame = Cantilever({1, 0, h}, {10000, 0, 0, 0, 0, 0});
    const Solved without(ProblemText(frame));
    frame.sections[0].euler = Vector3{0, 0, 0};
    const Solved solved(ProblemText(frame));
    ExpectValues(solved.Reaction(1), {-10000, 0, 0, 0, -10000 * h, 0}, 1e-12);
    EXPECT_NEAR(solved.Reaction(1)[4], -10000 * h, 1e-9 * 10000);  // of the force times the length
    ExpectValues(solved.Displacement(2), without.Displacement(2));
    ExpectValues(solved.EndForces(1), without.EndForces(1));
    ExpectEquilibrium(solved);
  }
}

TEST(BeamAxes, ForcesAlongTheEulerAxisLoseNoMomentInAPlane)
{
  for (const double h : {0.0044, -0.004, 1e-5}) {
    Frame frame = Cantilever({1, h, 0}, {10000, 0, 0, 0, 0, 0});
    frame.space = false;
    frame.sections[0].euler = Vector3{0, 0, 0};
    const Solved solved(ProblemText(frame));
    ExpectValues(solved.Reaction(1), {-10000, 0, 10000 * h}, 1e-12);
    ExpectEquilibrium(solved);
  }
}

// Angles behind an element; its direction differs from theirs by 0.004.
TEST(BeamAxes, AnglesOfAnElementLoseNoMoment)
{
  const Solved solved(SpaceProblem()
                          .With(&ProblemParts::coordinates, "1 0 0 0\n2 1 0 0.004")
                          .With(&ProblemParts::elements, "1 1 2 1 Euler1=0")
                          .With(&ProblemParts::loads, "2 10000 0 0 0 0 0")
                          .Text());
  ExpectValues(solved.Reaction(1), {-10000, 0, 0, 0, -40, 0}, 1e-12);
}

// The lean is at most 4e-14. It turns the load by that; 1e-9 also covers the rounding errors of the
// solution, whose condition number is about 1e5.
TEST(BeamAxes, AColumnThatIsOffPlumbByRoundingHasTheResultsOfThePlumbOne)
{
  constexpr double kHeight = 3.0;
  const std::array<double, 6> load = {10, 3, -200, 2, -1, 4};
  const Solved plumb(ProblemText(Cantilever({0, 0, kHeight}, load)));
  for (const Vector3& off : std::vector<Vector3>{
           {1e-13, 0, 0}, {-1e-13, 0, 0}, {0, 1e-13, 0}, {0, -1e-13, 0}, {7e-14, -7e-14, 0}}) {
    const Solved leaning(ProblemText(Cantilever({off[0], off[1], kHeight}, load)));
    ExpectValues(leaning.Displacement(2), plumb.Displacement(2), 1e-9);
    ExpectValues(leaning.EndForces(1), plumb.EndForces(1), 1e-9);
    ExpectValues(leaning.Reaction(1), plumb.Reaction(1), 1e-9);
  }
}

// Bending about global Y is by Iz (y is X): P L³/3EI. The lean of 0.9e-6 adds parts of its size.
TEST(BeamAxes, AColumnThatCountsAsVerticalBendsAlongXByIz)
{
  constexpr double kHeight = 3.0;
  for (const Vector3& off :
       std::vector<Vector3>{{2.7e-6, 0, 0}, {0, 2.7e-6, 0}, {-2e-6, 1e-6, 0}}) {
    const Solved solved(ProblemText(Cantilever({off[0], off[1], kHeight}, {10, 3, 0, 0, 0, 0})));
    const double cube = kHeight * kHeight * kHeight / (3 * kSection.E);
    EXPECT_NEAR(solved.Displacement(2)[0], 10 * cube / kSection.Iz, 1e-5 * 10 * cube / kSection.Iz);
    EXPECT_NEAR(solved.Displacement(2)[1], 3 * cube / kSection.Iy, 1e-5 * 3 * cube / kSection.Iy);
    ExpectEquilibrium(solved);
  }
}

}  // namespace morlen
