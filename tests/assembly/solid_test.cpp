// One solid tetrahedron of four or ten nodes, and the assembly of its blocks.

#include "assembly/solid.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <memory>
#include <span>
#include <string>
#include <utility>
#include <vector>

#include "model/elem.h"
#include "model/material.h"
#include "model/mesh.h"
#include "model/node.h"
#include "numeric/plex_range.h"
#include "solvers/bsolver.h"
#include "support/dense.h"
#include "support/fatal.h"
#include "support/solid_model.h"

namespace morlen {

namespace {

using Doubles = std::vector<double>;

constexpr double kE = 1000.0;
constexpr double kNu = 0.25;
constexpr std::array<double, 9> kGradient = {0.010, 0.004, -0.006, 0.002, -0.008,
                                             0.003, 0.005, 0.001,  0.007};
// x, y, z, xy, xz, yz of that gradient.
constexpr Tensor kStrain = {0.010, -0.008, 0.007, 0.006, -0.001, 0.004};

const std::vector<Vector3> kCorners = {
    {0.1, 0.2, -0.1}, {2.0, 0.3, 0.2}, {0.4, 1.5, 0.1}, {0.2, 0.1, 1.8}};

// The element of a model of one element.
class OneElement
{
public:
  explicit OneElement(const SolidModel& model) : project(ReadProject(model.Text()))
  {
    const Elem& elem = *project->GiveElem(1);
    solid.Evaluate(elem, project->problem.RequireMaterial(elem));
    nnode = elem.Nnode();
  }

  // The forces that the nodes exert on the element.
  Doubles Forces(const Doubles& u) const
  {
    Doubles forces(u.size(), 0.0);
    Matriu K(3, 3);
    for (int i = 0; i < nnode; ++i) {
      for (int j = 0; j < nnode; ++j) {
        solid.CalcStiffness(i, j, K.Data());
        for (int a = 0; a < 3; ++a) {
          for (int b = 0; b < 3; ++b)
            forces[3 * i + a] += K(a + 1, b + 1) * u[3 * j + b];
        }
      }
    }
    return forces;
  }

  Doubles Stresses(const Doubles& u) const
  {
    ReaVecV res(6 * solid.PointCount());
    res = 0.0;
    solid.AddStrengths(u.data(), res, 0);
    return {res.begin(), res.end()};
  }

  const SolidEvaluator& Solid() const { return solid; }

private:
  std::unique_ptr<Project> project;
  SolidEvaluator solid;
  int nnode = 0;
};

template <class Field>
Doubles AtNodes(const SolidModel& model, Field field)
{
  Doubles u;
  for (const Vector3& node : model.nodes) {
    const Vector3 value = field(node);
    u.insert(u.end(), value.begin(), value.end());
  }
  return u;
}

Doubles LinearField(const SolidModel& model)
{
  return AtNodes(model, [](const Vector3& x) { return GradientTimes(kGradient, x); });
}

// The nodal forces of a constant stress: each corner of a face gets a third of the traction, or
// with ten nodes each mid-side node of the face.
Doubles ForcesOfStress(const SolidModel& model, const Tensor& s)
{
  Doubles forces(3 * model.nodes.size(), 0.0);
  for (const SolidSide& side : model.Sides()) {
    const Vector3& first = model.nodes[side.corners[0] - 1];
    Vector3 area = 0.5 * Cross(model.nodes[side.corners[1] - 1] - first,
                               model.nodes[side.corners[2] - 1] - first);
    const Vector3& opposite = model.nodes[model.elements[0][(side.face + 3) % 4] - 1];
    if (Dot(area, opposite - first) > 0.0)
      area = -1.0 * area;
    const Vector3 traction = {s[0] * area[0] + s[3] * area[1] + s[4] * area[2],
                              s[3] * area[0] + s[1] * area[1] + s[5] * area[2],
                              s[4] * area[0] + s[5] * area[1] + s[2] * area[2]};
    for (int i = 0; i < 3; ++i) {
      const int place = model.nnode == 4
                            ? (side.face + i) % 4
                            : MiddleOf((side.face + i) % 4, (side.face + (i + 1) % 3) % 4);
      for (int k = 0; k < 3; ++k)
        forces[3 * place + k] += traction[k] / 3.0;
    }
  }
  return forces;
}

SolidModel Turned(int nnode)
{
  return OneSolid({{0, 0, 0}, {0, 1, 0}, {1, 0, 0}, {0, 0, 1}}, nnode);
}

SolidModel Flat(int nnode)
{
  return OneSolid({{0, 0, 0}, {1, 0, 0}, {0, 1, 0}, {1, 1, 0}}, nnode);
}

// A matrix that only records the places at which blocks are added.
class BlockLog : public BSolver
{
public:
  explicit BlockLog(std::vector<std::pair<int, int>>& log) : places(log) {}

