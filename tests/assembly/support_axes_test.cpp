#include "assembly/support_axes.h"

#include <gtest/gtest.h>

#include <cmath>

#include "model/constraint.h"
#include "model/node.h"
#include "numeric/matriu.h"
#include "numeric/plex_range.h"
#include "support/dense.h"
#include "support/frame.h"
#include "support/solved.h"

namespace morlen {

namespace {

// Support axes of angle a in the plane: x = (cos a, -sin a), y = (sin a, cos a).
constexpr double kAngle = 0.3;

// Nodes 1 to 3 of a plane frame. The support of node 2 has local axes, that of node 3 has none.
std::unique_ptr<Project> ThreeNodes()
{
  return ReadProject(ProblemParts()
                         .With(&ProblemParts::coordinates, "1 0 0\n2 1 0\n3 2 0")
                         .With(&ProblemParts::constraints, "2 010 0 0 0 Euler1 0.3\n3 111 0 0 0")
                         .Text());
}

}  // namespace

TEST(SupportAxes, TurnLoadsOfTheirNodeOnly)
{
  const auto project = ThreeNodes();
  ReaVecV v = VectorOf<ReaVecV>({1, 2, 3, 4, 5, 6, 7, 8, 9});
  ConvertGlobalLoadToLocal(project->problem.GiveNodes(), v, 3);
  const double c = std::cos(kAngle);
  const double s = std::sin(kAngle);
  ExpectValues(Values(v), {1, 2, 3, 4 * c - 5 * s, 4 * s + 5 * c, 6, 7, 8, 9}, 1e-15);
  ConvertLocalResultsToGlobal(project->problem.GiveNodes(), v, 3);
  ExpectValues(Values(v), {1, 2, 3, 4, 5, 6, 7, 8, 9}, 1e-15);
}

TEST(SupportAxes, TurnTranslationsAndRotationsInSpace)
{
  const auto project = ReadProject(
      SpaceProblem()
          .With(&ProblemParts::constraints, "2 000000 0 0 0 0 0 0 Euler1=1.5707963267948966")
          .Text());
  ReaVecV v = VectorOf<ReaVecV>({1, 2, 3, 4, 5, 6, 1, 2, 3, 4, 5, 6});
  ConvertGlobalLoadToLocal(project->problem.GiveNodes(), v, 6);
  // x = (0, -1, 0), y = (1, 0, 0).
  ExpectValues(Values(v), {1, 2, 3, 4, 5, 6, -2, 1, 3, -5, 4, 6}, 1e-15);
}

TEST(SupportAxes, TurnRowsByTheFirstNodeAndColumnsByTheSecond)
{
  const auto project = ThreeNodes();
  const Node* plain = project->FindNode(1);
  const Node* turned = project->FindNode(2);
  const double c = std::cos(kAngle);
  const double s = std::sin(kAngle);
  const std::vector<double> entries = {1, 2, 3, 4, 5, 6, 7, 8, 9};

  Matriu K = MatriuOf(3, 3, entries);
  ApplyLocalAxestoKMatrix(K, plain, plain, 3);
  ApplyLocalAxestoKMatrix(K, plain, project->FindNode(3), 3);
  EXPECT_EQ(Entries(K), entries);

  ApplyLocalAxestoKMatrix(K, turned, plain, 3);
  ExpectValues(
      Entries(K),
      {c - 4 * s, 2 * c - 5 * s, 3 * c - 6 * s, s + 4 * c, 2 * s + 5 * c, 3 * s + 6 * c, 7, 8, 9},
      1e-15);

  K = MatriuOf(3, 3, entries);
  ApplyLocalAxestoKMatrix(K, plain, turned, 3);
  ExpectValues(
      Entries(K),
      {c - 2 * s, s + 2 * c, 3, 4 * c - 5 * s, 4 * s + 5 * c, 6, 7 * c - 8 * s, 7 * s + 8 * c, 9},
      1e-15);
}

}  // namespace morlen
