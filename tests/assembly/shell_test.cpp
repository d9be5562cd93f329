#include "assembly/shell.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <string>
#include <vector>

#include "assembly/element_products.h"
#include "model/elem.h"
#include "model/shape_functions.h"
#include "numeric/reavecv.h"
#include "support/dense.h"
#include "support/fatal.h"
#include "support/shell_model.h"

namespace morlen {

namespace {

// The numbers of a node with these derivatives and this value of the shape function.
void ExpectNumbers(const NodeNumbers& B, double Nx, double Ny, double N)
{
  ExpectValues({B.begin(), B.end()}, {Nx, Ny, N}, 1e-13);
}

constexpr TrianglePoint kPlace = {0.2, 0.3, 0.0};

// One orthotropic triangle of three or six nodes, oblique in space.
ShellModel OneTriangle(int nnode)
{
  ShellModel model;
  model.nodes = {{0.5, -0.25, 1.0}, {3.0, 0.5, 1.75}, {1.0, 2.5, 0.25}};
  model.triangles = {{1, 2, 3}};
  model.material = "Ex=2000 Ey=1000 nuXY=0.125 nuYX=0.25 Gxy=300 Gxz=200 Gyz=250 t=0.5";
  return nnode == 6 ? WithMidSideNodes(model) : model;
}

struct OneElement
{
  explicit OneElement(const ShellModel& model) : project(ReadProject(model.Text()))
  {
    shell.Evaluate(Element(), project->problem.RequireMaterial(Element()));
  }

  const Elem& Element() const { return *project->GiveElem(1); }
  int Nnode() const { return Element().Nnode(); }

  std::array<Vector3, 3> Axes() const
  {
    std::array<Vector3, 3> axes;
    for (int a = 0; a < 3; ++a) {
      for (int k = 0; k < 3; ++k)
        axes[a][k] = shell.Frame()(k + 1, a + 1);
    }
    return axes;
  }

  // The stiffness of the element in its own axes, six rows a node.
  std::vector<std::vector<double>> Stiffness()
  {
    const int n = 6 * Nnode();
    std::vector<std::vector<double>> all(n, std::vector<double>(n));
    Matriu K(6, 6);
    for (int i = 0; i < Nnode(); ++i) {
      for (int j = 0; j < Nnode(); ++j) {
        shell.CalcStiffness(i, j, K);
        for (int r = 0; r < 6; ++r) {
          for (int c = 0; c < 6; ++c)
            all[6 * i + r][6 * j + c] = K(r + 1, c + 1);
        }
      }
    }
    return all;
  }

  std::vector<double> Forces(const std::vector<double>& local)
  {
    ReaVecV res;
    res.resize(8 * shell.PointCount(), 0.0);
    shell.AddStrengths(local.data(), res, 0);
    return {res.begin(), res.end()};
  }

