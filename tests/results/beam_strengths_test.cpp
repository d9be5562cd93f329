#include "results/beam_strengths.h"
#include "results/reactions.h"

#include <gtest/gtest.h>

#include <cmath>
#include <vector>

#include "model/elem.h"
#include "support/frame.h"
#include "support/solved.h"

namespace morlen {

namespace {

using Doubles = std::vector<double>;

constexpr double kL = 2.0;

// A cantilever along x with E = 100 and G = 40. All section values differ.
Frame Cantilever(const std::array<double, 6>& load)
{
  Frame frame;
  frame.nodes = {{0, 0, 0}, {kL, 0, 0}};
  frame.sections = {{.E = 100.0, .G = 40.0, .A = 2.0, .Iy = 3.0, .Iz = 5.0, .J = 4.0}};
  frame.beams = {{1, 2, 1}};
  frame.supports = {{.node = 1, .flags = kClamped}};
  frame.loads = {{2, load}};
  return frame;
}

Frame PlaneCantilever(const std::array<double, 6>& load)
{
  Frame frame = Cantilever(load);
  frame.space = false;
  return frame;
}

}  // namespace

TEST(GiveStrength, SignsInSpace)
{
  // Tension 11, shears, torque 3 and moments at the tip. Along the beam: the axial force is
  // positive in tension, shears and torque are those on the first end, and the moments are
  // S1 + x·Fz1 and -S1 + x·Fy1 of the first end's forces.
  const Solved solved(ProblemText(Cantilever({11, -7, 5, 3, -2, 13})));
  const Doubles first = {-11, 7, -5, -3, 2 + kL * 5, -13 + kL * 7};
  ExpectValues(solved.EndForces(1),
               {first[0], first[1], first[2], first[3], first[4], first[5], 11, -7, 5, 3, -2, 13},
               1e-12);
  for (const double t : {0.0, 0.25, 0.5, 1.0}) {
    EXPECT_NEAR(solved.Strength(1, 1, t), 11, 1e-11);
    EXPECT_NEAR(solved.Strength(1, 2, t), 7, 1e-11);
    EXPECT_NEAR(solved.Strength(1, 3, t), -5, 1e-11);
    EXPECT_NEAR(solved.Strength(1, 4, t), -3, 1e-11);
    EXPECT_NEAR(solved.Strength(1, 5, t), first[4] + t * kL * first[2], 1e-11);
    EXPECT_NEAR(solved.Strength(1, 6, t), -first[5] + t * kL * first[1], 1e-11);
    for (const int other : {0, 7, -1})
      EXPECT_EQ(solved.Strength(1, other, t), 0.0);
  }
  // At the tip the moments are those of the load, in the signs above.
  EXPECT_NEAR(solved.Strength(1, 5, 1.0), 2, 1e-11);
  EXPECT_NEAR(solved.Strength(1, 6, 1.0), 13, 1e-11);
}

TEST(GiveStrength, SignsInThePlane)
{
  const Solved solved(ProblemText(PlaneCantilever({11, -7, 13})));
  for (const double t : {0.0, 0.5, 1.0}) {
    EXPECT_NEAR(solved.Strength(1, 1, t), 11, 1e-11);
    EXPECT_NEAR(solved.Strength(1, 2, t), 7, 1e-11);
    EXPECT_NEAR(solved.Strength(1, 3, t), -(-13 + kL * 7) + t * kL * 7, 1e-11);
    EXPECT_EQ(solved.Strength(1, 4, t), 0.0);
  }
}

TEST(GiveReaction, BelongsToTheEnds)
{
  const Solved solved(ProblemText(PlaneCantilever({11, -7, 13})));
  const NodeComponents& components = solved.Model().components;
  const ReaVecV& reactions = solved.Result().reactions;
  const Elem& beam = *solved.Model().GiveElem(1);
  for (const double first : {0.0, 1e-15, -1.0})
    EXPECT_NEAR(GiveReaction(components, reactions, beam, 1, first), -11, 1e-11);
  EXPECT_NEAR(GiveReaction(components, reactions, beam, 3, 0.0), -13 + kL * 7, 1e-11);
  for (const double t : {2e-15, 0.5, 0.99})
    EXPECT_EQ(GiveReaction(components, reactions, beam, 1, t), 0.0);
  EXPECT_EQ(GiveReaction(components, reactions, beam, 1, 1.0), 0.0);  // no support there
}

TEST(GiveReaction, IsZeroWithinABeamSupportedAtBothEnds)
{
  Frame frame = PlaneCantilever({});
  frame.supports = {{.node = 1, .flags = kClamped, .values = {0.1, 0, 0}},
                    {.node = 2, .flags = kClamped}};
  const Solved solved(ProblemText(frame));
  const NodeComponents& components = solved.Model().components;
  const ReaVecV& reactions = solved.Result().reactions;
  const Elem& beam = *solved.Model().GiveElem(1);
  EXPECT_EQ(GiveReaction(components, reactions, beam, 1, 0.5), 0.0);
  EXPECT_NEAR(GiveReaction(components, reactions, beam, 1, 0.0), 10.0, 1e-12);
  EXPECT_NEAR(GiveReaction(components, reactions, beam, 1, 0.999999999999999), -10.0, 1e-12);
}

// Without loads on the span the deflection is exactly cubic: P·x²·(3L - x)/(6EI) for a
// force at the tip, M·x²/(2EI) for a moment.
TEST(SpanDisplacements, AreThoseOfTheCantileverInSpace)
{
  const Solved solved(ProblemText(Cantilever({11, -7, 5, 3, -2, 13})));
  const double EIz = 500.0;
  const double EIy = 300.0;
  const auto points = solved.SpanDisplacements(1, 7);
  ASSERT_EQ(points.size(), 8u);
  for (int i = 0; i <= 7; ++i) {
    const double x = kL * i / 7;
    const double force = x * x * (3 * kL - x) / 6;
    const double moment = x * x / 2;
    ExpectValues(points[i],
                 {11 * x / 200, (-7 * force + 13 * moment) / EIz, (5 * force + 2 * moment) / EIy},
                 1e-13, 0.01);
  }
}

TEST(SpanDisplacements, AreTurnedToGlobalAxes)
{
  // Along (0.6, 0.8): the axes are (0.6, 0.8) and (-0.8, 0.6), EA = 200, EIz = 500.
  Frame frame = PlaneCantilever({0.6 * 11 + 0.8 * 7, 0.8 * 11 - 0.6 * 7, 0});
  frame.nodes[1] = {0.6 * kL, 0.8 * kL, 0};
  const Solved solved(ProblemText(frame));
  const auto points = solved.SpanDisplacements(1, 4);
  ASSERT_EQ(points.size(), 5u);
  for (int i = 0; i <= 4; ++i) {
    const double x = kL * i / 4;
    const double u = 11 * x / 200;
    const double v = -7 * x * x * (3 * kL - x) / 6 / 500;
    ExpectValues(points[i], {0.6 * u - 0.8 * v, 0.8 * u + 0.6 * v}, 1e-13, 0.01);
  }
}

TEST(SpanDisplacements, EndAtTheNodes)
{
  Frame frame = Cantilever({1, 2, 3, 4, 5, 6});
  frame.nodes[1] = {1, -2, 0.5};
  frame.supports[0].values = {0.1, 0.2, 0.3, 0.01, 0.02, 0.03};
  const Solved solved(ProblemText(frame));
  for (const int divisions : {1, 2, 3, 49}) {
    const auto points = solved.SpanDisplacements(1, divisions);
    ASSERT_EQ(points.size(), static_cast<std::size_t>(divisions) + 1);
    for (const int end : {0, 1}) {
      const Doubles u = solved.Displacement(end + 1);
      ExpectValues(end == 0 ? points.front() : points.back(), {u[0], u[1], u[2]}, 1e-14);
    }
  }
}

TEST(ReleaseHingedRotations, LeavesHingedEndsWithoutMoment)
{
  // The moment at an end is proportional to 2θ + θ' - 3·chord, where θ' is the rotation of the
  // other end.
  const auto moment = [](double own, double other, double chord) {
    return 2 * own + other - 3 * chord;
  };
  const BeamEnds given = {{0.1, 0.2, -0.3, 0.4, 0.5, 0.6}, {1.1, -0.7, 0.9, 0.2, -0.4, 0.8}};
  for (const int code : {11, 10, 1, 0}) {
    SCOPED_TRACE(code);
    BeamEnds ends = given;
    ReleaseHingedRotations(HingeCode(code), kL, 6, ends);
    // Slopes: dv/dx = θz, dw/dx = -θy.
    const double chordY = (ends.second[1] - ends.first[1]) / kL;
    const double chordZ = -(ends.second[2] - ends.first[2]) / kL;
    const double first[] = {moment(ends.first[5], ends.second[5], chordY),
                            moment(ends.first[4], ends.second[4], chordZ)};
    const double second[] = {moment(ends.second[5], ends.first[5], chordY),
                             moment(ends.second[4], ends.first[4], chordZ)};
    for (int plane = 0; plane < 2; ++plane) {
      if (code / 10 == 0) {
        EXPECT_NEAR(first[plane], 0.0, 1e-15);
      }
      if (code % 10 == 0) {
        EXPECT_NEAR(second[plane], 0.0, 1e-15);
      }
    }
    for (int k = 0; k < 6; ++k) {
      const bool released = k >= 4;
      if (!released || code / 10 == 1) {
        EXPECT_EQ(ends.first[k], given.first[k]);
      }
      if (!released || code % 10 == 1) {
        EXPECT_EQ(ends.second[k], given.second[k]);
      }
    }
  }
}

TEST(ReleaseHingedRotations, InThePlane)
{
  BeamEnds ends = {{0, 0, 7}, {0, 0.5, 0.1}};
  ReleaseHingedRotations(HingeCode(1), kL, 3, ends);
  EXPECT_DOUBLE_EQ(ends.first[2], 1.5 * 0.25 - 0.05);
  EXPECT_EQ(ends.second[2], 0.1);
  ReleaseHingedRotations(HingeCode(0), kL, 3, ends);
  EXPECT_DOUBLE_EQ(ends.first[2], 0.25);
  EXPECT_DOUBLE_EQ(ends.second[2], 0.25);
}

}  // namespace morlen
