#include "common/model_data.h"

#include <gtest/gtest.h>

#include "support/fatal.h"
#include "support/run.h"

namespace morlen {

using model::Kind;
using model::Model;

namespace {

Model Read(std::string_view problem)
{
  const TemporaryFolder folder;
  folder.Write("m.dat", problem);
  return model::ReadModel(folder.Path() / "m.dat");
}

constexpr const char* kMixed = R"(problem type: 3d
units_names
  kN-m  kN m  kPa  1000 1
  N-mm  N  mm MPa  1    0.001
end units_names
units_mesh mm
units_mat_and_load kN-m
units_res kN-m
NumOfDivisions 4
ConvertTo6Nodes
mesh dimension = 3 elemtype Triangle nnode = 3
coordinates
  1 0 0 0
  2 2000 0 0
  3 0 3000 0
  4 0 0 1000
end coordinates
elements
  10 1 2 3 5
end elements
mesh dimension = 3 elemtype Linear nnode = 2
coordinates
end coordinates
elements
  7 1 4 2
  8 1 2 2 A=0.5
end elements
materials
  2 E=2e8 G=8e7 widthY=0.1 widthZ=0.2
  5 E=3e7 nu=0.2 t=0.15 Weight=25
end materials
constraints
  3 111002 0 0 -0.01 0 0 7 Euler1 0.5
end constraints
nodal_point_loads
  4 1 2 3 4 5 6 units = N-mm
end nodal_point_loads
global_pressure_loads
  10 0 0 -2
  7 1 2 3
end global_pressure_loads
temperature_loads
  7 1e-5 30
end temperature_loads
elem_rotules
  8 10
end elem_rotules
)";

}  // namespace

TEST(ModelData, RefersToNodesAndElementsByPosition)
{
  const Model m = Read(kMixed);
  ASSERT_EQ(m.nodes.size(), 4u);
  EXPECT_EQ(m.nodes[2].number, 3);
  EXPECT_EQ(m.nodes[2].x, (Vec3{0, 3, 0}));
  ASSERT_EQ(m.elements.size(), 3u);
  const model::Element& shell = m.elements[0];
  EXPECT_EQ(shell.number, 10);
  EXPECT_EQ(shell.kind, Kind::Shell);
  EXPECT_EQ(shell.nodeCount, 3);
  EXPECT_EQ(shell.nodes[1], 1);
  const model::Element& column = m.elements[1];
  EXPECT_EQ(column.number, 7);
  EXPECT_EQ(column.mesh, 1);
  EXPECT_EQ(column.nodes[1], 3);
  EXPECT_EQ(column.axes, (std::array<Vec3, 3>{{{0, 0, 1}, {1, 0, 0}, {0, 1, 0}}}));
  EXPECT_EQ(column.hingeCode, 11);
  EXPECT_EQ(m.elements[2].hingeCode, 10);
}

TEST(ModelData, NumbersTheResultPointsOfEachKindInSequence)
{
  const Model m = Read(kMixed);
  EXPECT_EQ(m.beamPoints, 10);
  EXPECT_EQ(m.shellPoints, 3);
  EXPECT_EQ(m.elements[0].points, 3);
  EXPECT_EQ(m.elements[2].firstPoint, 5);
  EXPECT_EQ(m.elements[2].points, 5);
}

TEST(ModelData, KnowsWhatConvertsTriangles)
{
  const auto points = [](const std::string& setting) {
    std::string text = kMixed;
    const std::string_view conversion = "ConvertTo6Nodes";
    text.replace(text.find(conversion), conversion.size(), setting);
    return Read(text).shellPoints;
  };
  EXPECT_EQ(points("Solver Double"), 3);
  EXPECT_EQ(points("Solver SkyLine"), 1);
}

TEST(ModelData, IncludesTheMaterialsOfSingleElements)
{
  const Model m = Read(kMixed);
  ASSERT_EQ(m.materials.size(), 3u);
  EXPECT_EQ(m.materials[0].number, 2);
  EXPECT_NEAR(m.materials[0].A, 0.02, 1e-15);
  EXPECT_EQ(m.materials[m.elements[0].material].weight, 25.0);
  EXPECT_EQ(m.materials[m.elements[2].material].number, 0);
  EXPECT_EQ(m.materials[m.elements[2].material].A, 0.5);
  EXPECT_EQ(m.materials[m.elements[2].material].E1, 2e8);
}

TEST(ModelData, HasSupportsAndLoadsInTheUnitsOfTheResults)
{
  const Model m = Read(kMixed);
  ASSERT_EQ(m.supports.size(), 1u);
  EXPECT_EQ(m.supports[0].node, 2);
  EXPECT_EQ(m.supports[0].flags, (std::array<int, 6>{1, 1, 1, 0, 0, 2}));
  EXPECT_EQ(m.supports[0].values[2], -0.01);
  EXPECT_EQ(m.supports[0].values[5], 7.0);
  EXPECT_TRUE(m.supports[0].ownAxes);
  EXPECT_EQ(m.supports[0].euler[0], 0.5);
  ASSERT_EQ(m.nodalLoads.size(), 1u);
  EXPECT_EQ(m.nodalLoads[0].node, 3);
  EXPECT_NEAR(m.nodalLoads[0].values[1], 0.002, 1e-15);
  EXPECT_NEAR(m.nodalLoads[0].values[4], 5e-6, 1e-15);
}

TEST(ModelData, HasElementLoadsWithTheirKeywords)
{
  const Model m = Read(kMixed);
  ASSERT_EQ(m.elementLoads.size(), 3u);
  EXPECT_EQ(m.elementLoads[0].element, 1);
  EXPECT_STREQ(m.elementLoads[0].kind, "global_pressure_loads");
  EXPECT_EQ(m.elementLoads[0].values, (std::array<double, 6>{1, 2, 3, 0, 0, 0}));
  EXPECT_STREQ(m.elementLoads[1].kind, "temperature_loads");
  EXPECT_EQ(m.elementLoads[1].values, (std::array<double, 6>{1e-5, 30, 0, 0, 0, 0}));
  EXPECT_EQ(m.elementLoads[2].element, 0);
  EXPECT_EQ(m.elementLoads[2].face, -1);
}

TEST(ModelData, NamesTheUnitsOfTheResults)
{
  const std::string names = "units_names\n a kN m kPa 1000 1\n b N m Pa 1 1\nend units_names\n";
  static const struct
  {
    std::string settings;
    const char* force;
  } cases[] = {
      {"", ""},
      {names + "units_res a\n", "kN"},
      {names + "units_res b\n", "N"},
      {names, "N"},  // the reference system, with factors 1
      {"units_names\n a kN m kPa 1000 1\nend units_names\n", ""},
  };
  for (const auto& c : cases) {
    const Model m = Read("problem type: 2d\n" + c.settings +
                         "mesh dimension = 2 elemtype Linear nnode = 2\ncoordinates\n1 0 0\n2 1 0\n"
                         "end\nelements\n1 1 2\nend\n");
    EXPECT_EQ(m.units.force, c.force) << c.settings;
  }
}

TEST(ModelData, RefusesTheFilesThatTheProgramRefuses)
{
  ExpectFatal([] { Read("problem type: 1d"); }, "Type of problem unknown. Only 2d and 3d\n");
  ExpectFatal([] { model::ReadModel("/none.dat"); }, "can't open file /none.dat\n");
}

}  // namespace morlen