  std::unique_ptr<Project> project;
  ShellEvaluator shell;
};

// Displacements of all nodes in local axes. field returns six components at a local place.
template <class Field>
std::vector<double> LocalField(const OneElement& one, Field field)
{
  double x[6], y[6];
  CalcLocalCoordinates(one.Element(), one.shell.Frame(), x, y);
  std::vector<double> local;
  for (int i = 0; i < one.Nnode(); ++i) {
    const std::array<double, 6> u = field(x[i], y[i]);
    local.insert(local.end(), u.begin(), u.end());
  }
  return local;
}

}  // namespace

TEST(ShellBlocks, OfTheThreeNodeElementUseTheFunctionAtThePoint)
{
  // Corners (0,0), (4,0), (0,2), centroid (4/3, 2/3).
  const double a[] = {8, 0, 0};
  const double b[] = {-2, 2, 0};
  const double c[] = {-4, 0, 4};
  const double slopes[][2] = {{-0.25, -0.5}, {0.25, 0}, {0, 0.5}};
  for (int i = 0; i < 3; ++i) {
    NodeNumbers B;
    ConstructB(i, a, b, c, 8.0, 4.0 / 3.0, 2.0 / 3.0, B);
    ExpectNumbers(B, slopes[i][0], slopes[i][1], 1.0 / 3.0);
  }
}

TEST(ShellBlocks, OfTheSixNodeElementUseTheDerivativesByXAndY)
{
  // Corners (0,0), (4,0), (0,2): xi = x/4, eta = y/2.
  const double x[] = {0, 4, 0, 2, 2, 0};
  const double y[] = {0, 0, 2, 0, 1, 1};
  const OneElement one(OneTriangle(6));
  std::array<NodeNumbers, 6> B;
  EXPECT_NEAR(ConstructB6nodesAndJ(one.Element(), x, y, FunctionsAt(kPlace), B), 8.0, 1e-13);
  for (int node = 1; node <= 6; ++node)
    ExpectNumbers(B[node - 1], GiveDerN6nod(node, 0.2, 0.3, 1) / 4.0,
                  GiveDerN6nod(node, 0.2, 0.3, 2) / 2.0, GiveN6nod(node, 0.2, 0.3));
}

TEST(ShellBlocks, RefuseAJacobianThatIsNotPositive)
{
  const OneElement one(OneTriangle(6));
  const double x[] = {0, 4, 0, 2, 2, 0};
  const double y[] = {0, 0, 2, 0, 1, 1};
  const double zero[6] = {};
  std::array<NodeNumbers, 6> B;
  const SixNodeFunctions at = FunctionsAt(kPlace);
  const std::string message = "error: element 1 has jacobian 0\n";
  ExpectFatal([&] { ConstructB6nodesAndJ(one.Element(), x, zero, at, B); }, message);
  ExpectFatal([&] { ConstructB6nodesAndJ(one.Element(), y, x, at, B); }, message);
}

TEST(Shell, RefusesADegenerateTriangle)
{
  ShellModel model = OneTriangle(3);
  model.nodes[2] = model.nodes[0];
  ExpectFatal([&] { OneElement{model}; }, "error: element 1 has jacobian <=0\n");
  // In any unit, the corners are on a line up to the rounding of their coordinates.
  for (const double unit : {1e-9, 1.0, 1e9}) {
    model.nodes = {{0, 0, 0}, {0.1 * unit, 0.3 * unit, 0}, {0.7 * unit, 2.1 * unit, 0}};
    ExpectFatal([&] { OneElement{model}; }, "error: element 1 has jacobian <=0\n");
  }
}

TEST(Shell, OfAnySizeIsAccepted)
{
  for (const int nnode : {3, 6}) {
    ShellModel model = OneTriangle(nnode);
    for (Vector3& node : model.nodes)
      node = 1e-12 * node;
    const OneElement one(model);
  }
}

TEST(Shell, RefusesASixNodeTriangleFoldedOntoItself)
{
  ShellModel model = OneTriangle(6);
  model.nodes[4] = model.nodes[0];  // the middle of the edge 2-3 at the corner 1
  ExpectFatal([&] { OneElement{model}; }, "error: element 1 has jacobian 0\n");
}

TEST(Shell, ChecksItsMaterial)
{
  ShellModel model = OneTriangle(3);
  model.material = "E=1 G=1";
  ExpectFatal([&] { OneElement{model}; }, "error in element 1 Shell thickness is 0\n");
  model.material = "E=1 nu=1 G=1 t=1";
  ExpectFatal([&] { OneElement{model}; }, "error in element 1 nuXY is 1\n");
  model.material = "E=1 nu=3 G=1 t=1";
  ExpectFatal([&] { OneElement{model}; },
              "error in element 1 nu must be above -1 and at most 0.5\n");
  model.material = "Ex=4 Ey=1 nuXY=0.6 nuYX=2.4 G=1 t=1";
  ExpectFatal([&] { OneElement{model}; }, "error in element 1 nuXY*nuYX must be below 1\n");
  model = OneTriangle(3);
  model.material += " Ey=3000";
  ExpectFatal([&] { OneElement{model}; }, "error in element 1 Ex*nuXY must be equal to Ey*nuYX\n");
}

TEST(Shell, NeedsAMaterial)
{
  for (const char* settings : {"", "ConvertTo6Nodes"}) {
    ShellModel model = OneTriangle(3);
    model.settings = settings;
    std::string text = model.Text();
    text.replace(text.find("1 2 3 1\n"), 8, "1 2 3 7\n");
    ExpectFatal([&] { Solved{text}; }, "error: Material in element: 1 doesn't exist\n");
  }
}

TEST(Shell, StiffnessIsSymmetricAndResistsNoRigidMotion)
{
  for (const int nnode : {3, 6}) {
    OneElement one(OneTriangle(nnode));
    const auto K = one.Stiffness();
    double largest = 0.0;
    for (std::size_t i = 0; i < K.size(); ++i) {
      for (std::size_t j = 0; j < K.size(); ++j) {
        EXPECT_NEAR(K[i][j], K[j][i], 1e-10);
        largest = std::max(largest, std::fabs(K[i][j]));
      }
    }
    for (int motion = 0; motion < 6; ++motion) {
      // Translations, and rotations about the axes through the first node.
      const auto local = LocalField(one, [&](double x, double y) {
        const Vector3 r = {motion == 3 ? 1.0 : 0.0, motion == 4 ? 1.0 : 0.0,
                           motion == 5 ? 1.0 : 0.0};
        const Vector3 u = Cross(r, {x, y, 0.0});
        return std::array<double, 6>{
            u[0] + (motion == 0), u[1] + (motion == 1), u[2] + (motion == 2), r[0], r[1], r[2]};
      });
      for (const double force : one.Forces(local))
        EXPECT_NEAR(force, 0.0, 1e-12 * largest) << "motion " << motion;
      for (const auto& row : K) {
        double sum = 0.0;
        for (std::size_t j = 0; j < row.size(); ++j)
          sum += row[j] * local[j];
        EXPECT_NEAR(sum, 0.0, 1e-12 * largest) << "motion " << motion;
      }
    }
  }
}

// A state in which all eight forces are constant: N by stretching, M by curvatures (quadratic w,
// six nodes only), Q by a slope without rotation.
TEST(Shell, ForcesAreTheMaterialTimesTheStrains)
{
  // t = 0.5, 1 - nuXY nuYX = 1 - 1/32.
  const double f = 0.5 / (1.0 - 1.0 / 32.0);
  const double D[3][3] = {{2000 * f, 250 * f, 0}, {250 * f, 1000 * f, 0}, {0, 0, 150}};
  const double shears[] = {5.0 / 6.0 * 0.5 * 200, 5.0 / 6.0 * 0.5 * 250};
  const double strain[] = {0.001, -0.002, 0.003};
  const double kappa[] = {0.01, 0.02, -0.03};  // -w,xx, -w,yy, -2 w,xy
  const double gamma[] = {0.004, -0.005};
  std::vector<double> expected(8);
  for (int i = 0; i < 3; ++i) {
    for (int j = 0; j < 3; ++j) {
      expected[i] += D[i][j] * strain[j];
      expected[i + 3] += D[i][j] * kappa[j] * 0.25 / 12.0;
    }
  }
  for (int i = 0; i < 2; ++i)
    expected[i + 6] = shears[i] * gamma[i];

  OneElement six(OneTriangle(6));
  const auto field = [&](double x, double y) {
    const double wx = -kappa[0] * x - kappa[2] / 2 * y;
    const double wy = -kappa[1] * y - kappa[2] / 2 * x;
    const double w = (wx * x + wy * y) / 2 + gamma[0] * x + gamma[1] * y;
    return std::array<double, 6>{
        strain[0] * x + strain[2] * y, strain[1] * y, w, wy, -wx, 0.7 /* the drilling: free */};
  };
  const std::vector<double> forces = six.Forces(LocalField(six, field));
  ASSERT_EQ(forces.size(), 24U);
  for (int g = 0; g < 3; ++g)
    ExpectValues({forces.begin() + 8 * g, forces.begin() + 8 * g + 8}, expected, 1e-12);
}

TEST(Shell, OfThreeNodesUsesTheRotationsAtTheCentroid)
{
  OneElement three(OneTriangle(3));
  // Slopes wx, wy at the corners only: shear is that of w less their mean, 0 here.
  const auto forces = three.Forces(LocalField(
      three, [](double, double) { return std::array<double, 6>{0, 0, 0, 0.02, -0.01, 0}; }));
  // r_x = 0.02 is the slope θb, r_y = -0.01 minus the slope θa: γ = -θ.
  ExpectValues(forces, {0, 0, 0, 0, 0, 0, -0.01 * 5 / 6 * 100, -0.02 * 5 / 6 * 125}, 1e-12);
}

TEST(Shell, EnergyOfTheStiffnessIsThatOfTheForces)
{
  for (const int nnode : {3, 6}) {
    OneElement one(OneTriangle(nnode));
    double a = 0.1;
    const auto local = LocalField(one, [&](double x, double y) {
      a = std::fmod(a * 7.3 + 0.37, 1.0);
      return std::array<double, 6>{a, x * a, y - a, a * a, x - y * a, 0.0};
    });
    const auto K = one.Stiffness();
    double energy = 0.0;
    for (std::size_t i = 0; i < K.size(); ++i) {
      for (std::size_t j = 0; j < K.size(); ++j)
        energy += local[i] * K[i][j] * local[j];
    }
    const std::vector<double> forces = one.Forces(local);
    const double f = 0.5 / (1.0 - 1.0 / 32.0);
    double fromForces = 0.0;
    for (int g = 0; g < one.shell.PointCount(); ++g) {
      const double* n = forces.data() + 8 * g;
      double density = 0.0;
      for (const int first : {0, 3}) {
        // The inverse of [[2000, 250], [250, 1000]].
        const double bend = first == 3 ? 12.0 / 0.25 : 1.0;
        const double d = (2000.0 * 1000.0 - 250.0 * 250.0) * f;
        density += bend *
                   (n[first] * (1000 * n[first] - 250 * n[first + 1]) +
                    n[first + 1] * (2000 * n[first + 1] - 250 * n[first])) /
                   d;
        density += bend * n[first + 2] * n[first + 2] / 150.0;
      }
      density += n[6] * n[6] / (5.0 / 6.0 * 100) + n[7] * n[7] / (5.0 / 6.0 * 125);
      fromForces += density * one.shell.Area() / one.shell.PointCount();
    }
    EXPECT_NEAR(energy, fromForces, 1e-11 * energy);
  }
}

}  // namespace morlen
