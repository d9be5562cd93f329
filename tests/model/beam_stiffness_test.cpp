// The stiffness blocks of beams and their place in the global matrix.

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <string>
#include <utility>
#include <vector>

#include "base/errorwriter.h"
#include "model/material.h"
#include "model/mesh.h"
#include "numeric/matriu.h"
#include "solvers/skymatriu.h"
#include "support/dense.h"
#include "support/fatal.h"
#include "support/frame.h"
#include "support/processor.h"
#include "support/solved.h"

namespace morlen {

namespace {

constexpr double kL = 2.0;

Material Steel()
{
  Material m;
  m.E1 = 7.0;
  m.A = 3.0;
  m.Iz = 5.0;
  m.Iy = 11.0;
  m.Gxy = 13.0;
  m.J = 17.0;
  return m;
}

// The 2n×2n stiffness of a beam of length kL, assembled from its blocks; rows count from 0.
using Square = std::vector<std::vector<double>>;

Square Assembled(PROBLEMTYPE type, int hingeCode)
{
  Matriu K11, K12, K22;
  Steel().ConstructLocalK(1, K11, K12, K22, kL * kL, type, hingeCode);
  const int n = type == kPlane ? 3 : 6;
  Square K(2 * n, std::vector<double>(2 * n));
  for (int i = 0; i < n; ++i) {
    for (int j = 0; j < n; ++j) {
      K[i][j] = K11(i + 1, j + 1);
      K[i][n + j] = K12(i + 1, j + 1);
      K[n + j][i] = K12(i + 1, j + 1);
      K[n + i][n + j] = K22(i + 1, j + 1);
    }
  }
  return K;
}

// Eliminates component k: its row and column become 0.
void Condense(Square& K, int k)
{
  const Square old = K;
  for (std::size_t i = 0; i < K.size(); ++i) {
    for (std::size_t j = 0; j < K.size(); ++j)
      K[i][j] = old[i][j] - old[i][k] * old[k][j] / old[k][k];
  }
}

// Components of the bending rotations of an end (0 or 1).
std::vector<int> BendingRotations(PROBLEMTYPE type, int end)
{
  if (type == kPlane)
    return {end * 3 + 2};
  return {end * 6 + 4, end * 6 + 5};
}

void ExpectBlock(const Matriu& K, int n, const std::vector<std::array<double, 3>>& entries)
{
  ASSERT_EQ(K.Rows(), n);
  ASSERT_EQ(K.Cols(), n);
  Matriu expected(n, n);
  expected = 0.0;
  for (const auto& [i, j, value] : entries)
    expected(static_cast<int>(i) + 1, static_cast<int>(j) + 1) = value;
  ExpectValues(Entries(K), Entries(expected), 1e-15);
}

// Displacements of both ends in a small motion of the whole beam along the x axis: a
// translation, or a turn about the first end.
std::vector<double> RigidMotion(PROBLEMTYPE type, int direction)
{
  if (type == kPlane) {
    const std::vector<double> motions[] = {
        {1, 0, 0, 1, 0, 0}, {0, 1, 0, 0, 1, 0}, {0, 0, 1, 0, kL, 1}};
    return motions[direction];
  }
  std::vector<double> u(12, 0.0);
  u[direction] = u[6 + direction] = 1.0;
  if (direction == 4)
    u[8] = -kL;
  if (direction == 5)
    u[7] = kL;
  return u;
}

}  // namespace

TEST(BeamStiffness, ContinuousPlaneBlocks)
{
  Matriu K11, K12, K22;
  Steel().ConstructLocalK(1, K11, K12, K22, kL * kL, kPlane, 11);
  const double EA = 21.0;
  const double EIz = 35.0;
  const double a = 12 * EIz / 8;
  const double b = 6 * EIz / 4;
  ExpectBlock(K11, 3, {{0, 0, EA / 2}, {1, 1, a}, {1, 2, b}, {2, 1, b}, {2, 2, 2 * EIz}});
  ExpectBlock(K12, 3, {{0, 0, -EA / 2}, {1, 1, -a}, {1, 2, b}, {2, 1, -b}, {2, 2, EIz}});
  ExpectBlock(K22, 3, {{0, 0, EA / 2}, {1, 1, a}, {1, 2, -b}, {2, 1, -b}, {2, 2, 2 * EIz}});
}

TEST(BeamStiffness, ContinuousSpaceBlocks)
{
  Matriu K11, K12, K22;
  Steel().ConstructLocalK(1, K11, K12, K22, kL * kL, kSpace, 11);
  const double EA = 21.0;
  const double GJ = 221.0;
  const double az = 12 * 35.0 / 8;
  const double bz = 6 * 35.0 / 4;
  const double ay = 12 * 77.0 / 8;
  const double by = 6 * 77.0 / 4;
  ExpectBlock(K11, 6,
              {{0, 0, EA / 2},
               {1, 1, az},
               {2, 2, ay},
               {3, 3, GJ / 2},
               {4, 4, 2 * 77.0},
               {5, 5, 2 * 35.0},
               {1, 5, bz},
               {5, 1, bz},
               {2, 4, -by},
               {4, 2, -by}});
  ExpectBlock(K12, 6,
              {{0, 0, -EA / 2},
               {1, 1, -az},
               {2, 2, -ay},
               {3, 3, -GJ / 2},
               {4, 4, 77.0},
               {5, 5, 35.0},
               {1, 5, bz},
               {5, 1, -bz},
               {2, 4, -by},
               {4, 2, by}});
  ExpectBlock(K22, 6,
              {{0, 0, EA / 2},
               {1, 1, az},
               {2, 2, ay},
               {3, 3, GJ / 2},
               {4, 4, 2 * 77.0},
               {5, 5, 2 * 35.0},
               {1, 5, -bz},
               {5, 1, -bz},
               {2, 4, by},
               {4, 2, by}});
}

TEST(BeamStiffness, SecondEndHingedBlocks)
{
  Matriu K11, K12, K22;
  Steel().ConstructLocalK(1, K11, K12, K22, kL * kL, kPlane, 10);
  const double EA = 21.0;
  const double a = 3 * 35.0 / 8;
  const double b = 3 * 35.0 / 4;
  const double c = 3 * 35.0 / 2;
  ExpectBlock(K11, 3, {{0, 0, EA / 2}, {1, 1, a}, {1, 2, b}, {2, 1, b}, {2, 2, c}});
  ExpectBlock(K12, 3, {{0, 0, -EA / 2}, {1, 1, -a}, {2, 1, -b}});
  ExpectBlock(K22, 3, {{0, 0, EA / 2}, {1, 1, a}});
}

TEST(BeamStiffness, HingedBlocksAreCondensedContinuousOnes)
{
  for (const PROBLEMTYPE type : {kPlane, kSpace}) {
    for (const int code : {11, 10, 1, 0}) {
      SCOPED_TRACE(testing::Message() << "type " << type << " code " << code);
      Square expected = Assembled(type, 11);
      for (int end = 0; end < 2; ++end) {
        const bool continuous = end == 0 ? code / 10 : code % 10;
        if (continuous)
          continue;
        for (const int rotation : BendingRotations(type, end))
          Condense(expected, rotation);
      }
      const Square K = Assembled(type, code);
      for (std::size_t i = 0; i < K.size(); ++i)
        ExpectValues(K[i], expected[i], 1e-14, 200.0);
    }
  }
}

TEST(BeamStiffness, RigidMotionsGiveNoForce)
{
  for (const PROBLEMTYPE type : {kPlane, kSpace}) {
    for (const int code : {11, 10, 1, 0}) {
      const Square K = Assembled(type, code);
      for (int direction = 0; direction < (type == kPlane ? 3 : 6); ++direction) {
        const std::vector<double> u = RigidMotion(type, direction);
        for (std::size_t i = 0; i < K.size(); ++i) {
          double force = 0.0;
          for (std::size_t j = 0; j < K.size(); ++j)
            force += K[i][j] * u[j];
          EXPECT_NEAR(force, 0.0, 1e-12) << type << " " << code << " " << direction << " " << i;
        }
      }
    }
  }
}

TEST(BeamStiffness, OtherHingeCodesLeaveTheBlocks)
{
  Matriu K11 = MatriuOf(1, 1, {1});
  Matriu K12 = MatriuOf(1, 1, {2});
  Matriu K22 = MatriuOf(1, 1, {3});
  for (const int code : {2, -1, 12, 100})
    Steel().ConstructLocalK(1, K11, K12, K22, 1.0, kPlane, code);
  EXPECT_EQ(Entries(K11), std::vector<double>{1});
  EXPECT_EQ(Entries(K12), std::vector<double>{2});
  EXPECT_EQ(Entries(K22), std::vector<double>{3});
}

TEST(BeamStiffness, MissingValuesAreRefusedInOrder)
{
  static const struct
  {
    double Material::*value;
    bool spaceOnly;
    const char* message;
  } cases[] = {
      {&Material::E1, false, "error: material parameter E is 0 for element 42\n"},
      {&Material::A, false, "error: section parameter A is 0 for element 42\n"},
      {&Material::Iz, false, "error: section parameter Iz is 0 for element 42\n"},
      {&Material::Iy, true, "error: section parameter Iy is 0 for element 42\n"},
      {&Material::Gxy, true, "error: material parameter G is 0 for element 42\n"},
      {&Material::J, true, "error: section parameter J is 0 for element 42\n"},
  };
  Matriu K11, K12, K22;
  for (const int code : {11, 10, 1, 0}) {
    Material material;  // no values: the message names the first missing one
    for (const auto& c : cases) {
      for (const double tooSmall : {0.0, -1e-30, -5.0, std::nan("")}) {
        material.*c.value = tooSmall;
        ExpectFatal([&] { material.ConstructLocalK(42, K11, K12, K22, 1.0, kSpace, code); },
                    c.message);
        if (!c.spaceOnly)
          ExpectFatal([&] { material.ConstructLocalK(42, K11, K12, K22, 1.0, kPlane, code); },
                      c.message);
      }
      material.*c.value = 1e-40;  // in km and MN values are small
    }
    material.ConstructLocalK(42, K11, K12, K22, 1.0, kSpace, code);
  }
}

TEST(BeamStiffness, NegativeValuesAreGivenInTheHint)
{
  static const std::pair<double Material::*, const char*> values[] = {
      {&Material::E1, "E"},  {&Material::A, "A"},   {&Material::Iz, "Iz"},
      {&Material::Iy, "Iy"}, {&Material::Gxy, "G"}, {&Material::J, "J"}};
  Matriu K11, K12, K22;
  Material material;
  const auto hint = [&] {
    FatalCaught([&] { material.ConstructLocalK(42, K11, K12, K22, 1.0, kSpace, 11); });
    return std::string(errorwriter.Hint());
  };
  for (const auto& [value, name] : values) {
    material.*value = -0.02;
    EXPECT_EQ(hint(),
              name + std::string(" is -0.02 in the units of the results; it must be above 0"));
    material.*value = 0.0;
    EXPECT_EQ(hint().find("must be above 0"), std::string::npos) << name;
    material.*value = 1.0;
  }
}

TEST(BeamStiffness, UnknownProblemTypeIsRefused)
{
  Matriu K11, K12, K22;
  ExpectFatal([&] { Steel().ConstructLocalK(1, K11, K12, K22, 1.0, PROBLEMTYPE(2), 11); },
              "error in Material::ConstructLocalK. Unknown problem type\n");
}

TEST(BeamStiffness, NoLengthIsNotRefusedHere)
{
  Matriu K11, K12, K22;
  Steel().ConstructLocalK(1, K11, K12, K22, 0.0, kPlane, 11);
  EXPECT_TRUE(std::isinf(K11(1, 1)));
}

namespace {

// A plane beam from (0,0) to (3,4), by the axes (0.6, 0.8) and (-0.8, 0.6).
const char* const kSlope = "1 0 0\n2 3 4";

// The global matrix, without renumbering.
Matriu GlobalMatrix(const std::string& problem, int applyLocalAxes)
{
  const auto project = ReadProject(problem);
  SkyMatriu matrix(project->problem.Equations(), TestedProcessor());
  matrix.EnterMaxDiff(1, 2, project->problem.components.count);
  matrix.Create(project->problem.components.count);
  project->AddKToGlobalMatrixBeams(project->problem.meshes[0].get(), applyLocalAxes, matrix);
  Matriu K;
  matrix.CopyFromYouToMat(K);
  return K;
}

}  // namespace

TEST(BeamAssembly, SlopedBeamIsTurnedToGlobalAxes)
{
  const Matriu K = GlobalMatrix(ProblemParts().With(&ProblemParts::coordinates, kSlope).Text(), 1);
  // EA/L = 0.2, 12EI/L³ = 0.096, 6EI/L² = 0.24, 4EI/L = 0.8: K11 = T·k·Tᵀ.
  const double xx = 0.36 * 0.2 + 0.64 * 0.096;
  const double xy = 0.48 * (0.2 - 0.096);
  const double yy = 0.64 * 0.2 + 0.36 * 0.096;
  const double xr = -0.8 * 0.24;
  const double yr = 0.6 * 0.24;
  const std::vector<double> expected = {xx,  xy,  xr,  -xx, -xy, xr,   //
                                        xy,  yy,  yr,  -xy, -yy, yr,   //
                                        xr,  yr,  0.8, -xr, -yr, 0.4,  //
                                        -xx, -xy, -xr, xx,  xy,  -xr,  //
                                        -xy, -yy, -yr, xy,  yy,  -yr,  //
                                        xr,  yr,  0.4, -xr, -yr, 0.8};
  ExpectValues(Entries(K), expected, 1e-14);
}

TEST(BeamAssembly, FirstNodeMayHaveTheHigherNumber)
{
  // The beam runs from node 2 to node 1 and their coordinates are exchanged: the same beam.
  const Matriu forward =
      GlobalMatrix(ProblemParts().With(&ProblemParts::coordinates, kSlope).Text(), 1);
  const Matriu backward = GlobalMatrix(ProblemParts()
                                           .With(&ProblemParts::coordinates, "1 3 4\n2 0 0")
                                           .With(&ProblemParts::elements, "1 2 1 1")
                                           .Text(),
                                       1);
  for (int i = 1; i <= 6; ++i) {
    for (int j = 1; j <= 6; ++j)
      EXPECT_NEAR(backward(i, j), forward((i + 2) % 6 + 1, (j + 2) % 6 + 1), 1e-15);
  }
}

TEST(BeamAssembly, SupportAxesTurnRowsAndColumns)
{
  // The support axes run along the beam: x = (cos a, -sin a) with sin a = -0.8. The first end
  // then has the beam's local axes, the second keeps the global ones.
  const std::string support = "1 000 0 0 0 Euler1 -0.92729521800161223";
  const std::string problem = ProblemParts()
                                  .With(&ProblemParts::coordinates, kSlope)
                                  .With(&ProblemParts::constraints, support)
                                  .Text();
  const Matriu K = GlobalMatrix(problem, 1);
  const std::vector<double> firstRow = {0.2, 0, 0, -0.6 * 0.2, -0.8 * 0.2, 0};
  const std::vector<double> secondRow = {0, 0.096, 0.24, 0.8 * 0.096, -0.6 * 0.096, 0.24};
  for (int j = 1; j <= 6; ++j) {
    EXPECT_NEAR(K(1, j), firstRow[j - 1], 1e-15);
    EXPECT_NEAR(K(2, j), secondRow[j - 1], 1e-15);
    EXPECT_NEAR(K(j, 1), firstRow[j - 1], 1e-15);
  }
  const Matriu plain = GlobalMatrix(problem, 0);
  const Matriu global =
      GlobalMatrix(ProblemParts().With(&ProblemParts::coordinates, kSlope).Text(), 1);
  EXPECT_EQ(Entries(plain), Entries(global));
}

TEST(BeamAssembly, MissingMaterialIsRefused)
{
  for (const char* element : {"1 1 2", "1 1 2 0", "1 1 2 7", "1 1 2 -1", "1 1 2 2000000000"})
    ExpectFatal([&] { Solved(ProblemParts().With(&ProblemParts::elements, element).Text()); },
                "error: Material in element: 1 doesn't exist\n");
}

}  // namespace morlen
