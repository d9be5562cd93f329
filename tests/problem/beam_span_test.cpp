#include "problem/beam_span.h"

#include <gtest/gtest.h>

#include <array>
#include <vector>

#include "model/elem.h"
#include "numeric/matriu.h"
#include "numeric/reavecv.h"
#include "problem/loads_on_element.h"
#include "support/fatal.h"
#include "support/frame.h"
#include "support/loaded_beams.h"
#include "support/solved.h"

namespace morlen {

namespace {

constexpr int kCodes[] = {11, 10, 1, 0};
constexpr double kL = 2.5;
constexpr double kQ = 1.6;
constexpr double kEI = 30.0;

double Strength(SpanPart part, double x, int code)
{
  return GiveLocalStrength(part, x / kL, kL, kQ, code);
}

double Deflection(double x, int code)
{
  return GiveLocalDisplacement(SpanPart::Shear, x / kL, kL, kQ, kEI, code);
}

bool IsHinged(int code, int end)
{
  return (end == 0 ? code / 10 : code % 10) == 0;
}

// Derivatives of first, second and fourth order by finite differences. They are exact for
// polynomials up to the fourth degree.
constexpr double kStep = kL / 8;

template <class F>
double EndSlope(F f, double x, double step)
{
  return (-25 * f(x) + 48 * f(x + step) - 36 * f(x + 2 * step) + 16 * f(x + 3 * step) -
          3 * f(x + 4 * step)) /
         (12 * step);
}

template <class F>
double EndCurvature(F f, double x, double step)
{
  return (35 * f(x) - 104 * f(x + step) + 114 * f(x + 2 * step) - 56 * f(x + 3 * step) +
          11 * f(x + 4 * step)) /
         (12 * step * step);
}

template <class F>
double Fourth(F f, double x)
{
  return (f(x - 2 * kStep) - 4 * f(x - kStep) + 6 * f(x) - 4 * f(x + kStep) + f(x + 2 * kStep)) /
         (kStep * kStep * kStep * kStep);
}

// A beam from (1, 2, 3) along (0.48, 0.64, 0.6), 5 long, EA = 600, EIy = 1000, EIz = 1400.
ProblemParts TiltedBeam(int code)
{
  ProblemParts parts = SpaceProblem();
  parts.coordinates = "1 1 2 3\n2 3.4 5.2 6";
  parts.materials = "1 E 200 G 80 A 3 Iy 5 Iz 7 J 2";
  parts.rest = Block("elem_rotules", "1 " + std::to_string(code));
  return parts;
}

ProblemParts PlaneBeam(int code)
{
  ProblemParts parts;
  parts.coordinates = "1 0 0\n2 3 4";
  parts.materials = "1 E 200 A 3 Iz 7";
  parts.rest = Block("elem_rotules", "1 " + std::to_string(code));
  return parts;
}

// The only beam of a problem, with the values that its loads need.
struct TestSpan
{
  explicit TestSpan(const ProblemParts& parts)
      : problem(ReadProblemText(parts.Text())), beam(MakeSpan(*problem, *problem->GiveElem(1), T))
  {
  }

  std::unique_ptr<Problem> problem;
  Matriu T;
  BeamSpan beam;
};

}  // namespace

TEST(GiveLocalStrength, HasTheClosedFormOfEachHingeCode)
{
  static const struct
  {
    int code;
    double axial;                          // share of the first end
    double (*moment)(double x, double L);  // for q = 1
  } rows[] = {
      {11, 0.5, [](double x, double L) { return (L * L - 6 * L * x + 6 * x * x) / 12; }},
      {10, 0.625, [](double x, double L) { return L * L / 8 - 0.625 * L * x + x * x / 2; }},
      {1, 0.375, [](double x, double L) { return x * x / 2 - 0.375 * L * x; }},
      {0, 0.5, [](double x, double L) { return (x * x - L * x) / 2; }},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.code);
    for (const double t : {0.0, 0.2, 0.375, 0.5, 0.9, 1.0}) {
      const double x = t * kL;
      EXPECT_NEAR(Strength(SpanPart::Axial, x, row.code), kQ * (row.axial * kL - x), 1e-14);
      EXPECT_NEAR(Strength(SpanPart::Shear, x, row.code), -kQ * (row.axial * kL - x), 1e-14);
      EXPECT_NEAR(Strength(SpanPart::Bending, x, row.code), kQ * row.moment(x, kL), 1e-14);
      EXPECT_NEAR(Strength(SpanPart::Torsion, x, row.code), kQ * (kL / 2 - x), 1e-14);
    }
  }
}

