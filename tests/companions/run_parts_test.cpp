#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <cmath>

#include "base/stprintf.h"
#include "run_program/extremes.h"
#include "run_program/job.h"
#include "run_program/progress.h"
#include "run_program/summary.h"
#include "support/fatal.h"
#include "support/run.h"

namespace morlen::run {

namespace {

/// The lines that a sender writes for some lines of the analysis.
std::string Sent(std::initializer_list<const char*> lines, int equations = 0)
{
  const TemporaryFolder folder;
  folder.Write("events", "");
  const int file = open((folder.Path() / "events").c_str(), O_WRONLY);
  {
    ProgressSender sender(file);
    sender.SetEquations(equations);
    for (const char* line : lines)
      Progress(sender.Stream(), "%s\n", line);
  }
  close(file);
  return folder.Read("events");
}

Options For(std::vector<std::string> files, std::optional<std::filesystem::path> folder = {})
{
  Options options;
  options.files = std::move(files);
  options.folder = std::move(folder);
  return options;
}

model::Element BeamOf(int number, int firstPoint)
{
  return {.number = number,
          .mesh = 0,
          .kind = model::Kind::Beam,
          .material = 0,
          .hingeCode = 11,
          .firstPoint = firstPoint,
          .points = 2,
          .nodeCount = 2,
          .nodes = {},
          .axes = {}};
}

const Extreme& Of(const std::vector<Extreme>& extremes, const std::string& label)
{
  for (const Extreme& one : extremes)
    if (one.label == label)
      return one;
  ADD_FAILURE() << label;
  return extremes.front();
}

}  // namespace

TEST(ProgressSender, MakesEventsOfTheMessagesThatMatter)
{
  EXPECT_EQ(Sent({"Solver Direct taken: it is faster"}, 12),
            "\1Ssolving 12 equations with Direct: it is faster\n");
  EXPECT_EQ(Sent({"Solver SkyLine taken: x"}), "\1Ssolving with SkyLine: x\n");
  EXPECT_EQ(Sent({"Solving degree 300 of 900"}), "\1Afactorising, equation 300 of 900\n");
  EXPECT_EQ(Sent({"Factorisation"}), "\1Afactorising\n");
  EXPECT_EQ(Sent({"iteration number 1 resid=0.5 tol=1e-05"}),
            "\1Aiteration 1, residual 5.0e-01 of 1.0e-05\n");
  EXPECT_EQ(Sent({"iteration number 1 resid=0.5 tol=1e-05"}, 12),
            "\1Aiteration 1, residual 5.0e-01 of 1.0e-05, 12 equations\n");
  EXPECT_EQ(Sent({"Stiffness matrix filled", "Solver finished"}), "");
}

TEST(ProgressSender, CountsWarnings)
{
  const int nowhere = open("/dev/null", O_WRONLY);
  {
    ProgressSender sender(nowhere);
    Progress(sender.Stream(), "warning: one\nno warning\nwarn");
    Progress(sender.Stream(), "ing: two\n");
    EXPECT_EQ(sender.Warnings(), 2);  // the second one has come in two parts
  }
  close(nowhere);
}

// From 1 to 1e-4 in 8 s, 1e-6 is half of that way further.
TEST(ProgressSender, SecondsLeftFollowAnEvenFall)
{
  EXPECT_NEAR(SecondsLeft(1.0, 1e-4, 1e-6, 8.0), 4.0, 1e-12);  // rounding of the logarithms
  EXPECT_LT(SecondsLeft(1.0, 1.0, 1e-6, 8.0), 0.0);
  EXPECT_LT(SecondsLeft(1.0, 2.0, 1e-6, 8.0), 0.0);
  EXPECT_LT(SecondsLeft(1.0, 1e-7, 1e-6, 8.0), 0.0);
  EXPECT_LT(SecondsLeft(1.0, std::nan(""), 1e-6, 8.0), 0.0);
}

TEST(Jobs, ResultsAreNextToTheFileOrInTheFolder)
{
  const std::vector<Job> beside = PlanJobs(For({"a.b/m.x.dat", "hall.cases", "-"}));
  EXPECT_EQ(beside[0].Result(".html"), "a.b/m.x.html");
  EXPECT_EQ(beside[0].Folder(), "a.b");
  EXPECT_EQ(beside[1].Result(".results"), "hall.results");
  EXPECT_TRUE(beside[1].isCases);
  EXPECT_EQ(beside[2].Result(".txt"), "stdin.txt");
  EXPECT_EQ(beside[2].Folder(), ".");
  EXPECT_EQ(PlanJobs(For({"/dev/stdin"})).front().Result(".txt"), "stdin.txt");
  EXPECT_EQ(PlanJobs(For({"a/m.dat"}, "out")).front().Result(".txt"), "out/m.txt");
}

TEST(Jobs, WithTheSameResultsAreRefused)
{
  const TemporaryFolder folder;
  const std::string a = (folder.Path() / "a" / "m.dat").string();
  const std::string b = (folder.Path() / "b" / "m.inp").string();
  EXPECT_EQ(PlanJobs(For({a, b})).size(), 2u);
  ExpectFatal(
      [&] {
        PlanJobs(For({a, b}, folder.Path()));
      },
      "error: " + a + " and " + b + " would write the same results, " +
          (folder.Path() / "m.html").string() + "\n");
  ExpectFatal(
      [&] {
        PlanJobs(For({"m.dat", "./m.cases"}));
      },
      "error: m.dat and ./m.cases would write the same results, ./m.html\n");
}

TEST(Extremes, AreTheLargestSizesWithTheirPlaces)
{
  model::Model model;
  model.units = {"kN", "m", "kPa"};
  model.nodes = {{7, {}}, {9, {}}};
  model.elements = {BeamOf(3, 0), BeamOf(5, 2)};
  results::Results results;
  results.nodes.resize(2);
  results.nodes[1].displacement = {0.0, -3.0, 4.0};
  results.beamPoints.resize(4);
  results.beamPoints[0].forces = {2.0, 0.0, 0.0, 0.0, 0.0, 1.0};
  results.beamPoints[3].forces = {-6.0, 50.0, 0.0, 60.0, -7.0, 6.0};
  const std::vector<Extreme> extremes = ExtremesOf(model, results);
  ASSERT_EQ(extremes.size(), 3u);
  EXPECT_EQ(TextOf(Of(extremes, "displacement")), "5 m at node 9");
  EXPECT_EQ(TextOf(Of(extremes, "N")), "-6 kN in beam 5");
  EXPECT_EQ(TextOf(Of(extremes, "M")), "-7 kN*m in beam 5");
}

// A beam between two held nodes deflects; the end of another one moves as its node, but for
// rounding.
TEST(Extremes, OfDisplacementsAreAlongBeamsToo)
{
  model::Model model;
  model.units = {"kN", "m", "kPa"};
  model.nodes = {{7, {}}, {9, {}}};
  model.elements = {BeamOf(3, 0), BeamOf(5, 2)};
  results::Results results;
  results.nodes.resize(2);
  results.beamPoints.resize(4);
  results.beamPoints[2].displacement = {0.0, 0.0, -3.0};
  EXPECT_EQ(TextOf(Of(ExtremesOf(model, results), "displacement")), "3 m in beam 5");
  results.nodes[1].displacement = {0.0, 0.0, -3.0};
  results.beamPoints[2].displacement = {0.0, 0.0, -3.0 * (1.0 + 1e-15)};
  EXPECT_EQ(TextOf(Of(ExtremesOf(model, results), "displacement")), "3 m at node 9");
}

// The tensor (3, -5; 3) has the principal values -1 ± 5.
TEST(Extremes, OfShellsArePrincipalValues)
{
  model::Model model;
  model.nodes = {{1, {}}};
  model.elements = {BeamOf(4, 0)};
  model.elements.front().kind = model::Kind::Shell;
  model.elements.front().points = 1;
  results::Results results;
  results.nodes.resize(1);
  results.shellLocal = true;
  results.shellPoints.resize(1);
  results.shellPoints[0].local = {3.0, -5.0, 3.0, 3.0, -5.0, -3.0, 0.0, 0.0};
  const std::vector<Extreme> extremes = ExtremesOf(model, results);
  EXPECT_EQ(TextOf(Of(extremes, "shell force")), "-6 [force/length] in shell 4");
  EXPECT_EQ(TextOf(Of(extremes, "shell moment")), "-6 [force*length/length] in shell 4");
}

TEST(Extremes, OfShellsAreThePrincipalValuesOfTheFilesWhereTheyHaveSome)
{
  model::Model model;
  model.nodes = {{1, {}}};
  model.elements = {BeamOf(4, 0)};
  model.elements.front().kind = model::Kind::Shell;
  model.elements.front().points = 1;
  results::Results results;
  results.nodes.resize(1);
  results.shellLocal = results.shellMain = true;
  results.shellPoints.resize(1);
  // Smoothed principal values are not those of the smoothed local values.
  results.shellPoints[0].local = {3.0, -5.0, 3.0, 3.0, -5.0, -3.0, 0.0, 0.0};
  results.shellPoints[0].main = {4.5, -6.5, -7.0, 4.0, 0.0, 0.0};
  const std::vector<Extreme> extremes = ExtremesOf(model, results);
  EXPECT_EQ(TextOf(Of(extremes, "shell force")), "-6.5 [force/length] in shell 4");
  EXPECT_EQ(TextOf(Of(extremes, "shell moment")), "-7 [force*length/length] in shell 4");
}

TEST(Extremes, MergedKeepTheLarger)
{
  std::vector<Extreme> all;
  MergeExtremes(all, {{"N", -2.0, "kN", "in beam 1"}}, ", case A");
  MergeExtremes(all, {{"N", 3.0, "kN", "in beam 2"}}, ", case B");
  MergeExtremes(all, {{"N", 1.0, "kN", "in beam 3"}}, ", case C");
  ASSERT_EQ(all.size(), 1u);
  EXPECT_EQ(TextOf(all.front()), "3 kN in beam 2, case B");
}

TEST(RunSummary, ExtremesOfAnEnvelopeAreInOneColumn)
{
  Summary summary;
  const std::vector<Extreme> extremes = {{"N", -2.0, "kN", "in beam 1 (A)"},
                                         {"M", 3.0, "kN*m", "in beam 2 (B)"}};
  for (const char* name : {"U", "\xC3\xA4ndern", "3", "4", "5", "6"})
    summary.envelopes.push_back({name, extremes});
  const std::string text = TextOf(summary);
  EXPECT_NE(text.find("\nenvelope U:   N -2 kN in beam 1 (A)\n"
                      "              M 3 kN*m in beam 2 (B)\n"
                      "envelope \xC3\xA4ndern: N -2 kN in beam 1 (A)\n"
                      "                 M 3 kN*m in beam 2 (B)\n"
                      "envelope 3:   N"),
            text.npos)
      << text;
  EXPECT_NE(text.find("\nenvelopes:    2 more in the report\n"), text.npos) << text;
}

TEST(RunSummary, StatusFollowsBalanceAndError)
{
  Summary summary;
  EXPECT_EQ(StatusOf(summary), ExitStatus::Done);
  summary.balance = 1.1e-4;
  EXPECT_EQ(StatusOf(summary), ExitStatus::Found);
  EXPECT_EQ(WarningsOf(summary), "warning: loads and reactions are not in equilibrium.\n");
  summary.balance = std::nan("");
  EXPECT_EQ(StatusOf(summary), ExitStatus::Found);
  summary.balance = 0.0;
  summary.facts.estimatedError = 2e-4;
  EXPECT_EQ(StatusOf(summary), ExitStatus::Found);
  EXPECT_EQ(WarningsOf(summary),
            "warning: the displacements have an estimated error of 0.0002, more than 0.0001\n");
}

}  // namespace morlen::run
