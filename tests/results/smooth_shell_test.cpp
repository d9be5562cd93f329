// Averaging of shell forces over the elements around a node.

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <string>
#include <utility>
#include <vector>

#include "support/messages.h"
#include "support/shell_model.h"

namespace morlen {

namespace {

// Two sloping squares with a fold of the given angle between them (nodes 2 and 5). All nodes are
// moved so that the forces of all triangles differ.
ShellModel Moved(double fold, const std::string& settings)
{
  constexpr double slope = 0.5;
  ShellModel model = GridShell(2, 1, [&](double u, double v) {
    const double first = std::min(2 * u, 1.0);
    const double beyond = 2 * u - first;
    return Vector3{first * std::cos(slope) + beyond * std::cos(slope + fold), v,
                   first * std::sin(slope) + beyond * std::sin(slope + fold)};
  });
  model.settings = settings;
  for (int node = 1; node <= 6; ++node) {
    const double s = node * 0.7;
    model.Hold(
        node, "111111",
        {std::sin(s), std::cos(2 * s), std::sin(3 * s), std::cos(5 * s), std::sin(7 * s), 0});
  }
  return model;
}

using Forces = std::vector<std::vector<ShellForces>>;  // by triangle and point

Forces AllForces(const ShellModel& model)
{
  const Solved solved(model.Text());
  Forces forces;
  for (int i = 1; i <= static_cast<int>(model.triangles.size()); ++i)
    forces.push_back(ForcesOf(solved, i));
  return forces;
}

void ExpectSame(const Forces& actual, const Forces& expected, int begin, int end)
{
  for (std::size_t i = 0; i < expected.size(); ++i) {
    for (std::size_t g = 0; g < expected[i].size(); ++g) {
      for (int k = begin; k < end; ++k)
        EXPECT_NEAR(actual[i][g][k], expected[i][g][k], 1e-9) << i + 1 << " " << g << " " << k;
    }
  }
}

// The values at the corner of a triangle: those of its only point, or the linear extrapolation from
// three points at the middles of the edges.
double AtCorner(const std::vector<ShellForces>& points, int corner, int k)
{
  if (points.size() == 1)
    return points[0][k];
  return points[corner][k] + points[(corner + 2) % 3][k] - points[(corner + 1) % 3][k];
}

// Means over the triangles of each set that meet at a node.
Forces Averaged(const ShellModel& model, const Forces& given, const std::vector<int>& sets)
{
  Forces result = given;
  for (int k = 0; k < 6; ++k) {
    for (std::size_t i = 0; i < given.size(); ++i) {
      std::array<double, 3> mean{};
      for (int corner = 0; corner < 3; ++corner) {
        int count = 0;
        for (std::size_t j = 0; j < given.size(); ++j) {
          for (int c = 0; c < 3; ++c) {
            if (sets[j] != sets[i] || model.triangles[j][c] != model.triangles[i][corner])
              continue;
            mean[corner] += AtCorner(given[j], c, k);
            ++count;
          }
        }
        mean[corner] /= count;
      }
      const std::size_t points = given[i].size();
      for (std::size_t g = 0; g < points; ++g)
        result[i][g][k] =
            points == 1 ? (mean[0] + mean[1] + mean[2]) / 3.0 : (mean[g] + mean[(g + 1) % 3]) / 2.0;
    }
  }
  return result;
}

}  // namespace

TEST(SmoothShell, AveragesOverTheElementsOfOnePlane)
{
  for (const std::string conversion : {"", "ConvertTo6Nodes"}) {
    const ShellModel rough = Moved(0.0, conversion);
    const Forces given = AllForces(rough);
    const Forces smooth = AllForces(Moved(0.0, conversion + "\nDoSmoothing 0.01"));
    ExpectSame(smooth, Averaged(rough, given, {1, 1, 1, 1}), 0, 6);
    ExpectSame(smooth, given, 6, 8);  // shears stay
    EXPECT_GT(std::fabs(smooth[0][0][0] - given[0][0][0]), 1.0) << "the states differ";
  }
}

TEST(SmoothShell, TwoTrianglesShareTwoCorners)
{
  // Each triangle keeps its value at one corner: (2 own + other) / 3.
  ShellModel rough = Moved(0.0, "");
  rough.triangles.resize(2);
  rough.nodes.resize(6);
  const Forces given = AllForces(rough);
  rough.settings = "DoSmoothing 0.01";
  const Forces smooth = AllForces(rough);
  for (int k = 0; k < 6; ++k)
    EXPECT_NEAR(smooth[0][0][k], (2 * given[0][0][k] + given[1][0][k]) / 3, 1e-10);
}

TEST(SmoothShell, KeepsTheSidesOfASteepFoldApart)
{
  for (const std::string conversion : {"", "ConvertTo6Nodes"}) {
    const ShellModel rough = Moved(0.3, conversion);
    const Forces given = AllForces(rough);
    ExpectSame(AllForces(Moved(0.3, conversion + "\nDoSmoothing 0.29")),
               Averaged(rough, given, {1, 1, 2, 2}), 0, 6);
    ExpectSame(AllForces(Moved(0.3, conversion + "\nDoSmoothing 3.14")),
               Averaged(rough, given, {1, 1, 1, 1}), 0, 6);
  }
}

TEST(SmoothShell, LeavesAConstantStateAlone)
{
  for (const char* settings : {"DoSmoothing 0.01", "DoSmoothing 0.01\nConvertTo6Nodes"}) {
    ShellModel model = GridShell(3, 2, [](double u, double v) { return Vector3{u, v, 0}; });
    model.material = "E=1000 nu=0 G=500 t=0.5";
    model.settings = settings;
    for (std::size_t i = 0; i < model.nodes.size(); ++i) {
      const auto [x, y, z] = model.nodes[i];
      model.Hold(static_cast<int>(i) + 1, "111111",
                 {0.002 * x + 0.001 * y, 0.004 * y, z, 0.01 * y, -0.02 * x, 0});
    }
    const Solved solved(model.Text());
    const double D = 1000 * 0.125 / 12;
    for (int triangle = 1; triangle <= 12; ++triangle) {
      for (const ShellForces& forces : ForcesOf(solved, triangle))
        ExpectValues({forces.begin(), forces.begin() + 6}, {1, 2, 0.25, -0.02 * D, -0.01 * D, 0},
                     1e-12);
    }
  }
}

namespace {

// Two triangles in one plane. The first is stretched along x by 0.001 (N = 0.5 with E t = 500), the
// second is sheared.
ShellModel TwoStates(const std::string& settings)
{
  ShellModel model;
  model.settings = settings;
  model.material = "E=1000 nu=0 G=500 t=0.5";
  model.nodes = {{0, 0, 0}, {1, 0, 0}, {1, 1, 0}, {0, 1, 0}};
  model.triangles = {{1, 2, 3}, {1, 3, 4}};
  // Triangle 1: ux = 0.001 x. Triangle 2, with the same corners 1 and 3: ux = 0.001 y.
  model.Hold(1, "111111");
  model.Hold(2, "111111", {0.001, 0, 0, 0, 0, 0});
  model.Hold(3, "111111", {0.001, 0, 0, 0, 0, 0});
  model.Hold(4, "111111", {0.001, 0, 0, 0, 0, 0});
  return model;
}

}  // namespace

TEST(SmoothShell, OfPrincipalValuesComparesPrincipalAxes)
{
  // N = (0.5, 0, 0) along x, and pure shear 0.25: principal 0.25 and -0.25 at 45 degrees.
  for (const std::string conversion : {"", "ConvertTo6Nodes"}) {
    const Forces rough = AllForces(TwoStates("MainStresses\n" + conversion));
    const Forces apart = AllForces(TwoStates("MainStresses\nDoSmoothing 0.7\n" + conversion));
    ExpectSame(apart, rough, 0, 8);  // 45 degrees are more than 0.7
    const Forces together = AllForces(TwoStates("MainStresses\nDoSmoothing 0.8\n" + conversion));
    ExpectSame(together, Averaged(TwoStates(""), rough, {1, 1}), 0, 6);
    EXPECT_GT(std::fabs(together[0][0][0] - rough[0][0][0]), 0.05);
  }
}

TEST(SmoothShell, OfBothKindsComparesTheAxesOfEach)
{
  const Forces rough = AllForces(TwoStates("MainAndLocalStresses"));
  const Solved solved(TwoStates("MainAndLocalStresses\nDoSmoothing 0.7").Text());
  const Forces local = {ForcesOf(solved, 1), ForcesOf(solved, 2)};
  ExpectSame(local, Averaged(TwoStates(""), rough, {1, 1}), 0, 6);
  const ReaVecV& main = solved.Result().results[0].mainStrengths;
  EXPECT_NEAR(main(1), 0.5, 1e-12);
  EXPECT_NEAR(std::fabs(main(9)), 0.25, 1e-12);
}

TEST(SmoothShell, HasNoLimitOfGroups)
{
  // 24 triangles around a node, all in different planes.
  ShellModel model;
  model.nodes = {{0, 0, 1}};
  for (int i = 0; i < 24; ++i) {
    const double angle = 2 * 3.14159265358979 * i / 24;
    model.nodes.push_back({std::cos(angle), std::sin(angle), 0.0});
    model.triangles.push_back({1, i + 2, (i + 1) % 24 + 2});
    model.Hold(i + 2, "111111", {std::sin(i), std::cos(3 * i), 0, 0, std::sin(5 * i), 0});
  }
  model.Hold(1, "111111");
  const Forces given = AllForces(model);
  model.settings = "DoSmoothing 0.01";
  ExpectSame(AllForces(model), given, 0, 8);
}

TEST(SmoothShell, IsReported)
{
  for (const char* settings : {"", "DoSmoothing 0.01"}) {
    const auto project = ReadProject(TwoStates(settings).Text());
    project->Calc(1, nullptr);
    EXPECT_EQ(MessagesOf([&](std::FILE* info) { project->CalcStrengthsAndReactions(info); }),
              *settings ? "Beginning smooth of the gaussian variables\n" : "");
  }
}

}  // namespace morlen
