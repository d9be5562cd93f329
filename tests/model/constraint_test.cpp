#include "model/constraint.h"

#include <gtest/gtest.h>

#include <cmath>
#include <memory>
#include <numbers>
#include <sstream>

#include "model/nodal_load.h"
#include "numeric/matriu.h"
#include "numeric/reavecv.h"
#include "support/dense.h"
#include "support/fatal.h"
#include "support/reference_frame.h"

namespace morlen {

namespace {

using Components = std::array<double, kMaxComponents>;
using Flags = std::array<int, kMaxComponents>;

// A support of n components with these flags and values.
Constraint Support(int n, const Flags& flags, const Components& values)
{
  Constraint support(n);
  support.EnterValuesAndFlags(flags.data(), values.data(), n, 1.0, 1.0);
  return support;
}

// The support of a node in the middle between two supported nodes.
std::unique_ptr<Constraint> Merge(int n, const Constraint& a, const Constraint& b)
{
  return MergeTwoConstraints(n, &a, &b, 0.0);
}

}  // namespace

TEST(Constraint, IsFreeAtFirst)
{
  const Constraint support(6);
  EXPECT_EQ(support.flags, Flags{});
  EXPECT_EQ(support.values, Components{});
  EXPECT_EQ(support.reactions, Components{});
  EXPECT_EQ(support.euler, (std::array<double, 3>{}));
  EXPECT_FALSE(support.localAxes);
}

TEST(Constraint, TranslationsAreTheFirstComponents)
{
  EXPECT_EQ(WithRotations(3).translations, 2);
  EXPECT_EQ(WithRotations(6).translations, 3);
  // Values of 1 show the factor of every component: force 8, length 2.
  const struct
  {
    int n;
    int translations;
    int flag;
    Components expected;
  } cases[] = {
      {3, 2, Constraint::kPrescribed, {2, 2, 1}},
      {3, 2, Constraint::kSpring, {4, 4, 16}},
      {6, 3, Constraint::kPrescribed, {2, 2, 2, 1, 1, 1}},
      {6, 3, Constraint::kSpring, {4, 4, 4, 16, 16, 16}},
      {3, 3, Constraint::kPrescribed, {2, 2, 2}},
      {3, 3, Constraint::kSpring, {4, 4, 4}},
  };
  for (const auto& c : cases) {
    Constraint support(NodeComponents{.count = c.n, .translations = c.translations});
    Flags flags;
    flags.fill(c.flag);
    Components ones;
    ones.fill(1.0);
    support.EnterValuesAndFlags(flags.data(), ones.data(), c.n, 8.0, 2.0);
    EXPECT_EQ(support.values, c.expected) << c.n << " " << c.translations << " " << c.flag;
  }
}

TEST(Constraint, ComponentsThatAreNotFlaggedKeepWhatTheyHad)
{
  Constraint support = Support(3, {1, 2, 0}, {1, 2, 3});
  const Flags flags = {0, 1, 1};
  const Components values = {7, 8, 9};
  support.EnterValuesAndFlags(flags.data(), values.data(), 3, 1.0, 10.0);
  EXPECT_EQ(support.flags, (Flags{1, 1, 1}));
  EXPECT_EQ(support.values, (Components{1, 80, 9}));
}

TEST(Constraint, WithoutAxesTheMatrixIsLeftAlone)
{
  Matriu T = MatriuOf(1, 1, {5});
  EXPECT_EQ(Constraint(6).CalcTransfMatFromEuler(1, T, 6, 1), 1);
  EXPECT_EQ(Entries(T), std::vector<double>{5});
}

TEST(Constraint, MatrixHasTheAxesAsColumns)
{
  const double angles[3] = {0.3, 0.5, 0.7};
  const auto axes = AxesOfAngles({0.3, 0.5, 0.7});
  Constraint support(6);
  support.EnterEulerAngles(angles);
  Matriu T;
  ASSERT_EQ(support.CalcTransfMatFromEuler(1, T, 6, 1), 0);
  ASSERT_EQ(T.Rows(), 6);
  for (int i = 0; i < 6; ++i) {
    for (int j = 0; j < 6; ++j)
      EXPECT_NEAR(T(i + 1, j + 1), i / 3 == j / 3 ? axes[j % 3][i % 3] : 0.0, 1e-15) << i << j;
  }
}

TEST(Constraint, PlaneAxesTurnAboutZ)
{
  Constraint support(3);
  const double angles[3] = {0.3, 0.0, 0.2};
  support.EnterEulerAngles(angles);
  Matriu T;
  ASSERT_EQ(support.CalcTransfMatFromEuler(1, T, 3, 1), 0);
  ASSERT_EQ(T.Rows(), 3);
  const double c = std::cos(0.5);
  const double s = std::sin(0.5);
  const double expected[3][3] = {{c, s, 0}, {-s, c, 0}, {0, 0, 1}};
  for (int i = 0; i < 3; ++i) {
    for (int j = 0; j < 3; ++j)
      EXPECT_NEAR(T(i + 1, j + 1), expected[i][j], 1e-15);
  }
}

TEST(Constraint, TiltedPlaneAxesAreRefusedWhenChecked)
{
  Matriu T;
  for (const double tilt : {0.1, 1e-14, std::numbers::pi}) {
    Constraint support(3);
    const double angles[3] = {0.0, tilt, 0.0};
    support.EnterEulerAngles(angles);
    ExpectFatal([&] { support.CalcTransfMatFromEuler(17, T, 3, 1); },
                "error: Local z axe must be (0,0,1) for 2D problems.Node: 17\n");
    EXPECT_EQ(support.CalcTransfMatFromEuler(17, T, 3, 0), 0);
    EXPECT_EQ(support.CalcTransfMatFromEuler(17, T, 6, 1), 0);
  }
}

TEST(Constraint, ReactionsGoToFlaggedComponentsOnly)
{
  Constraint support = Support(3, {1, 0, 2}, {});
  ReaVecV r = VectorOf<ReaVecV>({1, 2, 3});
  support.AddToReaction(r, 3);
  support.AddToReaction(1, 10);
  support.AddToReaction(2, 10);
  EXPECT_EQ(support.reactions, (Components{11, 0, 3}));
}

TEST(Constraint, ReactionsGoToAllComponentsWithAxes)
{
  Constraint support = Support(3, {1, 0, 0}, {});
  const double angles[3] = {};
  support.EnterEulerAngles(angles);
  support.AddToReaction(VectorOf<ReaVecV>({1, 2, 3}), 3);
  support.AddToReaction(2, 10);
  EXPECT_EQ(support.reactions, (Components{1, 12, 3}));
}

TEST(Constraint, TransferHandsHalfToEach)
{
  Constraint support = Support(3, {1, 0, 1}, {});
  support.reactions = {8, 5, 2};
  Constraint a(3);
  Constraint b(3);
  a.reactions = {1, 1, 1};
  support.TransferYourReaction(3, &a, &b);
  EXPECT_EQ(a.reactions, (Components{5, 1, 2}));
  EXPECT_EQ(b.reactions, (Components{4, 0, 1}));
  EXPECT_EQ(support.reactions, (Components{0, 5, 0}));

  const double angles[3] = {};
  support.EnterEulerAngles(angles);
  support.TransferYourReaction(3, &a, &b);
  EXPECT_EQ(b.reactions, (Components{4, 2.5, 1}));
  EXPECT_EQ(support.reactions, Components{});
}

TEST(Constraint, PrintToWritesOneLine)
{
  Constraint support = Support(3, {1, 0, 2}, {0.5, 0, 1e6});
  std::ostringstream out;
  support.PrintTo(out, 3);
  EXPECT_EQ(out.str(), "flags=102 values=0.5 0 1e+06\n");
  const double angles[3] = {0.25, 0, 1};
  support.EnterEulerAngles(angles);
  out.str("");
  support.PrintTo(out, 3);
  EXPECT_EQ(out.str(), "flags=102 values=0.5 0 1e+06 Euler1=0.25 Euler2=0 Euler3=1\n");
}

TEST(MergeTwoConstraints, NeedsTwoSupportsOfLikeAxes)
{
  const Constraint fixed = Support(3, {1, 1, 1}, {});
  Constraint turned = fixed;
  const double angles[3] = {0.5, 0, 0};
  turned.EnterEulerAngles(angles);
  Constraint otherwise = fixed;
  const double otherAngles[3] = {0.5002, 0, 0};
  otherwise.EnterEulerAngles(otherAngles);
  EXPECT_EQ(MergeTwoConstraints(3, &fixed, nullptr, 0.0), nullptr);
  EXPECT_EQ(MergeTwoConstraints(3, nullptr, &fixed, 0.0), nullptr);
  EXPECT_EQ(MergeTwoConstraints(3, nullptr, nullptr, 0.0), nullptr);
  EXPECT_EQ(Merge(3, fixed, turned), nullptr);
  EXPECT_EQ(Merge(3, turned, fixed), nullptr);
  EXPECT_EQ(Merge(3, turned, otherwise), nullptr);
  EXPECT_NE(Merge(3, turned, turned), nullptr);
}

TEST(MergeTwoConstraints, KeepsCommonFlagsWithMeanValues)
{
  Constraint a = Support(6, {1, 1, 2, 0, 2, 1}, {1, 2, 3, 0, 5, 6});
  const Constraint b = Support(6, {1, 2, 2, 0, 0, 1}, {3, 4, 5, 0, 0, 0});
  a.reactions.fill(9.0);
  const auto merged = Merge(6, a, b);
  ASSERT_NE(merged, nullptr);
  EXPECT_EQ(merged->flags, (Flags{1, 0, 2, 0, 0, 1}));
  EXPECT_EQ(merged->values, (Components{2, 0, 4, 0, 0, 3}));
  EXPECT_EQ(merged->reactions, Components{});
  EXPECT_FALSE(merged->localAxes);
}

TEST(MergeTwoConstraints, IsNullWithoutACommonFlag)
{
  EXPECT_EQ(Merge(3, Support(3, {1, 2, 0}, {}), Support(3, {2, 1, 0}, {})), nullptr);
}

TEST(MergeTwoConstraints, HasTheMeanAngles)
{
  Constraint a = Support(3, {1, 1, 1}, {});
  Constraint b = a;
  const double first[3] = {0.5, 0.2, 0.1};
  const double second[3] = {0.500004, 0.2, 0.1};
  a.EnterEulerAngles(first);
  b.EnterEulerAngles(second);
  const auto merged = Merge(3, a, b);
  ASSERT_NE(merged, nullptr);
  EXPECT_TRUE(merged->localAxes);
  EXPECT_NEAR(merged->euler[0], 0.500002, 1e-9);
  EXPECT_NEAR(merged->euler[1], 0.2, 1e-9);
  EXPECT_NEAR(merged->euler[2], 0.1, 1e-9);
}

TEST(MergeTwoConstraints, RefusesTooManyComponents)
{
  const Constraint support(6);
  ExpectFatal([&] { Merge(101, support, support); }, "error in MergeTwoConstraints\n");
}

TEST(Load, AddsValuesWithTheirUnits)
{
  Load plane(3);
  const double values[6] = {1, 2, 3, 4, 5, 6};
  plane.AddValues(values, 3, 10.0, 0.5);
  plane.AddValues(values, 3, 1.0, 1.0);
  EXPECT_EQ(plane.values, (Components{11, 22, 18}));
  Load space(6);
  space.AddValues(values, 6, 10.0, 0.5);
  space.AddNewDegree(6, 100.0);
  EXPECT_EQ(space.values, (Components{10, 20, 30, 20, 25, 130}));
}

TEST(Load, PrintToWritesOneLine)
{
  Load load(3);
  const double values[3] = {1, -2.5, 1e-7};
  load.AddValues(values, 3, 1.0, 1.0);
  std::ostringstream out;
  load.PrintTo(out, 3);
  EXPECT_EQ(out.str(), "values=1 -2.5 1e-07\n");
}

TEST(Constraint, PlaneAxesMayTiltByRounding)
{
  for (const double tilt : {4e-16, -4e-16}) {
    Constraint support(3);
    const double angles[3] = {0.0, tilt, 0.0};
    support.EnterEulerAngles(angles);
    Matriu T;
    EXPECT_EQ(support.CalcTransfMatFromEuler(17, T, 3, 1), 0);
    EXPECT_EQ(T(1, 1), 1.0);
  }
}

TEST(MergeTwoConstraints, AxesAreAlikeUpToOneHundredThousandth)
{
  const double angles[3] = {0.5, 0.2, 0.1};
  Constraint a = Support(3, {1, 1, 1}, {});
  a.EnterEulerAngles(angles);
  for (int k = 0; k < 3; ++k) {
    Constraint near = a;
    near.euler[k] += 0.9e-5;
    EXPECT_NE(Merge(3, a, near), nullptr) << k;
    Constraint far = a;
    far.euler[k] += 1.1e-5;
    EXPECT_EQ(Merge(3, a, far), nullptr) << k;
  }
}

}  // namespace morlen