TEST(GiveLocalStrength, SatisfiesTheEquilibriumOfASlice)
{
  for (const int code : kCodes) {
    SCOPED_TRACE(code);
    for (const double x : {0.3, 1.0, 2.2}) {
      const auto slope = [&](SpanPart part) {
        return (Strength(part, x + kStep, code) - Strength(part, x - kStep, code)) / (2 * kStep);
      };
      EXPECT_NEAR(slope(SpanPart::Axial), -kQ, 1e-13);
      EXPECT_NEAR(slope(SpanPart::Shear), kQ, 1e-13);
      EXPECT_NEAR(slope(SpanPart::Bending), Strength(SpanPart::Shear, x, code), 1e-13);
      EXPECT_NEAR(slope(SpanPart::Torsion), -kQ, 1e-13);
    }
    for (const int end : {0, 1}) {
      if (IsHinged(code, end)) {
        EXPECT_NEAR(Strength(SpanPart::Bending, end * kL, code), 0.0, 1e-14);
      }
    }
  }
}

TEST(GiveLocalStrength, RefusesOtherPartsAndCodes)
{
  for (const int code : {2, 12, 100, -1, 101})
    ExpectFatal([&] { Strength(SpanPart::Shear, 1.0, code); }, "error in GiveLocalStrength\n");
  for (const int part : {0, 5, -1})
    ExpectFatal([&] { Strength(SpanPart(part), 1.0, 11); }, "error in GiveLocalStrength\n");
}

TEST(GiveLocalDisplacement, SatisfiesTheBeamEquationAndTheEndConditions)
{
  for (const int code : kCodes) {
    SCOPED_TRACE(code);
    const auto w = [&](double x) { return Deflection(x, code); };
    for (const double x : {2 * kStep, 0.4 * kL, 6 * kStep})
      EXPECT_NEAR(kEI * Fourth(w, x), kQ, 1e-10);
    for (const int end : {0, 1}) {
      const double x = end * kL;
      const double inwards = end == 0 ? kStep : -kStep;
      const double moment = Strength(SpanPart::Bending, x, code);
      EXPECT_EQ(w(x), 0.0);
      EXPECT_NEAR(kEI * EndCurvature(w, x, inwards), moment, 1e-11);
      if (IsHinged(code, end)) {
        EXPECT_NEAR(EndCurvature(w, x, inwards), 0.0, 1e-12);
      } else {
        EXPECT_NEAR(EndSlope(w, x, inwards), 0.0, 1e-13);
      }
    }
  }
}

TEST(GiveLocalDisplacement, HasTheClosedFormOfEachHingeCode)
{
  const double q = kQ / kEI;
  for (const double t : {0.0, 0.1, 0.5, 0.6, 1.0}) {
    const double x = t * kL;
    const double y = kL - x;
    EXPECT_NEAR(Deflection(x, 11), q * x * x * y * y / 24, 1e-15);
    EXPECT_NEAR(Deflection(x, 10), q * x * x * y * (3 * kL - 2 * x) / 48, 1e-15);
    EXPECT_NEAR(Deflection(x, 1), q * y * y * x * (3 * kL - 2 * y) / 48, 1e-15);
    EXPECT_NEAR(Deflection(x, 0), q * x * (kL * kL * kL - 2 * kL * x * x + x * x * x) / 24, 1e-15);
    for (const int code : kCodes)
      EXPECT_NEAR(GiveLocalDisplacement(SpanPart::Axial, t, kL, kQ, kEI, code), q * x * y / 2,
                  1e-15);
  }
  const double qL4 = q * kL * kL * kL * kL;
  EXPECT_NEAR(Deflection(kL / 2, 0), 5 * qL4 / 384, 1e-15);
  EXPECT_NEAR(Deflection(kL / 2, 11), qL4 / 384, 1e-15);
  EXPECT_NEAR(Deflection(kL / 2, 10), qL4 / 192, 1e-15);
}

TEST(GiveLocalDisplacement, RefusesOtherPartsAndCodes)
{
  for (const int code : {2, 12, 100, -1})
    ExpectFatal([&] { Deflection(1.0, code); }, "error in GiveLocalDisplacement\n");
  for (const SpanPart part : {SpanPart::Bending, SpanPart::Torsion, SpanPart(0), SpanPart(5)})
    ExpectFatal([&] { GiveLocalDisplacement(part, 0.5, kL, kQ, kEI, 11); },
                "error in GiveLocalDisplacement\n");
}

// The nodal loads have the resultant of the load and its moment about the first node.
TEST(SpanLoad, NodalLoadsAreEquivalentToTheLoad)
{
  const SpanLoad load{.q = {1.5, -2.0, 3.0, 0.7}};
  const double L = 5.0;
  for (const int code : kCodes) {
    SCOPED_TRACE(code);
    const TestSpan space(TiltedBeam(code));
    double a[6] = {};
    double b[6] = {};
    load.AddToReactionsVecs(space.beam, a, b);  // minus the nodal loads
    for (int k = 0; k < 4; ++k)
      EXPECT_NEAR(a[k] + b[k], -load.q[k] * L, 1e-13) << k;
    EXPECT_NEAR(a[4] + b[4] - L * b[2], load.q[2] * L * L / 2, 1e-12);
    EXPECT_NEAR(a[5] + b[5] + L * b[1], -load.q[1] * L * L / 2, 1e-12);
    for (const int k : {4, 5}) {
      if (IsHinged(code, 0)) {
        EXPECT_EQ(a[k], 0.0);
      }
      if (IsHinged(code, 1)) {
        EXPECT_NEAR(b[k], 0.0, 1e-13);
      }
    }

    const TestSpan plane(PlaneBeam(code));
    double c[3] = {};
    double d[3] = {};
    load.AddToReactionsVecs(plane.beam, c, d);
    for (int k = 0; k < 2; ++k)
      EXPECT_NEAR(c[k] + d[k], -load.q[k] * L, 1e-13) << k;
    EXPECT_NEAR(c[2] + d[2] + L * d[1], -load.q[1] * L * L / 2, 1e-12);
  }
}

