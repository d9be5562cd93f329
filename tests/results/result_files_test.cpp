// The result files of whole runs, compared with the results in full precision and with each other.
// The cases of runs/ have their layouts.

#include <gtest/gtest.h>

#include <cmath>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include "support/compare.h"
#include "support/fatal.h"
#include "support/frame.h"
#include "support/result_files.h"
#include "support/run.h"
#include "support/solved.h"

namespace morlen {

namespace {

using Doubles = std::vector<double>;

constexpr int kDivisions = 5;
constexpr double kSixDigits = 5e-6;

// A frame in which renumbering moves every node. Node 3 has no support.
Frame SpaceFrame()
{
  Frame frame;
  frame.nodes = {{2, 3, 4}, {0, 0, 0}, {2, 1, 4}, {2, 0, 0}, {0, 1, 3}};
  frame.sections = {{.E = 30.0, .G = 12.0, .A = 5.0, .Iy = 2.0, .Iz = 7.0, .J = 3.0}};
  frame.beams = {{2, 5, 1}, {5, 3, 1}, {4, 3, 1}, {3, 1, 1}};
  frame.supports = {{.node = 2, .flags = kClamped, .values = {0, 0, -0.01}},
                    {.node = 4, .flags = {1, 1, 1, 0, 0, 0}, .euler = Vector3{0.2, 0.1, 0}},
                    {.node = 1, .flags = {0, 0, 2, 0, 0, 0}, .values = {0, 0, 3.0}}};
  frame.loads = {{1, {1, -2, 3, 0.5, 0, -1}}, {5, {0, 4, -1, 0, 2, 0}}};
  return frame;
}

Frame PlaneFrame()
{
  Frame frame = SpaceFrame();
  frame.space = false;
  frame.nodes = {{2, 7, 0}, {0, 0, 0}, {2, 4, 0}, {2, 0, 0}, {0, 3, 0}};
  frame.supports = {{.node = 2, .flags = kClamped, .values = {0, -0.01, 0}},
                    {.node = 4, .flags = {0, 1, 0}, .euler = Vector3{0.2, 0, 0}},
                    {.node = 1, .flags = {2, 0, 0}, .values = {3.0, 0, 0}}};
  return frame;
}

std::string TextOf(const Frame& frame)
{
  return ProblemText(frame, "NumOfDivisions " + std::to_string(kDivisions));
}

// The two result files of a run.
struct Files
{
  explicit Files(const std::string& problem, const std::vector<std::string>& options = {})
  {
    const TemporaryFolder folder;
    folder.Write("model.dat", problem);
    std::vector<std::string> arguments = options;
    arguments.insert(arguments.end(), {"model.dat", "out.txt"});
    EXPECT_EQ(RunProgram(folder, arguments).status, 0);
    text = folder.Read("out.txt");
    kiv = folder.Read("model.morlen.res");
  }

  std::string text;
  std::string kiv;
};

void ExpectPrinted(const Doubles& printed, const Doubles& exact)
{
  ASSERT_EQ(printed.size(), exact.size());
  for (std::size_t i = 0; i < exact.size(); ++i)
    EXPECT_NEAR(printed[i], exact[i], kSixDigits * std::fabs(exact[i]) + 1e-12);
}

Doubles Part(const Doubles& values, std::size_t first, std::size_t count)
{
  return {values.begin() + first, values.begin() + first + count};
}

class ResultFiles : public testing::TestWithParam<bool>
{
protected:
  ResultFiles()
      : frame(GetParam() ? SpaceFrame() : PlaneFrame()),
        solved(TextOf(frame)),
        files(TextOf(frame)),
        n(frame.Components())
  {
  }

