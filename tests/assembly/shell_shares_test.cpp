#include "assembly/shell_shares.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <numbers>
#include <string>
#include <vector>

#include "support/fatal.h"
#include "support/refined_element.h"
#include "support/shell_model.h"

namespace morlen {

namespace {

// Of sines and cosines in the coordinates; a fold of 5 degrees is 0.09.
constexpr double kRounding = 1e-12;
constexpr double kDegree = std::numbers::pi / 180.0;

double ShareOfFold(double degrees, double size, double thickness)
{
  return ShareOf(CurvatureOfFold(degrees * kDegree), size, thickness);
}

std::vector<double> SharesOf(const ShellModel& model)
{
  return CalcShellShares(*ReadProblemText(model.Text()));
}

// Two right triangles of area 2 on the edge 1-2, the second turned about it by the angle.
ShellModel TwoTriangles(double degrees)
{
  ShellModel model;
  const double c = 2 * std::cos(degrees * kDegree);
  const double s = 2 * std::sin(degrees * kDegree);
  model.nodes = {{0, 0, 0}, {2, 0, 0}, {0, 2, 0}, {0, -c, s}};
  model.triangles = {{1, 2, 3}, {2, 1, 4}};
  model.material = "E=1000 nu=0.25 G=400 t=0.25";
  return model;
}

}  // namespace

TEST(ShellShares, FollowFoldSizeAndThickness)
{
  ExpectDigits(ShareOfFold(5, 2.6, 0.25), 0.5957850088);
  ExpectDigits(CurvatureOfFold(30 * kDegree), 0.2617993878);
  ExpectDigits(ShareOfFold(30, 1, 0.5), 0.9300929701);
  EXPECT_EQ(ShareOfFold(45, 1, 0.5), 1.0);
  EXPECT_EQ(ShareOfFold(90, 1e6, 1e-6), 1.0);
  EXPECT_EQ(ShareOfFold(0, 1e6, 1e-6), 1.0);
  EXPECT_LT(ShareOfFold(5, 1, 1e-3), 1e-7);
}

TEST(ShellShares, FoldsFadeOutSmoothlyFromTwentyToFortyDegrees)
{
  EXPECT_DOUBLE_EQ(CurvatureOfFold(20 * kDegree), 20 * kDegree);
  EXPECT_EQ(CurvatureOfFold(40 * kDegree), 0.0);
  for (const double at : {20.0, 40.0}) {
    // The slope is 1 at 20 degrees and 0 at 40 degrees, from both sides.
    const double slope = at == 20.0 ? 1.0 : 0.0;
    for (const double step : {1e-6, -1e-6}) {
      const double difference =
          CurvatureOfFold(at * kDegree + step) - CurvatureOfFold(at * kDegree);
      EXPECT_NEAR(difference / step, slope, 2e-5);  // the curvature of the function times the step
    }
  }
}

TEST(ShellShares, OfAFoldAreThoseOfItsTwoTriangles)
{
  const std::vector<double> shares = SharesOf(TwoTriangles(5));
  const double expected = ShareOfFold(5, 2.0, 0.25);
  ASSERT_EQ(shares.size(), 4U);
  EXPECT_NEAR(shares[0], expected, kRounding);
  EXPECT_NEAR(shares[1], expected, kRounding);
  EXPECT_EQ(shares[2], 1.0);
  EXPECT_EQ(shares[3], 1.0);
  for (const double degrees : {0.0, 41.0, 90.0, 180.0 - 45.0})
    for (const double share : SharesOf(TwoTriangles(degrees)))
      EXPECT_NEAR(share, 1.0, kRounding) << degrees;
}

// Only the planes count, not the directions of their normals.
TEST(ShellShares, DoNotDependOnTheNormals)
{
  ShellModel model = TwoTriangles(7);
  const std::vector<double> same = SharesOf(model);
  model.triangles[1] = {1, 2, 4};
  EXPECT_EQ(SharesOf(model), same);
  // 175 degrees between the half planes are a fold of 5.
  EXPECT_NEAR(SharesOf(TwoTriangles(175))[0], ShareOfFold(5, 2.0, 0.25), kRounding);
}

// The largest fold of all pairs, the mean of the areas, the smallest thickness, and no common edge
// is needed.
TEST(ShellShares, ComeFromAllPairsOfTriangles)
{
  ShellModel model;
  const double a = 6 * kDegree;
  model.nodes = {
      {0, 0, 0}, {2, 0, 0}, {2, 2, 0}, {-3, 0, 0}, {-3, -3 * std::cos(a), 3 * std::sin(a)}};
  model.triangles = {{1, 2, 3}};
  model.material = "E=1000 nu=0.25 G=400 t=0.5\n2 E=1000 nu=0.25 G=400 t=0.2";
  std::string text = model.Text();
  text.replace(text.find("end elements"), 12, "2 1 4 5 2\nend elements");
  const std::vector<double> shares = CalcShellShares(*ReadProblemText(text));
  EXPECT_NEAR(shares[0], ShareOfFold(6, std::sqrt(2 * (2.0 + 4.5) / 2), 0.2), kRounding);
  for (int node = 1; node < 5; ++node)
    EXPECT_EQ(shares[node], 1.0);
}

// Triangles on a common edge, at 0, 4 and 2 degrees and in other orders: the largest fold is
// between those at 0 and 4 degrees, whatever their places in the file.
TEST(ShellShares, TakeTheLargestFoldOfAllTriangles)
{
  std::vector<double> degrees = {0, 2, 4};
  do {
    ShellModel model;
    model.nodes = {{0, 0, 0}, {2, 0, 0}};
    model.material = "E=1000 nu=0.25 G=400 t=0.25";
    for (const double angle : degrees) {
      model.nodes.push_back({1, 2 * std::cos(angle * kDegree), 2 * std::sin(angle * kDegree)});
      model.triangles.push_back({1, 2, static_cast<int>(model.nodes.size())});
    }
    EXPECT_NEAR(SharesOf(model)[0], ShareOfFold(4, 2.0, 0.25), kRounding);
  } while (std::next_permutation(degrees.begin(), degrees.end()));
}

TEST(ShellShares, OfMiddleNodesComeFromTheTrianglesOfTheirEdge)
{
  const ShellModel model = WithMidSideNodes(TwoTriangles(5));
  const std::vector<double> shares = SharesOf(model);
  ASSERT_EQ(shares.size(), 9U);
  const int onFold = model.triangles[0][3];
  for (int node = 1; node <= 9; ++node) {
    const bool folded = node <= 2 || node == onFold;
    EXPECT_NEAR(shares[node - 1], folded ? ShareOfFold(5, 2.0, 0.25) : 1.0, kRounding) << node;
  }
}

TEST(ShellShares, CountTrianglesOfAllMeshesOnly)
{
  ShellModel model = TwoTriangles(5);
  const std::vector<double> one = SharesOf(model);
  model.triangles.pop_back();
  model.nodes.push_back({5, 0, 0});
  model.rest =
      "mesh dimension 3 elemtype Triangle nnode 3\ncoordinates\nend\nelements\n2 2 1 4 1\n"
      "end elements\nmesh dimension 3 elemtype Linear nnode 2\ncoordinates\nend\nelements\n"
      "3 2 5 1\nend elements\n";
  std::vector<double> two = SharesOf(model);
  EXPECT_EQ(two.back(), 1.0);
  two.pop_back();
  EXPECT_EQ(two, one);
}

}  // namespace morlen