TEST(SpanLoad, EndReactionsAreTheInternalForcesAtTheEnds)
{
  const double q[] = {1.5, -2.0, 3.0, 0.7};
  for (const int code : kCodes) {
    const TestSpan space(TiltedBeam(code));
    double a[6] = {};
    double b[6] = {};
    SpanLoad{.q = {q[0], q[1], q[2], q[3]}}.AddToReactionsVecs(space.beam, a, b);
    const auto at = [&](int end, SpanPart part, int k) {
      return GiveLocalStrength(part, end, 5.0, q[k], code);
    };
    using enum SpanPart;
    ExpectValues({a, a + 6},
                 {-at(0, Axial, 0), at(0, Shear, 1), at(0, Shear, 2), -at(0, Torsion, 3),
                  at(0, Bending, 2), -at(0, Bending, 1)},
                 1e-14);
    ExpectValues({b, b + 6},
                 {at(1, Axial, 0), -at(1, Shear, 1), -at(1, Shear, 2), at(1, Torsion, 3),
                  -at(1, Bending, 2), at(1, Bending, 1)},
                 1e-14);
  }
}

TEST(SpanLoad, AddsToTheEquationsOfItsNodesInGlobalAxes)
{
  // Clamped at both ends: half the load and ±qL²/12 on each node. The beam has y' = (-0.8, 0.6).
  const TestSpan plane(PlaneBeam(11));
  ReaVecV loads(9);
  loads = 100.0;
  SpanLoad{.q = {0, 12, 0, 0}}.AddToLoadVectorBeam(plane.beam, 7, 1, loads);
  ExpectValues({loads.begin(), loads.end()},
               {100 - 24, 100 + 18, 100 - 25, 100, 100, 100, 100 - 24, 100 + 18, 100 + 25}, 1e-14);

  // x' = (0.48, 0.64, 0.6), y' = (-0.8, 0.6, 0), z' = (-0.36, -0.48, 0.8).
  const TestSpan space(TiltedBeam(11));
  ReaVecV inSpace(12);
  inSpace = 0.0;
  SpanLoad{.q = {0, 0, 12, 2}}.AddToLoadVectorBeam(space.beam, 1, 7, inSpace);
  const double My = 25;  // qL²/12; negative about y' on the first node
  const double Mx = 5;
  std::vector<double> expected;
  for (const double sign : {-1.0, 1.0}) {
    for (const double z : {-0.36, -0.48, 0.8})
      expected.push_back(30 * z);
    const double x[] = {0.48, 0.64, 0.6};
    const double y[] = {-0.8, 0.6, 0.0};
    for (int k = 0; k < 3; ++k)
      expected.push_back(Mx * x[k] + sign * My * y[k]);
  }
  ExpectValues({inSpace.begin(), inSpace.end()}, expected, 1e-14);
}

TEST(SpanLoad, TemperatureActsAlongTheBeamOnly)
{
  const SpanLoad load{.strain = 0.25};
  for (const int code : kCodes) {
    const TestSpan space(TiltedBeam(code));  // EA = 600
    double a[6] = {};
    double b[6] = {};
    load.AddToReactionsVecs(space.beam, a, b);
    ExpectValues({a, a + 6}, {150, 0, 0, 0, 0, 0}, 1e-14);
    ExpectValues({b, b + 6}, {-150, 0, 0, 0, 0, 0}, 1e-14);
    for (int k = 1; k <= 6; ++k) {
      double value = 7.0;
      load.AddToStrengthVectors(space.beam, k, 0.3, value);
      EXPECT_NEAR(value, k == 1 ? 7.0 - 150 : 7.0, 1e-13);
    }
    double u[3] = {1, 2, 3};
    load.AddToDisplacementVectors(space.beam, 0.3, u);
    EXPECT_EQ((std::array{u[0], u[1], u[2]}), (std::array{1.0, 2.0, 3.0}));
  }
}

TEST(SpanLoad, IsZeroWithoutForceAndStrain)
{
  EXPECT_TRUE(SpanLoad{}.IsZero());
  EXPECT_FALSE((SpanLoad{.q = {0, 0, 0, 1}}).IsZero());
  EXPECT_FALSE((SpanLoad{.strain = 1e-6}).IsZero());
}

}  // namespace morlen
