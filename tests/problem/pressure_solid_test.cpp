// Equivalent nodal loads of distributed loads on tetrahedra.

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <numbers>
#include <string>
#include <vector>

#include "support/fatal.h"
#include "support/solid_model.h"

namespace morlen {

namespace {

const std::vector<Vector3> kCorners = {
    {0.1, 0.2, -0.1}, {2.0, 0.3, 0.2}, {0.4, 1.5, 0.1}, {0.2, 0.1, 1.8}};
// 6 V = e1 · (e2 × e3) with e1 = (1.9, 0.1, 0.3), e2 = (0.3, 1.3, 0.2), e3 = (0.1, -0.1, 1.9).
constexpr double kSixVolumes =
    1.9 * (1.3 * 1.9 + 0.02) - 0.1 * (0.57 - 0.02) + 0.3 * (-0.03 - 0.13);

const Vector3 kValues = {2.0, -3.0, 5.0};

std::string Record(const std::string& keyword, int face, const Vector3& v,
                   const std::string& items = "")
{
  return keyword + "\n1 " + std::to_string(face) + " " + std::to_string(v[0]) + " " +
         std::to_string(v[1]) + " " + std::to_string(v[2]) + " " + items + "\nend\n";
}

SolidModel Loaded(int nnode, const std::string& rest)
{
  SolidModel model = OneSolid(kCorners, nnode);
  model.rest = rest;
  return model;
}

// The outward area vector of a face.
Vector3 OuterArea(const std::vector<Vector3>& corners, int face)
{
  const Vector3& first = corners[face];
  const Vector3 area =
      0.5 * Cross(corners[(face + 1) % 4] - first, corners[(face + 2) % 4] - first);
  return Dot(area, corners[(face + 3) % 4] - first) > 0.0 ? -1.0 * area : area;
}

double Length(const Vector3& v)
{
  return std::sqrt(Dot(v, v));
}

// The load per area in global axes on a surface with this unit normal.
Vector3 OnSurface(const std::string& keyword, const Vector3& v, const Vector3& normal)
{
  if (keyword == "global_projected_pressure_loads")
    return std::fabs(Dot(normal, v)) / Length(v) * v;
  if (keyword != "local_pressure_loads")
    return v;
  const bool vertical = std::fabs(normal[0]) < 1.0 / 64 && std::fabs(normal[1]) < 1.0 / 64;
  Vector3 x = Cross(vertical ? Vector3{0, 1, 0} : Vector3{0, 0, 1}, normal);
  x = 1.0 / Length(x) * x;
  return v[0] * x + v[1] * Cross(normal, x) + v[2] * normal;
}

// A third of the total on each corner of a flat face (four nodes), or on each middle of its edges
// (ten nodes).
std::vector<Vector3> OnFace(int nnode, int face, const Vector3& total)
{
  std::vector<Vector3> forces(nnode);
  for (int i = 0; i < 3; ++i) {
    const int corner = (face + i) % 4;
    const int next = (face + (i + 1) % 3) % 4;
    forces[nnode == 4 ? corner : MiddleOf(corner, next)] = 1.0 / 3.0 * total;
  }
  return forces;
}

void ExpectForces(const SolidModel& model, const std::vector<Vector3>& expected)
{
  const std::vector<Vector3> forces = ElementLoads(model);
  ASSERT_EQ(forces.size(), expected.size());
  for (std::size_t i = 0; i < forces.size(); ++i) {
    for (int k = 0; k < 3; ++k)
      EXPECT_NEAR(forces[i][k], expected[i][k], 1e-12) << "node " << i + 1 << " axis " << k + 1;
  }
}

// A block whose faces bulge; with ten nodes their edges are curved.
SolidModel Bulged(int nnode)
{
  SolidModel model = SolidBlock({2, 2, 2}, {2.0, 2.0, 2.0}, nnode);
  return model.Map([](const Vector3& p) {
    const Vector3 d = p - Vector3{1, 1, 1};
    return (1.0 + 0.15 * Dot(d, d)) * d + Vector3{0.3 * d[1] * d[2], 0.0, 0.1 * d[0] * d[0]};
  });
}

}  // namespace

class PressureSolid : public testing::TestWithParam<int>
{
};

INSTANTIATE_TEST_SUITE_P(Nodes, PressureSolid, testing::Values(4, 10),
                         [](const auto& instance) { return std::to_string(instance.param); });

TEST_P(PressureSolid, LoadsOfEachTypeActOnEachFace)
{
  for (const char* keyword : {"local_pressure_loads", "global_pressure_loads",
                              "global_projected_pressure_loads", "face_loads"}) {
    for (int face = 0; face < 4; ++face) {
      SCOPED_TRACE(std::string(keyword) + " on face " + std::to_string(face));
      const Vector3 area = OuterArea(kCorners, face);
      const double size = Length(area);
      const Vector3 total = size * OnSurface(keyword, kValues, 1.0 / size * area);
      ExpectForces(Loaded(GetParam(), Record(keyword, face, kValues)),
                   OnFace(GetParam(), face, total));
    }
  }
}

// The faces 0 and 3 of the unit solid lie in the planes z = 0 and y = 0, face 2 in x = 0.
TEST_P(PressureSolid, LocalZIsOutwards)
{
  const struct
  {
    int face;
    Vector3 total;
  } cases[] = {{0, {0, 0, -3.5}}, {1, {3.5, 3.5, 3.5}}, {2, {-3.5, 0, 0}}, {3, {0, -3.5, 0}}};
  for (const auto& c : cases) {
    SolidModel model = UnitSolid(GetParam());
    model.rest = Record("local_pressure_loads", c.face, {0, 0, 7});
    ExpectForces(model, OnFace(GetParam(), c.face, c.total));
  }
}

// On horizontal faces local x is normal to the global Y axis, on others to Z.
TEST_P(PressureSolid, LocalXIsHorizontal)
{
  const double h = 3.5 / std::sqrt(2.0);
  const double slope = std::sqrt(3.0);
  const struct
  {
    int face;
    Vector3 total;
  } cases[] = {
      {0, {-3.5, 0, 0}}, {1, {-slope * h, slope * h, 0}}, {2, {0, -3.5, 0}}, {3, {3.5, 0, 0}}};
  for (const auto& c : cases) {
    SolidModel model = UnitSolid(GetParam());
    model.rest = Record("local_pressure_loads", c.face, {7, 0, 0});
    ExpectForces(model, OnFace(GetParam(), c.face, c.total));
  }
}

TEST_P(PressureSolid, ProjectedLoadInThePlaneOfAFaceIsZero)
{
  SolidModel model = UnitSolid(GetParam());
  model.rest = Record("global_projected_pressure_loads", 0, {3, 4, 0}) +
               Record("global_projected_pressure_loads", 0, {0, 0, 0});
  ExpectForces(model, OnFace(GetParam(), 0, {}));
}

TEST_P(PressureSolid, OverTheVolumeIsGlobalWhateverItsType)
{
  const double volume = kSixVolumes / 6.0;
  std::vector<Vector3> expected(GetParam());
  for (int i = 0; i < GetParam(); ++i) {
    const double share = GetParam() == 4 ? 0.25 : i < 4 ? -1.0 / 20 : 1.0 / 5;
    expected[i] = share * volume * kValues;
  }
  for (const char* keyword : {"local_pressure_loads", "global_pressure_loads",
                              "global_projected_pressure_loads", "face_loads"}) {
    const std::vector<Vector3> forces =
        ElementLoads(Loaded(GetParam(), Record(keyword, -1, kValues)));
    for (int i = 0; i < GetParam(); ++i) {
      for (int k = 0; k < 3; ++k)  // the coordinates of the Gauss points have seven digits
        EXPECT_NEAR(forces[i][k], expected[i][k], 1e-6 * volume) << keyword << i;
    }
  }
}

TEST_P(PressureSolid, WeightIsALoadOverTheVolume)
{
  SolidModel weight = OneSolid(kCorners, GetParam());
  weight.material = "E 1 nu 0.3 Weight 4";
  weight.settings = "GravityDirection 0 -3 4";
  ExpectForces(weight, ElementLoads(Loaded(GetParam(),
                                           Record("global_pressure_loads", -1, {0, -2.4, 3.2}))));
  weight.material = "E 1 nu 0.3 Weight 0";
  ExpectForces(weight, std::vector<Vector3>(GetParam()));
}

// The default gravity is along +z. Solids accept it with a 2d header too: they have three axes.
TEST_P(PressureSolid, WeightIsTheSameWithA2dHeader)
{
  SolidModel weight = OneSolid(kCorners, GetParam());
  weight.material = "E 1 nu 0.3 Weight 4";
  const std::vector<Vector3> forces = ElementLoads(weight);
  weight.header = "2d";
  ExpectForces(weight, forces);
  double total = 0.0;
  for (const Vector3& force : forces)
    total += force[2];
  EXPECT_NEAR(total, 4.0 * kSixVolumes / 6.0, 1e-6);
}

TEST_P(PressureSolid, WeightOfA2dHeaderKeepsThreeComponents)
{
  SolidModel weight = OneSolid(kCorners, GetParam());
  weight.material = "E 1 nu 0.3 Weight 4";
  weight.header = "2d";
  weight.settings = "GravityDirection 2 -3 6\n";  // of length 7
  Vector3 total = {};
  for (const Vector3& force : ElementLoads(weight))
    total = total + force;
  const Vector3 direction = {2.0 / 7, -3.0 / 7, 6.0 / 7};
  for (int k = 0; k < 3; ++k)
    EXPECT_NEAR(total[k], 4.0 * kSixVolumes / 6.0 * direction[k], 1e-6);
}

TEST_P(PressureSolid, RecordsOfA2dHeaderHaveThreeValuesAndAFace)
{
  SolidModel model = Loaded(GetParam(), Record("face_loads", 1, kValues));
  const std::vector<Vector3> forces = ElementLoads(model);
  model.header = "2d";
  ExpectForces(model, forces);
}

TEST_P(PressureSolid, SeveralLoadsAddUp)
{
  const std::string first = Record("face_loads", 1, kValues);
  const std::string second = Record("local_pressure_loads", 2, kValues);
  std::vector<Vector3> sum = ElementLoads(Loaded(GetParam(), first));
  const std::vector<Vector3> other = ElementLoads(Loaded(GetParam(), second));
  for (std::size_t i = 0; i < sum.size(); ++i)
    sum[i] = sum[i] + other[i];
  ExpectForces(Loaded(GetParam(), first + second), sum);
}

// A quarter turn about z: Euler angles rotate the axes of the record by minus the angle.
TEST_P(PressureSolid, EulerAnglesTurnTheValues)
{
  const std::string record = Record("face_loads", 1, {7, 0, 2}, "Euler1 1.5707963267948966");
  ExpectForces(Loaded(GetParam(), record),
               ElementLoads(Loaded(GetParam(), Record("face_loads", 1, {0, -7, 2}))));
}

// The factor is force/length²: 1000 for kN in N, and 1e6 for 1/mm² in 1/m².
TEST_P(PressureSolid, FaceLoadsConvertTheirUnits)
{
  SolidModel model = Loaded(GetParam(), Record("face_loads", 1, kValues, "units kN_mm"));
  model.settings =
      "units_names\nkN_mm kN mm GPa 1000 0.001\nN_m N m Pa 1 1\nend\n"
      "units_mesh m\nunits_mat_and_load N_m\nunits_res N_m\n";
  const Vector3 area = OuterArea(kCorners, 1);
  const std::vector<Vector3> expected = OnFace(GetParam(), 1, 1e9 * Length(area) * kValues);
  const std::vector<Vector3> forces = ElementLoads(model);
  for (std::size_t i = 0; i < forces.size(); ++i) {
    for (int k = 0; k < 3; ++k)
      EXPECT_NEAR(forces[i][k], expected[i][k], 1e-3);
  }
}

TEST_P(PressureSolid, OtherFacesAreRefused)
{
  for (const int face : {-2, 4, 10}) {
    for (const char* keyword : {"local_pressure_loads", "face_loads"}) {
      const SolidModel model = Loaded(GetParam(), Record(keyword, face, kValues));
      ExpectFatal([&] { ElementLoads(model); },
                  "error in PreassureLT::AddToLoadVectorFaceTriangle\n");
    }
  }
}

TEST_P(PressureSolid, ShortRecordsAreRefused)
{
  for (const char* record : {"1", "1 0", "1 0 1 2", "1 x 1 2 3"}) {
    const SolidModel model = Loaded(GetParam(), "face_loads\n" + std::string(record) + "\nend\n");
    ExpectFatal([&] { ReadProblemText(model.Text()); },
                "Not reading correctly preassure_loads. ElemNum=1\n");
  }
}

TEST_P(PressureSolid, TemperatureEndsTheRun)
{
  const SolidModel model = Loaded(GetParam(), "temperature_loads\n1 1e-5 20\nend\n");
  ReadProblemText(model.Text());  // accepted
  ExpectFatal([&] { ElementLoads(model); }, "temperature for 3D solids not implemented yet\n");
}

// Also with curved edges, since the rule integrates the resultant of a constant pressure exactly.
TEST_P(PressureSolid, AConstantPressureAroundABodyHasNoResultant)
{
  SolidModel model = Bulged(GetParam());
  model.LoadSides("local_pressure_loads", {0, 0, -3}, [](const Vector3&) { return true; });
  const std::vector<Vector3> forces = ElementLoads(model);
  const Resultant sum = ResultantOf(model, forces);
  double largest = 0.0;
  for (const Vector3& force : forces)
    largest = std::max(largest, Length(force));
  EXPECT_GT(largest, 0.5);
  EXPECT_LT(Length(sum.force), 1e-13);
}

// By the divergence theorem the moment is zero too. Flat faces only: on curved faces the rule does
// not integrate the moment exactly.
TEST(PressureOnSolids, AConstantPressureAroundABodyHasNoMoment)
{
  SolidModel flat = Bulged(4);
  flat.LoadSides("local_pressure_loads", {0, 0, -3}, [](const Vector3&) { return true; });
  EXPECT_LT(Length(ResultantOf(flat, ElementLoads(flat)).moment), 1e-12);
}

TEST(PressureOnSolids, AProjectedLoadActsOnTheProjectionOfACurvedFace)
{
  // Face 1 of the unit solid with the middles of its edges on the unit sphere: nearly an octant of
  // it, whose projection along z is a quarter of the unit circle.
  SolidModel model = UnitSolid(10);
  const double h = std::sqrt(0.5);
  model.nodes[model.elements[0][5] - 1] = {h, h, 0};
  model.nodes[model.elements[0][8] - 1] = {h, 0, h};
  model.nodes[model.elements[0][9] - 1] = {0, h, h};
  model.rest = Record("global_projected_pressure_loads", 1, {0, 0, -2});
  const Resultant sum = ResultantOf(model, ElementLoads(model));
  // The area between the parabolic edges: the triangle, and 2/3 of the rise times the chord.
  const double projection = 0.5 + 2.0 / 3.0 * (1.0 - h) * std::sqrt(2.0);
  EXPECT_NEAR(sum.force[2], -2.0 * projection, 1e-12);
  EXPECT_NEAR(projection, std::numbers::pi / 4.0, 0.01);
  EXPECT_NEAR(sum.force[0], 0.0, 1e-13);
}

TEST(PressureOnSolids, TinyProjectedLoadsAreProjectedToo)
{
  // Face 1 of the unit solid has the normal (1,1,1)/√3 and a projection of 1/2 along z.
  SolidModel model = UnitSolid(4);
  model.rest = "global_projected_pressure_loads\n1 1 0 0 -1e-20\nend\n";
  const Resultant sum = ResultantOf(model, ElementLoads(model));
  EXPECT_NEAR(sum.force[2], -0.5e-20, 1e-33);  // rounding
}

// Two corners of the face coincide.
TEST(PressureOnSolids, AFaceWithoutAreaGetsNoLoad)
{
  SolidModel model = UnitSolid(4);
  model.nodes[2] = model.nodes[1];
  model.rest = Record("local_pressure_loads", 0, {1, 2, 3});
  ExpectForces(model, std::vector<Vector3>(4));
}

}  // namespace morlen