  const Frame frame;
  const Solved solved;
  const Files files;
  const int n;
};

}  // namespace

TEST_P(ResultFiles, TextResultsAreCompleteByUserNumbers)
{
  const TextResults text = ParseTextResults(files.text);
  ASSERT_EQ(text.displacements.size(), frame.nodes.size());
  for (const auto& [node, values] : text.displacements)
    ExpectPrinted(values, solved.Displacement(node));
  ASSERT_EQ(text.reactions.size(), frame.supports.size());
  for (const auto& [node, values] : text.reactions)
    ExpectPrinted(values, solved.Reaction(node));
  ASSERT_EQ(text.endForces.size(), frame.beams.size());
  for (const auto& [beam, ends] : text.endForces) {
    ExpectPrinted(ends[0], Part(solved.EndForces(beam), 0, n));
    ExpectPrinted(ends[1], Part(solved.EndForces(beam), n, n));
  }
}

TEST_P(ResultFiles, TitlesOfBeamsNameTheNodesOfTheFile)
{
  for (const Frame::Beam& beam : frame.beams) {
    const std::string nodes =
        " local strength. nodes: " + std::to_string(beam.first) + " " + std::to_string(beam.second);
    EXPECT_NE(files.text.find(nodes + "\n"), std::string::npos) << nodes;
  }
}

TEST_P(ResultFiles, PostProcessBlocksAreInOrder)
{
  const std::vector<std::string> space = {
      "BDisplacements", "X'_Shear",    "Y'_Shear",        "Z'_Shear",  "X'_Momentus",
      "Y'_Momentus",    "Z'_Momentus", "Local Axes Beam", "Reactions", "M Reactions"};
  const std::vector<std::string> plane = {"BDisplacements", "X'_Shear",        "Y'_Shear",
                                          "Z'_Momentus",    "Local Axes Beam", "Reactions",
                                          "M Reactions"};
  EXPECT_EQ(KivBlockNames(files.kiv), GetParam() ? space : plane);
}

TEST_P(ResultFiles, DeflectionsAreThoseOfTheSpan)
{
  const auto block = KivBlock(files.kiv, "BDisplacements");
  ASSERT_EQ(block.size(), frame.beams.size());
  for (const auto& [beam, points] : block) {
    const auto exact = solved.SpanDisplacements(beam, kDivisions);
    ASSERT_EQ(points.size(), exact.size());
    for (std::size_t i = 0; i < exact.size(); ++i)
      ExpectPrinted(points[i], exact[i]);
  }
}

TEST_P(ResultFiles, DiagramsHaveTheForcesAndTheirDrawing)
{
  const std::vector<std::string> names = KivBlockNames(files.kiv);
  for (int component = 1; component <= n; ++component) {
    const auto block = KivBlock(files.kiv, names[component]);
    ASSERT_EQ(block.size(), frame.beams.size()) << names[component];
    for (const auto& [beam, points] : block) {
      ASSERT_EQ(points.size(), static_cast<std::size_t>(kDivisions) + 1);
      for (int i = 0; i <= kDivisions; ++i) {
        const double value = solved.Strength(beam, component, static_cast<double>(i) / kDivisions);
        ASSERT_EQ(points[i].size(), 4u);
        ExpectPrinted({points[i][3]}, {value});
        // The drawing is perpendicular to the beam and as long as the value.
        const Vector3& a = frame.nodes[frame.beams[beam - 1].first - 1];
        const Vector3& b = frame.nodes[frame.beams[beam - 1].second - 1];
        double along = 0.0;
        for (int k = 0; k < 3; ++k)
          along += points[i][k] * (b[k] - a[k]);
        EXPECT_NEAR(along, 0.0, 1e-4 * std::fabs(value) + 1e-12);
        EXPECT_NEAR(std::hypot(points[i][0], points[i][1], points[i][2]), std::fabs(value),
                    1e-5 * std::fabs(value) + 1e-12);
      }
    }
  }
}

TEST_P(ResultFiles, AxesAreAtTheMiddlePoint)
{
  for (const auto& [beam, points] : KivBlock(files.kiv, "Local Axes Beam")) {
    ASSERT_EQ(points.size(), static_cast<std::size_t>(kDivisions) + 1);
    for (int i = 0; i <= kDivisions; ++i) {
      const bool isMark = points[i] == Doubles{1000, 1000, 1000};
      EXPECT_EQ(isMark, i != kDivisions / 2) << beam << " " << i;
    }
  }
}

TEST_P(ResultFiles, ReactionsAreGivenForEveryNode)
{
  const std::size_t forces = GetParam() ? 3 : 2;
  const auto translations = KivBlock(files.kiv, "Reactions");
  const auto rotations = KivBlock(files.kiv, "M Reactions");
  const TextResults text = ParseTextResults(files.text);
  ASSERT_EQ(translations.size(), frame.nodes.size());
  ASSERT_EQ(rotations.size(), frame.nodes.size());
  for (const auto& [node, lines] : translations) {
    const auto reaction = text.reactions.find(node);
    const bool free = reaction == text.reactions.end();
    EXPECT_EQ(lines[0], free ? Doubles(3, 0.0) : Part(reaction->second, 0, forces));
    EXPECT_EQ(rotations.at(node)[0],
              free ? Doubles(3, 0.0) : Part(reaction->second, forces, n - forces));
  }
}

TEST_P(ResultFiles, AreTheSameWithoutRenumbering)
{
  const Files asRead(TextOf(frame), {"-r0"});
  const Closeness lastDigit = {.relative = 2e-5};
  EXPECT_EQ(Difference(files.text, asRead.text, lastDigit), "");
  EXPECT_EQ(Difference(files.kiv, asRead.kiv, lastDigit), "");
}

INSTANTIATE_TEST_SUITE_P(Frames, ResultFiles, testing::Bool(),
                         [](const auto& instance) { return instance.param ? "Space" : "Plane"; });

TEST(WriteResults, UnknownProblemTypeIsRefused)
{
  const auto project = ReadProject(ProblemParts().Text());
  project->Calc(1, nullptr);
  project->CalcStrengthsAndReactions(nullptr);
  project->problem.problemType = PROBLEMTYPE(2);
  const TemporaryFolder folder;
  std::ofstream out(folder.Path() / "out.txt");
  ExpectFatal([&] { project->WriteResults(out); },
              "error: Project::WriteResults. problemtype unknown\n");
}

TEST(WriteResults, NumbersHaveSixDigitsInTheirShortestForm)
{
  // A bar of stiffness 3 under 1, 1e7 and 1e-6 / 3.
  const std::vector<std::pair<const char*, const char*>> cases = {
      {"1", "2  0.333333 0 0\n"},    {"1e7", "2  3.33333e+06 0 0\n"},
      {"-6", "2  -2 0 0\n"},         {"1e-6", "2  3.33333e-07 0 0\n"},
      {"300000", "2  100000 0 0\n"}, {"3000000", "2  1e+06 0 0\n"}};
  for (const auto& [load, line] : cases) {
    const Files files(ProblemParts()
                          .With(&ProblemParts::materials, "1 E 3 A 1 Iz 1")
                          .With(&ProblemParts::loads, std::string("2 ") + load + " 0 0")
                          .Text());
    EXPECT_NE(files.text.find(line), std::string::npos) << files.text;
  }
}

}  // namespace morlen
