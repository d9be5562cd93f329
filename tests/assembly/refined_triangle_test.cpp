// Refined shell elements of three and six nodes in their own axes: entries of their matrices and
// strengths against an independent computation of the formulas, zero energy, rigid motions,
// constant strains and curvatures.

#include "assembly/refined_triangle.h"

#include <gtest/gtest.h>

#include <cmath>
#include <string>
#include <vector>

#include "support/refined_element.h"
#include "support/solved.h"

namespace morlen {

namespace {

struct Entry
{
  const char* row;
  const char* column;
  double isotropic;
  double orthotropic;
};

void ExpectMatrix(const DenseRows& K, const std::vector<Entry>& entries, double Entry::*value,
                  double trace, double norm)
{
  for (const Entry& entry : entries) {
    SCOPED_TRACE(std::string(entry.row) + "," + entry.column);
    ExpectDigits(K[ComponentIndex(entry.row)][ComponentIndex(entry.column)], entry.*value);
  }
  double sum = 0.0;
  for (std::size_t i = 0; i < K.size(); ++i)
    sum += K[i][i];
  ExpectDigits(sum, trace);
  ExpectDigits(FrobeniusNorm(K), norm);
}

const std::vector<Entry> kThreeNodes = {
    {"u1", "u1", 8.684143505e+03, 2.574290668e+03},
    {"u1", "v1", 4.153433335e+03, 2.694347791e+02},
    {"u1", "rz2", 3.434402027e+02, 1.964862774e+02},
    {"rz1", "rz1", 4.036444374e+03, 2.286467875e+02},
    {"rz1", "rz3", -3.065565109e+01, -4.798506849e+01},
    {"rz2", "rz2", 1.758443679e+03, 1.132804633e+02},
    {"rz3", "v3", 7.879160536e+02, 2.988528433e+01},
    {"w1", "w1", 5.614630973e+01, 6.175497809e+00},
    {"w1", "ry2", -1.240948683e+01, -3.698792881e+00},
    {"rx1", "rx1", 2.662370396e+01, 1.592312650e+00},
    {"rx2", "ry3", 2.637837147e+00, 1.043974442e+00},
    {"ry3", "ry3", 1.581496777e+01, 2.548068926e+00},
};

const std::vector<Entry> kSixNodes = {
    {"u1", "u1", 7.305251811e+03, 2.683777357e+03},
    {"u1", "v1", 2.456534621e+03, 1.475343858e+02},
    {"u1", "rz4", -2.003259331e+02, -1.562542278e+01},
    {"u4", "u4", 1.537829518e+04, 4.432934691e+03},
    {"u4", "v4", 4.718064063e+02, 2.746698314e+01},
    {"rz4", "rz4", 1.189487179e+03, 9.278000000e+01},
    {"rz1", "rz1", 1.698717949e+03, 1.325000000e+02},
    {"v6", "v6", 6.488478102e+03, 3.327350143e+02},
    {"v5", "v5", 4.077226988e+04, 2.096697815e+03},
    {"w1", "w1", 8.333453993e+02, 3.365685527e+01},
    {"w4", "w4", 2.927140566e+03, 1.147980008e+02},
    {"w1", "ry4", -2.518764798e+02, -1.637197119e+01},
    {"rx4", "rx4", 6.339161037e+02, 1.730478570e+01},
    {"ry5", "ry6", -1.156400326e+01, -6.108337850e+00},
};

// Displacements of about 5e-4 without a pattern.
std::vector<double> SomeDisplacements(int nodes)
{
  std::vector<double> u(static_cast<std::size_t>(6 * nodes));
  for (std::size_t c = 0; c < u.size(); ++c)
    u[c] = (static_cast<double>((7 * c) % 11) - 5.0) * 1e-4;
  return u;
}

void ExpectStrengths(const RefinedElement& e, int point, const std::vector<double>& expected)
{
  SCOPED_TRACE(point);
  const std::vector<double> actual = e.Strengths(point, SomeDisplacements(e.Nodes()));
  ASSERT_EQ(actual.size(), expected.size());
  for (std::size_t k = 0; k < expected.size(); ++k)
    ExpectDigits(actual[k], expected[k]);
}

}  // namespace

TEST(RefinedTriangle, MatricesOfThreeNodesHaveKnownEntries)
{
  ExpectMatrix(Example(3, IsotropicExample()).Stiffness(), kThreeNodes, &Entry::isotropic,
               6.293405284e+04, 3.713890365e+04);
  ExpectMatrix(Example(3, OrthotropicExample()).Stiffness(), kThreeNodes, &Entry::orthotropic,
               9.057161147e+03, 6.574123651e+03);
}

TEST(RefinedTriangle, MatricesOfSixNodesHaveKnownEntries)
{
  ExpectMatrix(Example(6, IsotropicExample()).Stiffness(), kSixNodes, &Entry::isotropic,
               1.865584478e+05, 7.685017424e+04);
  ExpectMatrix(Example(6, OrthotropicExample()).Stiffness(), kSixNodes, &Entry::orthotropic,
               2.823652903e+04, 1.443724977e+04);
}

TEST(RefinedTriangle, StrengthsHaveKnownValues)
{
  ExpectStrengths(Example(3, IsotropicExample()), 0,
                  {6.379828092, -3.375837569, 3.415944424, 5.967692959e-3, -1.115940938e-3,
                   -5.150095379e-4, -1.627660239e-2, 2.715444789e-2});
  const RefinedElement six = Example(6, IsotropicExample());
  ExpectStrengths(six, 0,
                  {19.86223420, 30.81960667, -6.348008386, 9.752651262e-4, 2.305055764e-2,
                   1.028507947e-2, -0.6428922728, -0.6256428703});
  ExpectStrengths(six, 1,
                  {5.229429496, 14.53834989, 3.740314838, 7.360563964e-3, -8.120810008e-3,
                   2.046816270e-4, -0.06287772790, 0.6355402904});
  ExpectStrengths(six, 2,
                  {-1.318043350, -6.560870189, 4.242715195, -4.021861061e-3, 1.913906123e-3,
                   5.675263295e-4, 1.211492967, 0.9166622250});
}

TEST(RefinedTriangle, CoefficientOfTheHigherPartFollowsTheMaterial)
{
  for (const double nu : {0.0, 0.2, 0.3, 0.4})
    EXPECT_NEAR(HigherMembraneCoefficient(IsotropicSection(7.0, nu, 0.2).Dm), (1 - 4 * nu * nu) / 2,
                1e-14);  // rounding
  EXPECT_EQ(HigherMembraneCoefficient(IsotropicSection(7.0, 0.45, 0.2).Dm), 0.1);
  // Ex : Ey = 3 : 1.
  const Orthotropic mild = {3e4, 1e4, 0.15, 0.45, 5e3, 5e3, 5e3};
  ExpectDigits(HigherMembraneCoefficient(OrthotropicSection(mild, 0.1).Dm), 0.129100703, 9);
  const Orthotropic strong = {1e5, 1e4, 0.03, 0.3, 6e3, 5e3, 2e3};
  EXPECT_EQ(HigherMembraneCoefficient(OrthotropicSection(strong, 0.1).Dm), 0.1);
  // The axes may change their names.
  const Orthotropic turned = {1e4, 3e4, 0.45, 0.15, 5e3, 5e3, 5e3};
  ExpectDigits(HigherMembraneCoefficient(OrthotropicSection(turned, 0.1).Dm), 0.129100703, 9);
}

TEST(RefinedTriangle, EdgeMomentsAreThoseOfAFixedBeamTimesTwoThirds)
{
  // qL²/8 against qL²/12, times the root of the shares.
  EXPECT_DOUBLE_EQ(EdgeMoment(3.0, 2.0, 1.0, 1.0), 1.5);
  EXPECT_DOUBLE_EQ(EdgeMoment(3.0, 2.0, 0.25, 1.0), 0.75);
  EXPECT_DOUBLE_EQ(EdgeMoment(-3.0, 2.0, 0.25, 0.25), -0.375);
  EXPECT_EQ(EdgeMoment(3.0, 2.0, 0.0, 1.0), 0.0);
  // The load (3, -1) per length on the edge from (2, 0.3) to (0.5, 1.4).
  const double length = std::hypot(1.5, 1.1);
  ExpectDigits(length, 1.860107524);
  ExpectDigits(EdgeMoment((3 * 1.1 - 1 * 1.5) / length, length, 0.5, 0.2), 0.13234897, 8);
}

namespace {

RefinedElement Turned(RefinedElement e, double angle)
{
  for (int i = 0; i < e.Nodes(); ++i) {
    const double x = e.x[i];
    e.x[i] = std::cos(angle) * x - std::sin(angle) * e.y[i];
    e.y[i] = std::sin(angle) * x + std::cos(angle) * e.y[i];
  }
  return e;
}

// A triangle with straight edges; six nodes: with its middles.
RefinedElement Straight(int nodes, const std::vector<double>& x, const std::vector<double>& y)
{
  RefinedElement e{x, y, std::vector<double>(static_cast<std::size_t>(nodes), 1.0), {}};
  for (int i = 0; i < nodes - 3; ++i) {
    e.x.push_back((x[i] + x[(i + 1) % 3]) / 2);
    e.y.push_back((y[i] + y[(i + 1) % 3]) / 2);
  }
  return e;
}

std::vector<RefinedElement> Shapes(int nodes)
{
  std::vector<RefinedElement> shapes = {Straight(nodes, {0, 1, 0}, {0, 0, 1}),
                                        Straight(nodes, {0, 2, 0.5}, {0, 0.3, 1.4}),
                                        Straight(nodes, {3, 7, 6.5}, {-1, -0.5, 0.2}),
                                        Example(nodes, {}), Turned(Example(nodes, {}), 1.1)};
  return shapes;
}

// Shares between 0 and 1, the same at all nodes and different ones.
std::vector<std::vector<double>> SharesToTry()
{
  return {{0, 0, 0, 0, 0, 0}, {1, 1, 1, 1, 1, 1},       {1, 0, 0, 1, 0, 1},
          {0, 1, 1, 0, 1, 0}, {0.3, 0.7, 1, 0, 0.5, 1}, {1e-6, 0.02, 0.9, 0.999, 1e-3, 0.4}};
}

std::vector<ShellSection> SectionsToTry()
{
  const Orthotropic fibres = {100000.0, 10000.0, 0.03, 0.3, 6000.0, 5000.0, 2000.0};
  return {IsotropicSection(2e5, 0.3, 0.3), IsotropicSection(2e5, 0.3, 0.01),
          OrthotropicSection(fibres, 0.3), OrthotropicSection(fibres, 0.01)};
}

// Elements of these shapes with all sections and shares.
std::vector<RefinedElement> ElementsOf(int nodes, const std::vector<RefinedElement>& shapes)
{
  std::vector<RefinedElement> elements;
  for (RefinedElement e : shapes) {
    for (const ShellSection& section : SectionsToTry()) {
      e.section = section;
      for (const std::vector<double>& shares : SharesToTry()) {
        e.shares.assign(shares.begin(), shares.begin() + nodes);
        elements.push_back(e);
      }
    }
  }
  return elements;
}

// Elements of three and of six nodes.
std::vector<RefinedElement> ElementsToTry()
{
  std::vector<RefinedElement> all = ElementsOf(3, Shapes(3));
  const std::vector<RefinedElement> six = ElementsOf(6, Shapes(6));
  all.insert(all.end(), six.begin(), six.end());
  return all;
}

}  // namespace

TEST(RefinedTriangle, ForcesAreTheProductWithASymmetricMatrix)
{
  for (const RefinedElement& e : ElementsToTry()) {
    const DenseRows K = e.Stiffness();
    const DenseRows byForces = e.StiffnessByForces();
    const double rounding = 1e-14 * FrobeniusNorm(K);
    for (std::size_t i = 0; i < K.size(); ++i) {
      for (std::size_t j = 0; j < K.size(); ++j) {
        ASSERT_NEAR(byForces[i][j], K[i][j], rounding);
        ASSERT_NEAR(byForces[i][j], byForces[j][i], rounding);
      }
    }
  }
}

TEST(RefinedTriangle, AFreeElementHasSixZeroEigenvalues)
{
  for (const RefinedElement& e : ElementsToTry())
    ExpectSixZeroEigenvalues(e.Stiffness());
}

TEST(RefinedTriangle, RigidMotionsNeedNoForces)
{
  for (const RefinedElement& e : ElementsToTry()) {
    const DenseRows K = e.Stiffness();
    const double norm = FrobeniusNorm(K);
    for (int k = 0; k < 6; ++k) {
      std::vector<double> motion(6, 0.0);
      motion[k] = 1.0;
      const std::vector<double> u = RigidMotionOf(e, motion);
      for (const double force : DenseProduct(K, u))
        EXPECT_NEAR(force / norm, 0.0, 1e-14 * FrobeniusNorm({u}));  // rounding
    }
  }
}

namespace {

// Displacements of a linear field in the plane: u = ux·x + uy·y, v = vx·x + vy·y, with its rotation
// at all nodes.
std::vector<double> LinearField(const RefinedElement& e, const std::array<double, 4>& g)
{
  std::vector<double> u;
  for (int i = 0; i < e.Nodes(); ++i)
    u.insert(u.end(), {g[0] * e.x[i] + g[1] * e.y[i], g[2] * e.x[i] + g[3] * e.y[i], 0.0, 0.0, 0.0,
                       (g[2] - g[1]) / 2});
  return u;
}

// Displacements of the curvatures w,xx = k[0], w,yy = k[1], w,xy = k[2] without shear.
std::vector<double> BentField(const RefinedElement& e, const std::array<double, 3>& k)
{
  std::vector<double> u;
  for (int i = 0; i < e.Nodes(); ++i) {
    const double x = e.x[i];
    const double y = e.y[i];
    u.insert(u.end(), {0.0, 0.0, (k[0] * x * x + k[1] * y * y) / 2 + k[2] * x * y,
                       k[1] * y + k[2] * x, -k[0] * x - k[2] * y, 0.0});
  }
  return u;
}

std::vector<double> Times(const double (&D)[3][3], const std::array<double, 3>& strain)
{
  std::vector<double> product;
  for (const auto& row : D)
    product.push_back(row[0] * strain[0] + row[1] * strain[1] + row[2] * strain[2]);
  return product;
}

int PointsOf(const RefinedElement& e)
{
  return e.Nodes() == 3 ? 1 : 3;
}

double EnergyOf(const RefinedElement& e, const std::vector<double>& u)
{
  const std::vector<double> forces = e.Forces(u);
  double work = 0.0;
  for (std::size_t i = 0; i < u.size(); ++i)
    work += forces[i] * u[i] / 2;
  return work;
}

// The area, also with curved edges.
double AreaOf(const RefinedElement& e)
{
  if (e.Nodes() == 3)
    return ((e.x[1] - e.x[0]) * (e.y[2] - e.y[0]) - (e.x[2] - e.x[0]) * (e.y[1] - e.y[0])) / 2;
  // Green's formula along the parabolas of the edges: chord, and two thirds of the arrow.
  double area = 0.0;
  for (int i = 0; i < 3; ++i) {
    const int j = (i + 1) % 3;
    const double cx = e.x[j] - e.x[i], cy = e.y[j] - e.y[i];
    const double mx = e.x[3 + i] - (e.x[i] + e.x[j]) / 2, my = e.y[3 + i] - (e.y[i] + e.y[j]) / 2;
    area += (e.x[i] * e.y[j] - e.x[j] * e.y[i]) / 2 + 2.0 / 3.0 * (mx * cy - my * cx);
  }
  return area;
}

}  // namespace

TEST(RefinedTriangle, ConstantStrainsAreExact)
{
  for (const RefinedElement& e : ElementsToTry()) {
    const std::vector<double> u = LinearField(e, {0.002, 0.003, -0.001, 0.004});
    const std::array<double, 3> strain = {0.002, 0.004, 0.002};
    std::vector<double> N = Times(e.section.Dm, strain);
    const double energy = (N[0] * strain[0] + N[1] * strain[1] + N[2] * strain[2]) / 2 * AreaOf(e);
    N.resize(8, 0.0);
    for (int point = 0; point < PointsOf(e); ++point)
      ExpectValues(e.Strengths(point, u), N, 1e-12);  // rounding
    EXPECT_NEAR(EnergyOf(e, u), energy, 1e-12 * energy);
  }
}

TEST(RefinedTriangle, ConstantCurvaturesAreExact)
{
  // Six nodes represent a quadratic deflection only with straight edges.
  for (const RefinedElement& e : ElementsToTry()) {
    if (e.Nodes() == 6 && std::fabs(e.x[3] * 2 - e.x[0] - e.x[1]) > 1e-9)
      continue;
    const std::array<double, 3> k = {0.01, -0.02, 0.015};
    const std::vector<double> u = BentField(e, k);
    const std::array<double, 3> curvature = {-k[0], -k[1], -2 * k[2]};
    const std::vector<double> M = Times(e.section.Db, curvature);
    const double energy =
        (M[0] * curvature[0] + M[1] * curvature[1] + M[2] * curvature[2]) / 2 * AreaOf(e);
    std::vector<double> expected = {0, 0, 0, M[0], M[1], M[2], 0, 0};
    // Rounding: shears come from a stiffness that is (h/t)² times as large.
    for (int point = 0; point < PointsOf(e); ++point)
      ExpectValues(e.Strengths(point, u), expected, 1e-9);
    EXPECT_NEAR(EnergyOf(e, u), energy, 1e-9 * energy);
  }
}

TEST(RefinedTriangle, DegenerateElementsAreRefused)
{
  const double x[] = {0, 1, 2, 0.5, 1.5, 1};
  const double y[] = {0, 1, 2, 0.5, 1.5, 1};
  const double shares[] = {1, 1, 1, 1, 1, 1};
  ThreeNodeShell three;
  three.SetSection(IsotropicExample());
  EXPECT_FALSE(three.Set(x, y, shares));
  SixNodeShell six;
  six.SetSection(IsotropicExample());
  EXPECT_FALSE(six.Set(x, y, shares));
}

// A middle node at a quarter of its edge makes the derivatives infinite at the end of the edge;
// beyond, the element is folded there.
TEST(RefinedTriangle, MiddleNodesMustNotBeNearAnEndOfTheirEdge)
{
  const double shares[] = {1, 1, 1, 1, 1, 1};
  SixNodeShell shell;
  shell.SetSection(IsotropicExample());
  for (const double middle : {0.2, 0.25, 0.26, 0.4, 0.6, 0.74, 0.75, 0.8}) {
    const double x[] = {0, 1, 0, middle, 0.5, 0};
    const double y[] = {0, 0, 1, 0, 0.5, 0.5};
    EXPECT_EQ(shell.Set(x, y, shares), middle > 0.25 && middle < 0.75) << middle;
  }
}

}  // namespace morlen
