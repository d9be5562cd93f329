#include <gtest/gtest.h>

#include <cmath>

#include "common/model_data.h"
#include "common/result_data.h"
#include "support/run.h"

namespace morlen {

using model::Model;
using results::Results;

namespace {

struct Solved
{
  Model model;
  Results results;
};

Solved Solve(std::string_view problem, bool text)
{
  const TemporaryFolder folder;
  folder.Write("m.dat", problem);
  const RunResult run = RunProgram(folder, text ? std::vector<std::string>{"m.dat", "m.txt"}
                                                : std::vector<std::string>{"m.dat"});
  EXPECT_EQ(run.status, 0) << run.err;
  const std::filesystem::path file = folder.Path() / "m.dat";
  Solved solved{model::ReadModel(file), {}};
  solved.results = results::ReadResults(solved.model, results::UsualFiles(file));
  return solved;
}

// A cantilever of length 2 in space with forces 3 along z and 4 along x at its end.
constexpr const char* kCantilever = R"(problem type: 3d
NumOfDivisions 2
mesh dimension = 3 elemtype Linear nnode = 2
coordinates
  1 0 0 0
  2 2 0 0
end coordinates
elements
  5 1 2 1
end elements
materials
  1 E=1000 G=400 A=0.5 Iy=0.25 Iz=0.1 J=0.1
end materials
constraints
  1 111111 0 0 0 0 0 0
end constraints
nodal_point_loads
  2 4 0 3 0 0 0
end nodal_point_loads
)";

// One tetrahedron of a "2d" problem, held at its base, with a force up and one to the side.
constexpr const char* kSolid = R"(problem type: 2d
mesh dimension = 3 elemtype Tetrahedra nnode = 4
coordinates
  1 0 0 0
  2 1 0 0
  3 0 1 0
  4 0 0 1
end coordinates
elements
  1 1 2 3 4 1
end elements
materials
  1 E=1000 nu=0
end materials
constraints
  1 111 0 0 0
  2 111 0 0 0
  3 111 0 0 0
end constraints
nodal_point_loads
  4 2 0 6
end nodal_point_loads
)";

}  // namespace

TEST(ResultReader, ReadsTheValuesOfACantilever)
{
  const Solved s = Solve(kCantilever, true);
  const double tip = 3.0 * 8.0 / (3.0 * 1000.0 * 0.25);  // PL³/(3EI)
  const results::Node& end = s.results.nodes[1];
  EXPECT_NEAR(end.displacement[2], tip, 1e-6);
  EXPECT_NEAR(end.displacement[0], 4.0 * 2.0 / 500.0, 1e-7);
  EXPECT_TRUE(s.results.rotations);
  EXPECT_NEAR(end.rotation[1], -3.0 * 4.0 / (2.0 * 250.0), 1e-7);  // −PL²/(2EI)
  EXPECT_NEAR(s.results.nodes[0].force[2], -3.0, 1e-6);
  EXPECT_NEAR(s.results.nodes[0].moment[1], 6.0, 1e-6);
  ASSERT_EQ(s.results.beamPoints.size(), 3u);
  const results::BeamPoint& middle = s.results.beamPoints[1];
  EXPECT_NEAR(middle.forces[0], 4.0, 1e-6);
  EXPECT_NEAR(middle.forces[2], -3.0, 1e-6);
  EXPECT_NEAR(middle.forces[4], 3.0, 1e-6);  // tension below
  EXPECT_NEAR(middle.displacement[2], tip * 5.0 / 16.0, 1e-6);
  ASSERT_EQ(s.results.beamEnds.size(), 1u);
  EXPECT_NEAR(s.results.beamEnds[0][1][0], 4.0, 1e-6);
}

TEST(ResultReader, FramesWithoutTextResultsGetDisplacementsFromTheirBeams)
{
  const Solved s = Solve(kCantilever, false);
  EXPECT_NEAR(s.results.nodes[1].displacement[2], 0.032, 1e-6);
  EXPECT_EQ(s.results.nodes[0].displacement, (Vec3{0, 0, 0}));
  EXPECT_FALSE(s.results.rotations);
  EXPECT_TRUE(s.results.beamEnds.empty());
}

TEST(ResultReader, SolidsOfAPlaneHeaderHaveReactionsAlongZ)
{
  for (const bool text : {false, true}) {
    const Solved s = Solve(kSolid, text);
    Vec3 sum{};
    for (const results::Node& node : s.results.nodes) {
      for (int k = 0; k < 3; ++k)
        sum[k] += node.force[k];
      EXPECT_EQ(node.moment, (Vec3{0, 0, 0}));
    }
    EXPECT_NEAR(sum[0], -2.0, 1e-5);
    EXPECT_NEAR(sum[1], 0.0, 1e-5);
    EXPECT_NEAR(sum[2], -6.0, 1e-5);
    EXPECT_FALSE(s.results.rotations && s.model.solids);
  }
}

// With ν = 0 the only strains are ε_z = w and γ_xz = u of the tip; E = 1000, G = 500. The volume is
// 1/6 and ∂N/∂z = 1, so the stresses are 6 F.
TEST(ResultReader, ReadsTheStressesOfATetrahedron)
{
  const Solved s = Solve(kSolid, false);
  ASSERT_TRUE(s.results.stresses);
  for (const results::Node& node : s.results.nodes) {
    EXPECT_NEAR(node.stress[2], 36.0, 1e-4);
    EXPECT_NEAR(node.stress[5], 12.0, 1e-4);
    EXPECT_NEAR(node.vonMises, std::sqrt(36.0 * 36.0 + 3.0 * 144.0), 1e-3);
  }
}

}  // namespace morlen
