// Beams with loads along their span, in the result files.

#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>
#include <sstream>
#include <string>
#include <vector>

#include "support/frame.h"
#include "support/loaded_beams.h"
#include "support/result_files.h"
#include "support/run.h"
#include "support/solved.h"

namespace morlen {

namespace {

using Doubles = std::vector<double>;

constexpr int kDivisions = 4;

// Both result files of a run on this problem.
struct Files
{
  explicit Files(const std::string& problem)
  {
    const TemporaryFolder folder;
    folder.Write("model.dat", problem);
    const RunResult run = RunProgram(folder, {"model.dat", "out.txt"});
    EXPECT_EQ(run.status, 0) << run.err;
    text = folder.Read("out.txt");
    kiv = folder.Read("model.morlen.res");
  }

  std::string text;
  std::string kiv;
};

// Beams in several directions between nodes that move, with loads of all kinds.
std::string SpaceModel(int code)
{
  Frame frame;
  frame.nodes = {{0, 0, 0}, {3, 0, 0}, {3, 4, 0}, {3, 4, 2}, {1, 1, 3}};
  frame.sections = {{.E = 2000, .G = 800, .A = 0.5, .Iy = 0.3, .Iz = 0.2, .J = 0.1}};
  for (int i = 1; i <= 4; ++i)
    frame.beams.push_back({i, i + 1, 1});
  frame.beams.push_back({5, 1, 1});
  for (const int node : {1, 3, 5})
    frame.supports.push_back({.node = node, .flags = kClamped});
  const std::string c = std::to_string(code);
  return ProblemText(frame, "NumOfDivisions " + std::to_string(kDivisions)) +
         Block("elem_rotules", "1 " + c + "\n3 " + c + "\n5 " + c) +
         Block("local_pressure_loads", "1 3 -2 5 4\n2 1 2 -3\n3 0 4 -5 6") +
         Block("global_pressure_loads", "1 1 1 1\n4 0 0 -7\n5 2 0 -3") +
         Block("global_projected_pressure_loads", "3 1 2 3\n5 0 0 -4") +
         Block("temperature_loads", "2 1e-3 20\n5 -1e-3 20");
}

std::string PlaneModel(int code)
{
  Frame frame;
  frame.space = false;
  frame.nodes = {{0, 0, 0}, {3, 0, 0}, {3, 4, 0}, {0, 5, 0}};
  frame.sections = {{.E = 2000, .A = 0.5, .Iz = 0.2}};
  frame.beams = {{1, 2, 1}, {2, 3, 1}, {4, 3, 1}};
  for (const int node : {1, 4})
    frame.supports.push_back({.node = node, .flags = kClamped});
  frame.supports.push_back({.node = 3, .flags = {2, 2, 0}, .values = {90, 70, 0}});
  const std::string c = std::to_string(code);
  return ProblemText(frame, "NumOfDivisions " + std::to_string(kDivisions)) +
         Block("elem_rotules", "1 " + c + "\n3 " + c) +
         Block("local_pressure_loads", "1 3 -2\n2 0 4") +
         Block("global_projected_pressure_loads", "3 1 -3") + Block("face_loads", "1 2 2") +
         Block("temperature_loads", "2 1e-3 20");
}

// The values of a diagram at its first and last point are the end forces of the text file, and the
// displacements there are those of the nodes. Both files have six digits.
void ExpectFilesAgree(const std::string& problem)
{
  const bool plane = problem.find("problem type 2d") != std::string::npos;
  const Files files(problem);
  const TextResults text = ParseTextResults(files.text);
  static const char* const planeBlocks[] = {"X'_Shear", "Y'_Shear", "Z'_Momentus"};
  static const char* const spaceBlocks[] = {"X'_Shear",    "Y'_Shear",    "Z'_Shear",
                                            "X'_Momentus", "Y'_Momentus", "Z'_Momentus"};
  static const int planeSigns[2][3] = {{-1, 1, -1}, {1, -1, 1}};
  static const int spaceSigns[2][6] = {{-1, 1, 1, 1, 1, -1}, {1, -1, -1, -1, -1, 1}};
  const int n = plane ? 3 : 6;
  for (int k = 0; k < n; ++k) {
    const auto block = KivBlock(files.kiv, plane ? planeBlocks[k] : spaceBlocks[k]);
    ASSERT_EQ(block.size(), text.endForces.size());
    for (const auto& [elem, points] : block) {
      ASSERT_EQ(points.size(), static_cast<std::size_t>(kDivisions) + 1);
      for (int end = 0; end < 2; ++end) {
        const int sign = plane ? planeSigns[end][k] : spaceSigns[end][k];
        const double value = points[end * kDivisions].back();
        EXPECT_NEAR(value, sign * text.endForces.at(elem)[end][k], 1e-5 * std::fabs(value) + 1e-9)
            << "element " << elem << " component " << k + 1 << " end " << end + 1;
      }
    }
  }
  for (const auto& [elem, points] : KivBlock(files.kiv, "BDisplacements")) {
    std::istringstream nodes(files.text.substr(
        files.text.find("nodes: ", files.text.find("Element " + std::to_string(elem))) + 7));
    for (int end = 0, node = 0; end < 2 && nodes >> node; ++end) {
      for (int i = 0; i < (plane ? 2 : 3); ++i)
        EXPECT_NEAR(points[end * kDivisions][i], text.displacements.at(node)[i], 1e-7);
    }
  }
}

// A beam of length 4 and EI = 800 between pins, with the loads 6 across and 10 along.
ProblemParts SimpleBeam()
{
  ProblemParts parts;
  parts.settings = "NumOfDivisions 8";
  parts.coordinates = "1 0 0\n2 4 0";
  parts.materials = "1 E 200 A 3 Iz 4";
  parts.constraints = "1 110 0 0 0\n2 110 0 0 0";
  parts.rest = Block("local_pressure_loads", "1 10 -6");
  return parts;
}

}  // namespace

TEST(BeamLoadFiles, DiagramsAgreeWithEndForces)
{
  for (const int code : {11, 10, 1, 0}) {
    SCOPED_TRACE(code);
    ExpectFilesAgree(SpaceModel(code));
    ExpectFilesAgree(PlaneModel(code));
  }
}

TEST(BeamLoadFiles, EveryPointOfASimpleBeam)
{
  const Files files(SimpleBeam().Text());
  const auto displacements = KivBlock(files.kiv, "BDisplacements").at(1);
  const auto axial = KivBlock(files.kiv, "X'_Shear").at(1);
  const auto shear = KivBlock(files.kiv, "Y'_Shear").at(1);
  const auto moment = KivBlock(files.kiv, "Z'_Momentus").at(1);
  for (std::size_t i = 0; i <= 8; ++i) {
    const double x = 0.5 * static_cast<double>(i);
    const double w = -6 * x * (64 - 8 * x * x + x * x * x) / (24 * 800);
    ExpectValues(displacements[i], {10 * x * (4 - x) / (2 * 600), w}, 5e-6);
    const double N = 20 - 10 * x;
    const double V = 12 - 6 * x;
    const double M = 12 * x - 3 * x * x;
    ExpectValues(axial[i], {0, N, 0, N}, 1e-12, 1.0);
    ExpectValues(shear[i], {0, V, 0, V}, 1e-12, 1.0);
    ExpectValues(moment[i], {0, -M, 0, M}, 1e-12, 1.0);  // drawn on the tension side
  }
}

TEST(BeamLoadFiles, OneDivisionHasTheEndsOnly)
{
  const Files files(SimpleBeam().With(&ProblemParts::settings, "NumOfDivisions 1").Text());
  const auto shear = KivBlock(files.kiv, "Y'_Shear").at(1);
  ASSERT_EQ(shear.size(), 2u);
  EXPECT_NEAR(shear[0].back(), 12, 1e-12);
  EXPECT_NEAR(shear[1].back(), -12, 1e-12);
}

TEST(BeamLoadFiles, EndForcesIncludeTheLoadsOfTheSpan)
{
  const TextResults text = ParseTextResults(Files(SimpleBeam().Text()).text);
  ExpectValues(text.endForces.at(1)[0], {-20, 12, 0}, 1e-6, 1.0);
  ExpectValues(text.endForces.at(1)[1], {-20, 12, 0}, 1e-6, 1.0);
  ExpectValues(text.reactions.at(1), {-20, 12, 0}, 1e-6, 1.0);
}

TEST(BeamLoadFiles, WithoutLoadsTheStoredForcesArePrinted)
{
  ProblemParts parts = SimpleBeam().With(&ProblemParts::rest, "");
  parts.loads = "2 0 0 7";
  const std::vector<double> stored = Solved(parts.Text()).EndForces(1);
  std::string lines;
  for (std::size_t i = 0; i < stored.size(); ++i) {
    char number[32];
    std::snprintf(number, sizeof number, "%g ", stored[i]);
    lines += number;
    if (i % 3 == 2)
      lines += "\n";
  }
  const std::string text = Files(parts.Text()).text;
  EXPECT_NE(text.find("nodes: 1 2\n" + lines + "\n\nREACTIONS"), std::string::npos) << text;
}

TEST(BeamLoadFiles, ReactionsListNodesWhoseRotationIsFixed)
{
  ProblemParts parts;
  parts.coordinates = "1 0 0\n2 2 0\n3 4 0";
  parts.elements = "1 1 2 1\n2 2 3 1";
  parts.constraints = "1 111 0 0 0\n3 111 0 0 0";
  parts.loads = "2 0 -12 0";
  parts.rest = Block("rotules", "2 hinge");
  const TextResults text = ParseTextResults(Files(parts.Text()).text);
  ASSERT_EQ(text.reactions.size(), 3u);
  EXPECT_EQ(text.reactions.at(2), (Doubles{0, 0, 0}));
}

}  // namespace morlen