  int GiveSize() const override { return 0; }
  void EnterMaxDiff(int, int, int) override {}
  void Create(int) override {}
  double& operator()(int, int) override { return unused; }
  void SetToZero() override {}
  void AddSubMatriu(int row, int col, const Matriu& m) override
  {
    EXPECT_EQ(m.Rows(), 3);
    EXPECT_EQ(m.Cols(), 3);
    places.emplace_back(row, col);
  }
  int Solver(ReaVecV&, std::FILE*) override { return 0; }
  int ApplyConstraint(int eq, std::span<const double>, std::span<ReaVecV* const>) override
  {
    return eq;
  }
  using BSolver::ApplyConstraint;
  double ReturnRowPerVector(int, const ReaVecV&) const override { return 0.0; }
  void PrintTo(std::ofstream&) const override {}
  void CopyFromYouToMat(Matriu&) const override {}
  void WriteForKiv(std::ofstream&, std::ofstream&) const override {}
  void PrintInfoMem(std::FILE*) const override {}

private:
  std::vector<std::pair<int, int>>& places;
  double unused = 0.0;
};

}  // namespace

class Solid : public testing::TestWithParam<int>
{
};

INSTANTIATE_TEST_SUITE_P(Nodes, Solid, testing::Values(4, 10),
                         [](const auto& instance) { return std::to_string(instance.param); });

// The gradients of the unit tetrahedron are (-1,-1,-1) and the three axes, its volume is 1/6:
// K22 = (D11, D44, D44)/6 with D11 = 1200 and D44 = 400 for E = 1000 and nu = 0.25.
TEST(SolidBlocks, StiffnessOfTheUnitSolid)
{
  const OneElement element(UnitSolid(4));
  Matriu K(3, 3);
  element.Solid().CalcStiffness(1, 1, K.Data());
  const Doubles diagonal = {200, 0, 0, 0, 400.0 / 6, 0, 0, 0, 400.0 / 6};
  for (int i = 0; i < 9; ++i)
    EXPECT_NEAR(Entries(K)[i], diagonal[i], 1e-12);
  // Between the second and third corner: rows x, y, z of the second; D12 = 400.
  element.Solid().CalcStiffness(1, 2, K.Data());
  const Doubles coupling = {0, 400.0 / 6, 0, 400.0 / 6, 0, 0, 0, 0, 0};
  for (int i = 0; i < 9; ++i)
    EXPECT_NEAR(Entries(K)[i], coupling[i], 1e-12);
}

TEST_P(Solid, MovesAsARigidBodyWithoutForce)
{
  SolidModel model = OneSolid(kCorners, GetParam());
  if (GetParam() == 10)
    model.nodes[6][1] += 0.05;  // a curved edge
  const OneElement element(model);
  const Vector3 turn = {0.3, -0.2, 0.5};
  const Doubles u = AtNodes(model, [&](const Vector3& x) {
    return Vector3{1.0, -2.0, 0.5} + Cross(turn, x);
  });
  for (const double force : element.Forces(u))
    EXPECT_NEAR(force, 0.0, 1e-10);
  for (const double stress : element.Stresses(u))
    EXPECT_NEAR(stress, 0.0, 1e-10);
}

TEST_P(Solid, StiffnessIsSymmetric)
{
  const OneElement element(OneSolid(kCorners, GetParam()));
  Matriu K(3, 3), Kt(3, 3);
  for (int i = 0; i < GetParam(); ++i) {
    for (int j = 0; j <= i; ++j) {
      element.Solid().CalcStiffness(i, j, K.Data());
      element.Solid().CalcStiffness(j, i, Kt.Data());
      for (int a = 1; a <= 3; ++a) {
        for (int b = 1; b <= 3; ++b)
          EXPECT_NEAR(K(a, b), Kt(b, a), 1e-10);
      }
    }
  }
}

TEST_P(Solid, ConstantStressNeedsItsTractions)
{
  for (const SolidModel& model : {UnitSolid(GetParam()), OneSolid(kCorners, GetParam())}) {
    const OneElement element(model);
    const Tensor stress = StressOf(kE, kNu, kStrain);
    const Doubles u = LinearField(model);
    ExpectValues(element.Forces(u), ForcesOfStress(model, stress), 1e-12);
    const Doubles stresses = element.Stresses(u);
    ASSERT_EQ(stresses.size(), GetParam() == 4 ? 6u : 24u);
    for (std::size_t i = 0; i < stresses.size(); ++i)
      EXPECT_NEAR(stresses[i], stress[i % 6], 1e-11) << i;
  }
}

// The energy of a linear field, and its forces on the corners including the shares of the mid-side
// nodes.
TEST(SolidBlocks, TenNodesWithStraightEdgesAreTheFourForLinearFields)
{
  const SolidModel four = OneSolid(kCorners, 4);
  const SolidModel ten = OneSolid(kCorners, 10);
  const Doubles forces4 = OneElement(four).Forces(LinearField(four));
  Doubles forces10 = OneElement(ten).Forces(LinearField(ten));
  for (int a = 0; a < 4; ++a) {
    for (int b = a + 1; b < 4; ++b) {
      for (int k = 0; k < 3; ++k) {
        const double half = forces10[3 * MiddleOf(a, b) + k] / 2.0;
        forces10[3 * a + k] += half;
        forces10[3 * b + k] += half;
      }
    }
  }
  forces10.resize(12);
  ExpectValues(forces10, forces4, 1e-12);
}

// Stress σx = 240 x for ux = x²/10: nu = 0.25 gives D11 = 1200.
TEST(SolidBlocks, StressesOfTenNodesAreLinear)
{
  const SolidModel model = UnitSolid(10);
  const Doubles stresses = OneElement(model).Stresses(AtNodes(model, [](const Vector3& x) {
    return Vector3{0.1 * x[0] * x[0], 0, 0};
  }));
  constexpr double xi[] = {0.5854102, 0.1381966, 0.1381966, 0.1381966};
  for (int g = 0; g < 4; ++g)
    EXPECT_NEAR(stresses[6 * g], 240.0 * xi[g], 1e-10) << g;
}

TEST(SolidBlocks, FaultyShapesAreRefused)
{
  SolidModel folded = UnitSolid(10);
  folded.nodes[4][0] = 1.4;  // the middle of an edge beyond its end
  const struct
  {
    SolidModel model;
    const char* message;
  } cases[] = {
      {Turned(4), "error: element 1 has jacobian <=0\n"},
      {Flat(4), "error: element 1 has jacobian <=0\n"},
      {Turned(10), "error: element 1 has jacobian 0\n"},
      {Flat(10), "error: element 1 has jacobian 0\n"},
      {folded, "error: element 1 has jacobian 0\n"},
  };
  for (const auto& c : cases)
    ExpectFatal([&] { OneElement element(c.model); }, c.message);
}

TEST_P(Solid, OfAnySizeIsAccepted)
{
  for (const double size : {1e-12, 1e12})
    OneElement element(UnitSolid(GetParam()).Map([size](const Vector3& x) { return size * x; }));
}

// In any unit, the corners are in a plane up to the rounding of their coordinates.
TEST_P(Solid, FlatButForRoundingIsRefused)
{
  for (const double size : {1e-9, 1.0, 1e9}) {
    for (const double height : {1e-16, 3e-16}) {
      const SolidModel flat = UnitSolid(GetParam()).Map([=](const Vector3& x) {
        return Vector3{size * (x[0] + 0.3 * x[2]), size * (x[1] + 0.3 * x[2]),
                       size * height * x[2]};
      });
      EXPECT_NE(FatalCaught([&] { OneElement refused(flat); }), "(the run went on)");
    }
  }
}

TEST_P(Solid, MaterialsThatDoNotFitAreRefused)
{
  static const struct
  {
    const char* material;
    const char* message;
  } cases[] = {
      {"nu 0.3", "error in element 1 E is 0\n"},
      {"E 1 nu 1", "error in element 1 nu is 1\n"},
      {"E 1 nu 0.5", "error in element 1 nu is 0.5\n"},
      {"E 1 nu -1", "error in element 1 nu is -1\n"},
      {"E 1 nu 3", "error in element 1 nu must be above -1 and below 0.5\n"},
      {"E 1 nu -3", "error in element 1 nu must be above -1 and below 0.5\n"},
  };
  for (const auto& c : cases) {
    SolidModel model = UnitSolid(GetParam());
    model.material = c.material;
    ExpectFatal([&] { OneElement element(model); }, c.message);
  }
  SolidModel model = UnitSolid(GetParam());
  std::string text = model.Text();
  text.replace(text.find("materials\n1"), 11, "materials\n2");
  ExpectFatal([&] { Solved solved(text); }, "error: Material in element: 1 doesn't exist\n");
}

TEST_P(Solid, EveryBlockGoesIntoTheMatrixOnce)
{
  SolidModel model = OneSolid(kCorners, GetParam());
  // With other numbers, the first node of the element is the last of the file.
  const int last = static_cast<int>(model.nodes.size());
  for (int& node : model.elements[0])
    node = last + 1 - node;
  std::reverse(model.nodes.begin(), model.nodes.end());
  const auto project = ReadProject(model.Text());
  std::vector<std::pair<int, int>> places;
  BlockLog log(places);
  project->AddKToGlobalMatrixTetras(project->problem.meshes.front().get(), 1, log);
  std::vector<std::pair<int, int>> expected;
  for (int row = 0; row < last; ++row) {
    for (int column = row; column < last; ++column)
      expected.emplace_back(3 * row + 1, 3 * column + 1);
  }
  std::sort(places.begin(), places.end());
  EXPECT_EQ(places, expected);
}

}  // namespace morlen
