#include "problem/problem_image.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "assembly/analysis.h"
#include "assembly/solution_image.h"
#include "model/elem.h"
#include "model/material.h"
#include "numeric/plex_range.h"
#include "problem/problem.h"
#include "results/strengths.h"
#include "run/element_families.h"
#include "support/fatal.h"
#include "support/solved.h"

namespace morlen {
namespace {

constexpr const char* kDamaged =
    "error: the stored data are damaged, or of another version of the program\n";

// A little of everything: units, two meshes, elements with values of their own, supports with axes
// and springs, hinges, loads of every kind, settings.
const std::string kFrame = R"(problem type: 3d
units_names
  kN-m kN m kPa 1000 1
  N-mm N mm MPa 1 0.001
end
units_mesh mm
units_mat_and_load N-mm
units_res kN-m
mesh dimension = 3 elemtype Linear nnode = 2
coordinates
1 0 0 0
2 4000 0 0
3 4000 0 3000
4 0 0 -3000
end coordinates
elements
3 1 2 1 A = 9000 Euler2 = 0.5
7 2 3 1
end elements
mesh dimension = 3 elemtype Linear nnode = 2
coordinates
end coordinates
elements
12 4 1 2
end elements
materials
1 E = 2.1e5 G = 8.1e4 A = 5000 Iy = 4e7 Iz = 2e7 J = 1e6 Weight = 7.85e-5
2 E = 2.1e5 G = 8.1e4 widthY = 200 widthZ = 100
end materials
constraints
4 111111 0 0 0 0 0 0
3 112111 1 0 50 0 0 0 Euler1 = 0.3
end constraints
elem_rotules
3 10
end elem_rotules
rotules
1
end rotules
nodal_point_loads
2 1000 0 -2000 0 0 0
end nodal_point_loads
local_pressure_loads
3 0 0 -1.5 20
3 0 1 0
end local_pressure_loads
global_projected_pressure_loads
7 0 0 -3
end global_projected_pressure_loads
temperature_loads
12 1e-5 20
end temperature_loads
GravityDirection 0 0 -1
NumOfDivisions 7
)";

const std::string kPlate = R"(problem type: 3d
mesh dimension = 3 elemtype Triangle nnode = 3
coordinates
1 0 0 0
2 2 0 0
3 2 2 0.1
4 0 2 0
end coordinates
elements
1 1 2 3 1
2 1 3 4 1
end elements
materials
1 E = 1000 G = 400 nu = 0.25 t = 0.1
end materials
constraints
1 111111 0 0 0 0 0 0
4 111111 0 0 0 0 0 0
end constraints
nodal_point_loads
2 0 0 1 0 0 0
end nodal_point_loads
ConvertTo6Nodes
ShellFormulation Refined
DoSmoothing 0.1
MainAndLocalStresses
)";

std::unique_ptr<Problem> CopyOf(const Problem& problem)
{
  auto copy = std::make_unique<Problem>(100);
  ReadImage(ImageOf(problem), *copy);
  return copy;
}

std::vector<double> ValuesOf(const ReaVecV& vector)
{
  return {vector.Data(), vector.Data() + vector.Size()};
}

// The displacements of an analysis, bit for bit.
std::vector<double> Displacements(Problem& problem)
{
  return ValuesOf(Analyse(problem, FamiliesOf(problem), {}).solutions.front().displacements);
}

TEST(ProblemImage, CopyHasTheSameImageAndResults)
{
  for (const std::string& text : {kFrame, kPlate}) {
    const auto problem = ReadProblemText(text);
    const std::vector<char> image = ImageOf(*problem);
    const auto copy = CopyOf(*problem);
    EXPECT_EQ(ImageOf(*copy), image);
    EXPECT_EQ(Displacements(*copy), Displacements(*problem));
  }
}

TEST(ProblemImage, PreparedProblemIsCopiedToo)
{
  for (const std::string& text : {kFrame, kPlate}) {
    const auto problem = ReadProblemText(text);
    Solution solution = std::move(Analyse(*problem, FamiliesOf(*problem), {}).solutions.front());
    const auto copy = CopyOf(*problem);
    EXPECT_EQ(ImageOf(*copy), ImageOf(*problem));
    Solution same;
    ReadImage(ImageOf(solution), same);
    CalcStrengthsAndReactions(*problem, FamiliesOf(*problem), solution, nullptr);
    CalcStrengthsAndReactions(*copy, FamiliesOf(*copy), same, nullptr);
    EXPECT_EQ(ImageOf(same), ImageOf(solution));
    EXPECT_EQ(ValuesOf(same.reactions), ValuesOf(solution.reactions));
  }
}

TEST(ProblemImage, EveryShorterImageIsRefused)
{
  const auto problem = ReadProblemText(kFrame);
  std::vector<char> image = ImageOf(*problem);
  while (!image.empty()) {
    image.pop_back();
    Problem target(100);
    ExpectFatal([&] { ReadImage(image, target); }, kDamaged);
  }
}

TEST(ProblemImage, OtherBytesAreRefused)
{
  const auto problem = ReadProblemText(kFrame);
  std::vector<char> longer = ImageOf(*problem);
  longer.push_back('x');
  Problem first(100);
  ExpectFatal([&] { ReadImage(longer, first); }, kDamaged);
  Problem second(100);
  ExpectFatal([&] { ReadImage(std::vector<char>(500, 'x'), second); }, kDamaged);
  Solution solution;
  ExpectFatal([&] { ReadImage(std::vector<char>(500, 'x'), solution); }, kDamaged);
}

TEST(RecomposeMaterials, OwnMaterialsFollowWhatTheyDoNotGive)
{
  const auto problem = ReadProblemText(kFrame);
  Material& numbered = *Find<Material>(problem->materials, 1);
  const Material& own = problem->RequireMaterial(*problem->GiveElem(3));
  ASSERT_NE(&own, &numbered);
  numbered.Enter(&Material::E1, 5.0);
  numbered.Enter(&Material::A, 6.0);
  numbered.eulerGiven = 1;
  RecomposeMaterials(*problem);
  EXPECT_EQ(own.E1, 5.0);
  EXPECT_NEAR(own.A, 9e-3, 1e-15);  // given in mm²
  EXPECT_EQ(own.Euler[1], 0.5);
}

TEST(RecomposeMaterials, NothingChangesWithoutAChange)
{
  const auto problem = ReadProblemText(kFrame);
  const std::vector<char> image = ImageOf(*problem);
  RecomposeMaterials(*problem);
  EXPECT_EQ(ImageOf(*problem), image);
}

}  // namespace
}  // namespace morlen
