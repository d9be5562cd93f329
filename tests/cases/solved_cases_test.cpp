// Load cases and combinations of one model, against problem files with the same loads.

#include "cases/solved_cases.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <fstream>
#include <memory>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include "base/textscan.h"
#include "cases/case_writer.h"
#include "cases/combination.h"
#include "cases/envelope.h"
#include "problem/load_blocks.h"
#include "problem/problem.h"
#include "problem/problem_image.h"
#include "problem/problem_reader.h"
#include "run/element_families.h"
#include "run/project.h"
#include "support/fatal.h"
#include "support/messages.h"
#include "support/processor.h"
#include "support/run.h"
#include "support/shell_model.h"
#include "support/solid_model.h"
#include "support/solved.h"
#include "support/tested_solver.h"

namespace morlen {

namespace {

/// A model, and loads for it as blocks of a problem file.
struct CasesModel
{
  std::string name;
  std::string before, after;  ///< the file before and after " Weight=5" of its first material
  std::string own;            ///< loads that the model file has
  std::vector<std::string> loads;

  std::string Text(bool weight, const std::string& blocks) const
  {
    return before + (weight ? " Weight=5" : "") + after + blocks;
  }
};

/// A case of a model, and the problem file that it is.
struct TestCase
{
  std::string loads;
  bool gravity = false;
  bool fromModel = false;
};

std::vector<TestCase> TestCasesOf(const CasesModel& model)
{
  std::vector<TestCase> cases;
  for (const std::string& loads : model.loads)
    cases.push_back({loads});
  cases.push_back({"", true});
  cases.push_back({model.loads.front(), true});
  cases.push_back({"", false, true});
  cases.push_back({model.loads.back(), false, true});
  return cases;
}

std::string EquivalentText(const CasesModel& model, const TestCase& one)
{
  return model.Text(one.gravity || one.fromModel, (one.fromModel ? model.own : "") + one.loads);
}

/// Text and post-process results of a column, one after the other.
std::string Written(Problem& problem, const ResultLayout& layout, std::span<const double> column)
{
  const TemporaryFolder folder;
  {
    const CaseWriter writer(problem, FamiliesOf(problem), layout, column);
    std::ofstream text(folder.Path() / "text");
    writer.WriteText(text);
    std::ofstream post(folder.Path() / "post");
    writer.WritePost(post);
  }
  return folder.Read("text") + folder.Read("post");
}

/// A model with all its cases solved.
class SolvedModel
{
public:
  SolvedModel(const CasesModel& model, const std::vector<TestCase>& list)
      : problem(ReadProblemText(model.Text(true, model.own)))
  {
    problem->solverSettings.processor = TestedProcessor();
    LoadSet own = ExtractLoads(*problem);
    for (const TestCase& one : list) {
      if (one.fromModel)
        InstallLoads(own.Copy(), *problem);
      else
        problem->selfWeight = one.gravity;
      TextScan scan(one.loads);
      ReadLoadBlocks(scan, *problem);
      loads.push_back(ExtractLoads(*problem));
    }
    solved = std::make_unique<SolvedCases>(*problem, FamiliesOf(*problem), loads,
                                           AnalysisOptions{.kit = TestedKit()});
  }

  const SolvedCases& Cases() const { return *solved; }
  const Problem& Model() const { return *problem; }

  /// The files of a column.
  std::string Write(std::span<const double> column)
  {
    return Written(*problem, solved->Layout(), column);
  }

private:
  std::unique_ptr<Problem> problem;
  std::vector<LoadSet> loads;
  std::unique_ptr<SolvedCases> solved;
};

std::string ResultsOf(const std::string& text)
{
  const std::unique_ptr<Project> project = ReadProject(text);
  project->problem.solverSettings.processor = TestedProcessor();
  project->Calc(1, nullptr);
  project->CalcStrengthsAndReactions(nullptr);
  const TemporaryFolder folder;
  {
    std::ofstream out(folder.Path() / "text");
    project->WriteResults(out);
    std::ofstream post(folder.Path() / "post");
    project->WriteKivResults(post, nullptr);
  }
  return folder.Read("text") + folder.Read("post");
}

CasesModel PlaneFrame()
{
  return {"plane frame",
          "problem type: 2d\nSolver SkyLine\nGravityDirection 0 -1 0\n"
          "mesh dimension = 2 elemtype Linear nnode = 2\n"
          "coordinates\n1 0 0\n2 0 4\n3 6 5\n4 6 0\nend coordinates\n"
          "elements\n1 1 2 1\n2 2 3 1\n3 4 3 1\nend elements\n"
          "materials\n1 E=2e7 A=0.1 Iz=1e-3",
          "\nend materials\n"
          "constraints\n1 111 0 0 0\n4 112 0 0 5000\nend constraints\n"
          "elem_rotules\n2 10\nend elem_rotules\n",
          "global_pressure_loads\n2 0 -3 0 0\nend global_pressure_loads\n"
          "nodal_point_loads\n2 7 0 0\nend nodal_point_loads\n"
          "constraints\n4 010 0 0.002 0\nend constraints\n",
          {"nodal_point_loads\n2 10 0 0\n3 0 -5 2\nend nodal_point_loads\n",
           "global_pressure_loads\n2 0 -12 0 0\n1 4 0 0 0\nend global_pressure_loads\n"
           "temperature_loads\n2 1e-5 30\nend temperature_loads\n",
           "constraints\n4 110 0 -0.01 0\nend constraints\n"
           "nodal_point_loads\n2 1 0 0\nend nodal_point_loads\n"}};
}

// A skew support, a vertical member, a hinge and a torque.
CasesModel SpaceFrame()
{
  return {"space frame",
          "problem type: 3d\nSolver SkyLine\nGravityDirection 0 0 -1\nNumOfDivisions 7\n"
          "mesh dimension = 3 elemtype Linear nnode = 2\n"
          "coordinates\n1 0 0 0\n2 0 0 3\n3 5 0 3\n4 5 4 3\n5 5 4 0\nend coordinates\n"
          "elements\n1 1 2 1\n2 2 3 1\n3 3 4 1\n4 4 5 1\nend elements\n"
          "materials\n1 E=2e8 nu=0.3 G=8e7 A=0.01 Iy=2e-5 Iz=4e-5 J=1e-5",
          "\nend materials\n"
          "constraints\n1 111111 0 0 0 0 0 0\n5 111000 0 0 0 0 0 0 Euler1=0.3 Euler2=0.2 "
          "Euler3=0.1\nend constraints\n"
          "elem_rotules\n3 01\nend elem_rotules\n",
          "nodal_point_loads\n3 0 2 0 0 0 1\nend nodal_point_loads\n",
          {"nodal_point_loads\n3 0 0 -8 0 0 0\nend nodal_point_loads\n",
           "local_pressure_loads\n2 0 1 -2 0.5\n3 0 0 -4 0\nend local_pressure_loads\n",
           "constraints\n5 001000 0 0 -0.01 0 0 0\nend constraints\n"}};
}

CasesModel Plate(const std::string& name, const std::string& settings, bool sixNodes)
{
  ShellModel shell = GridShell(3, 2, [](double u, double v) {
    return Vector3{3 * u, 2 * v, u < 0.5 ? 0.0 : u - 0.5};
  });
  shell.settings = "Solver SkyLine\nGravityDirection 0 0 -1\n" + settings;
  shell.material = "E=1e6 nu=0.25 G=4e5 t=0.1@";
  for (const int corner : {1, 2, 4})
    shell.Hold(corner, "111111");
  for (const int corner : {9, 12})
    shell.Hold(corner, "111100");
  if (sixNodes)
    shell = WithMidSideNodes(shell);
  const std::string text = shell.Text();
  const std::size_t at = text.find('@');
  return {name,
          text.substr(0, at),
          text.substr(at + 1),
          "nodal_point_loads\n6 1 2 -3 0 0 0\nend nodal_point_loads\n",
          {"nodal_point_loads\n6 0 0 -5 0 0 0\n7 0 0 -5 1 0 0\nend nodal_point_loads\n",
           "global_pressure_loads\n" + shell.OnAll("0 0 -2") + "end global_pressure_loads\n",
           "constraints\n1 001000 0 0 -0.01 0 0 0\n2 101000 0.001 0 -0.02 0 0 0\n"
           "end constraints\n"}};
}

CasesModel Block(const std::string& name, int nnode)
{
  SolidModel solid = SolidBlock({2, 1, 1}, {2, 1, 1}, nnode);
  solid.settings = "Solver SkyLine\nGravityDirection 0 0 -1\n";
  solid.material = "E 1000 nu 0.25@";
  for (int node = 1; node <= static_cast<int>(solid.nodes.size()); ++node) {
    if (solid.nodes[node - 1][0] == 0.0)
      solid.supports[node] = {};
  }
  const std::string held = std::to_string(solid.NodeAt({0, 0, 0}));
  const std::string tip = std::to_string(solid.NodeAt({2, 1, 1}));
  const std::string text = solid.Text();
  const std::size_t at = text.find('@');
  return {name,
          text.substr(0, at),
          text.substr(at + 1),
          "nodal_point_loads\n" + tip + " 1 0 0\nend nodal_point_loads\n",
          {"nodal_point_loads\n" + tip + " 1 2 -3\nend nodal_point_loads\n",
           "global_pressure_loads\n1 0 0 0 -2\n2 0 1 0 0\nend global_pressure_loads\n",
           "constraints\n" + held + " 001 0 0 0.02\nend constraints\n"}};
}

std::vector<CasesModel> AllFamilies()
{
  return {PlaneFrame(),
          SpaceFrame(),
          Plate("shells of three nodes", "", false),
          Plate("shells of six nodes", "", true),
          Plate("converted shells", "ConvertTo6Nodes 1\n", false),
          Plate("principal values", "MainStresses 1\n", false),
          Plate("both values, smoothed", "MainAndLocalStresses 1\nDoSmoothing 1\n", true),
          Plate("principal values, smoothed", "MainStresses 1\nDoSmoothing 1\n", false),
          Plate("smoothed", "DoSmoothing 1\n", true),
          Plate("refined shells", "ShellFormulation Refined\n", false),
          Plate("refined six", "ShellFormulation Refined\nMainAndLocalStresses 1\n", true),
          Plate("refined converted", "ShellFormulation Refined\nConvertTo6Nodes 1\n", false),
          Block("solids of four nodes", 4),
          Block("solids of ten nodes", 10)};
}

// All values of a group for one combination.
std::vector<double> ValuesOf(const SolvedCases& cases, const ValueGroup& group,
                             const Combination& combination)
{
  GroupValues values(cases, group, {&combination, 1});
  values.Compute(0, group.items);
  const std::span<const double> all = values.Of(0);
  return {all.begin(), all.end()};
}

double LargestOf(const std::vector<double>& values)
{
  double largest = 0.0;
  for (const double value : values)
    largest = std::max(largest, std::fabs(value));
  return largest;
}

// A block of loads with all values times a factor: the numbers after the record's number and, for
// supports, its flags.
std::string Scaled(const std::string& block, double factor)
{
  std::istringstream lines(block);
  std::string line;
  std::string keyword;
  std::string text;
  while (std::getline(lines, line)) {
    std::istringstream words(line);
    std::string word;
    words >> word;
    if (keyword.empty() || word == "end") {
      keyword = keyword.empty() ? word : "";
      text += line + "\n";
      continue;
    }
    text += word;
    if (keyword == "constraints") {
      words >> word;
      text += " " + word;
    }
    for (int k = 0; words >> word; ++k) {
      // Of a temperature load only the change of temperature.
      const double value =
          std::stod(word) * (keyword == "temperature_loads" && k == 0 ? 1.0 : factor);
      char number[40];
      std::snprintf(number, sizeof number, " %.17g", value);
      text += number;
    }
    text += "\n";
  }
  return text;
}

}  // namespace

TEST(SolvedCases, WriteTheFilesOfTheEquivalentProblem)
{
  for (const CasesModel& model : AllFamilies()) {
    SCOPED_TRACE(model.name);
    const std::vector<TestCase> list = TestCasesOf(model);
    SolvedModel solved(model, list);
    for (std::size_t k = 0; k < list.size(); ++k) {
      SCOPED_TRACE(k);
      const std::string expected = ResultsOf(EquivalentText(model, list[k]));
      EXPECT_GT(expected.size(), 500u);
      EXPECT_TRUE(solved.Write(solved.Cases().Column(static_cast<int>(k))) == expected);
    }
  }
}

// More cases than are solved at a time, in another order and number.
TEST(SolvedCases, ColumnsDoNotDependOnTheirNeighbours)
{
  for (const CasesModel& model : {SpaceFrame(), Plate("plate", "", false)}) {
    std::vector<TestCase> few = TestCasesOf(model);
    std::vector<TestCase> many;
    for (int round = 0; round < 6; ++round) {
      for (auto one = few.rbegin(); one != few.rend(); ++one) {
        many.push_back(*one);
        if (!one->fromModel)
          many.back().loads = Scaled(one->loads, round == 5 ? 1.0 : 0.3 * round + 0.1);
      }
    }
    const SolvedModel a(model, few);
    const SolvedModel b(model, many);
    for (std::size_t k = 0; k < few.size(); ++k) {
      const std::span<const double> x = a.Cases().Column(static_cast<int>(k));
      const std::span<const double> y = b.Cases().Column(static_cast<int>(many.size() - 1 - k));
      EXPECT_TRUE(std::equal(x.begin(), x.end(), y.begin(), y.end())) << k;
    }
  }
}

// Results of all kinds, shells with smoothed principal values included, come from the columns and
// an image of the model that was solved.
TEST(SolvedCases, StoredColumnsGiveTheSameResults)
{
  for (const CasesModel& model : AllFamilies()) {
    SCOPED_TRACE(model.name);
    SolvedModel solved(model, TestCasesOf(model));
    Problem problem{100};
    ReadImage(ImageOf(solved.Model()), problem);
    std::vector<std::vector<double>> columns;
    std::vector<SolutionAccuracy> accuracies;
    for (int k = 0; k < solved.Cases().Count(); ++k) {
      const std::span<const double> column = solved.Cases().Column(k);
      columns.emplace_back(column.begin(), column.end());
      accuracies.push_back(solved.Cases().Accuracy(k));
    }
    auto damaged = columns;
    damaged.back().pop_back();
    ExpectFatal(
        [&] {
          const SolvedCases none(problem, FamiliesOf(problem), std::move(damaged),
                                 std::vector(accuracies));
        },
        "error: the stored data are damaged, or of another version of the program\n");
    const SolvedCases stored(problem, FamiliesOf(problem), std::move(columns),
                             std::move(accuracies));
    ASSERT_EQ(stored.Count(), solved.Cases().Count());
    for (int k = 0; k < stored.Count(); ++k) {
      EXPECT_EQ(stored.Accuracy(k).residual, solved.Cases().Accuracy(k).residual);
      EXPECT_TRUE(Written(problem, stored.Layout(), stored.Column(k)) ==
                  solved.Write(solved.Cases().Column(k)));
    }
  }
}

// The combined results are those of the combined loads, for everything linear and for what is
// computed from it.
TEST(SolvedCases, CombinationsAreTheAnalysisOfTheFactoredLoads)
{
  const std::vector<double> factors = {1.35, -0.8, 2.5};
  for (const CasesModel& model : AllFamilies()) {
    SCOPED_TRACE(model.name);
    std::vector<TestCase> list;
    std::string together;
    Combination combination{"all", {}};
    for (std::size_t k = 0; k < factors.size(); ++k) {
      list.push_back({model.loads[k]});
      together += Scaled(model.loads[k], factors[k]);
      combination.factors.push_back({static_cast<int>(k), factors[k]});
    }
    list.push_back({together});
    const SolvedModel solved(model, list);
    const SolvedCases& cases = solved.Cases();
    const Combination direct{"direct", {{3, 1.0}}};
    for (const ValueGroup& group : cases.Layout().Groups()) {
      SCOPED_TRACE(static_cast<int>(group.kind));
      const std::vector<double> a = ValuesOf(cases, group, combination);
      const std::vector<double> b = ValuesOf(cases, group, direct);
      ASSERT_EQ(a.size(), b.size());
      // The estimated errors are below 1e-10 here.
      const double tolerance = 1e-9 * LargestOf(b);
      EXPECT_GT(tolerance, 0.0);
      for (std::size_t i = 0; i < a.size(); ++i)
        ASSERT_NEAR(a[i], b[i], tolerance) << i;
    }
  }
}

// An iteration solves each case anew, with its own settlements; a pre-solve has another model.
TEST(SolvedCases, IterationsGiveTheSame)
{
  const struct
  {
    CasesModel direct;
    const char* solver;
    double tolerance;
  } runs[] = {
      {SpaceFrame(), "Solver Sparse 1e-12 1e-10 20000", 1e-5},
      {Plate("plate", "ConvertTo6Nodes 1\n", false), "Solver Sparse 1e-12 1e-10 20000", 1e-5},
      // Its tolerance is that of the program, 1e-5 of the loads.
      {Plate("plate", "ConvertTo6Nodes 1\n", false), "Solver Double", 1e-2},
  };
  for (const auto& [direct, solver, tolerance] : runs) {
    CasesModel iterated = direct;
    const std::string sky = "Solver SkyLine";
    iterated.before.replace(iterated.before.find(sky), sky.size(), solver);
    const std::vector<TestCase> list = TestCasesOf(direct);
    const SolvedModel a(direct, list);
    const SolvedModel b(iterated, list);
    for (int k = 0; k < static_cast<int>(list.size()); ++k) {
      SCOPED_TRACE(k);
      for (const ValueGroup& group : a.Cases().Layout().Groups()) {
        const Combination only{"only", {{k, 1.0}}};
        const std::vector<double> x = ValuesOf(a.Cases(), group, only);
        const std::vector<double> y = ValuesOf(b.Cases(), group, only);
        ASSERT_EQ(x.size(), y.size());
        // Forces of stiff parts lose digits of the displacements.
        for (std::size_t i = 0; i < x.size(); ++i)
          ASSERT_NEAR(x[i], y[i], tolerance * LargestOf(x)) << static_cast<int>(group.kind);
      }
    }
  }
}

// The files of a combination are those of a problem with the factored loads, to the digits that
// are printed.
TEST(SolvedCases, WriteCombinations)
{
  const CasesModel model = SpaceFrame();
  std::vector<TestCase> list = {{model.loads[0]}, {model.loads[1]}};
  SolvedModel solved(model, list);
  const Combination combination{"sum", {{0, 2.0}, {1, 3.0}}};
  const std::string expected =
      ResultsOf(model.Text(false, Scaled(model.loads[0], 2.0) + Scaled(model.loads[1], 3.0)));
  const std::string written = solved.Write(CombinedColumn(solved.Cases(), combination));
  std::istringstream a(written);
  std::istringstream b(expected);
  std::string x;
  std::string y;
  int numbers = 0;
  while (a >> x && b >> y) {
    char* end = nullptr;
    const double value = std::strtod(y.c_str(), &end);
    if (*end) {
      ASSERT_EQ(x, y);
      continue;
    }
    ++numbers;
    ASSERT_NEAR(std::stod(x), value, 1e-5 * std::fabs(value) + 1e-9);
  }
  EXPECT_GT(numbers, 300);
  EXPECT_FALSE(b >> y);
}

TEST(SolvedCases, WarningsNameTheCase)
{
  CasesModel model = SpaceFrame();
  const std::string sky = "Solver SkyLine";
  model.before.replace(model.before.find(sky), sky.size(), "Solver Sparse 1e-30 0.5 11");
  const auto problem = ReadProblemText(model.Text(false, ""));
  std::vector<LoadSet> loads;
  for (const std::string& blocks : {model.loads[0], model.loads[1]}) {
    TextScan scan(blocks);
    ReadLoadBlocks(scan, *problem);
    loads.push_back(ExtractLoads(*problem));
    loads.back().name = "W" + std::to_string(loads.size());
  }
  const std::string messages = MessagesOf([&](std::FILE* info) {
    const SolvedCases solved(*problem, FamiliesOf(*problem), loads, {.info = info});
  });
  for (const char* name : {"W1", "W2"})
    EXPECT_NE(messages.find("warning: load case '" + std::string(name) +
                            "': the iteration ended before its tolerance"),
              std::string::npos)
        << messages;
}

TEST(SolvedCases, LeaveTheLoadsOfTheModel)
{
  const CasesModel model = SpaceFrame();
  const auto problem = ReadProblemText(model.Text(true, model.own));
  LoadSet own = ExtractLoads(*problem);
  ASSERT_EQ(own.nodal.size(), 1u);
  EXPECT_TRUE(own.selfWeight);
  EXPECT_FALSE(problem->selfWeight);
  InstallLoads(std::move(own), *problem);
  EXPECT_TRUE(problem->selfWeight);
  const LoadSet again = ExtractLoads(*problem);
  ASSERT_EQ(again.nodal.size(), 1u);
}

// At every point the minimum and the maximum are those of a separate evaluation, and the other
// values are those of the governing combination there.
TEST(Envelope, ExtremesAreThoseOfEachCombinationByItself)
{
  for (const CasesModel& model : {SpaceFrame(), Plate("plate", "", true), Block("solids", 4)}) {
    SCOPED_TRACE(model.name);
    std::vector<TestCase> list;
    for (const std::string& loads : model.loads)
      list.push_back({loads});
    const SolvedModel solved(model, list);
    const SolvedCases& cases = solved.Cases();
    const std::vector<Combination> combinations = {{"1", {{0, 1.5}}},
                                                   {"2", {{0, 1.0}, {1, 1.2}}},
                                                   {"3", {{1, -1.0}, {2, 0.7}}},
                                                   {"4", {{0, 1.5}}},
                                                   {"5", {{0, 0.4}, {1, 0.4}, {2, -0.4}}}};
    for (const ValueGroup& group : cases.Layout().Groups()) {
      std::vector<std::vector<double>> all;
      for (const Combination& one : combinations)
        all.push_back(ValuesOf(cases, group, one));
      std::size_t visited = 0;
      ForEachEnvelopePoint(cases, group, combinations, [&](const EnvelopePoint& at) {
        const std::size_t point =
            (static_cast<std::size_t>(at.item) * group.points + at.point) * group.Width();
        const std::size_t index = point + at.component;
        ASSERT_EQ(index, visited++);
        double low = all[0][index];
        double high = low;
        double size = 0.0;
        for (const std::vector<double>& values : all) {
          low = std::min(low, values[index]);
          high = std::max(high, values[index]);
          size = std::max(size, LargestOf(values));
        }
        EXPECT_NEAR(at.minimum.value, low, 1e-12 * size);
        EXPECT_NEAR(at.maximum.value, high, 1e-12 * size);
        for (const Extreme& extreme : {at.minimum, at.maximum}) {
          const std::vector<double>& values = all[extreme.combination];
          EXPECT_EQ(extreme.value, values[index]);
          EXPECT_NE(extreme.combination, 3) << "the first of two equal combinations governs";
          ASSERT_EQ(extreme.values.size(), static_cast<std::size_t>(group.Width()));
          for (int c = 0; c < group.Width(); ++c)
            EXPECT_EQ(extreme.values[c], values[point + c]);
        }
      });
      EXPECT_EQ(visited, all[0].size());
    }
  }
}

// Values that differ by rounding only: the same sum in other orders.
TEST(Envelope, TiesGoToTheFirst)
{
  const CasesModel model = SpaceFrame();
  const SolvedModel solved(model, {{model.loads[0]}, {model.loads[1]}, {model.loads[0]}});
  const std::vector<Combination> combinations = {{"first", {{0, 0.3}, {1, 1.0}}},
                                                 {"second", {{0, 0.1}, {1, 1.0}, {2, 0.2}}}};
  const SolvedCases& cases = solved.Cases();
  for (const ValueGroup& group : cases.Layout().Groups()) {
    ForEachEnvelopePoint(cases, group, combinations, [&](const EnvelopePoint& at) {
      EXPECT_EQ(at.minimum.combination, 0);
      EXPECT_EQ(at.maximum.combination, 0);
    });
  }
}

// The values at a division point are those of a solved problem.
TEST(ResultLayout, ValuesAreThoseOfASolvedProblem)
{
  for (const CasesModel& model : {PlaneFrame(), SpaceFrame()}) {
    const Solved reference(model.Text(false, model.loads[1]));
    const SolvedModel solved(model, {{model.loads[1]}});
    const SolvedCases& cases = solved.Cases();
    const Combination only{"only", {{0, 1.0}}};
    for (const ValueGroup& group : cases.Layout().Groups()) {
      const std::vector<double> values = ValuesOf(cases, group, only);
      for (int item = 0; item < group.items; ++item) {
        const int number = cases.Layout().NumberOf(group, item);
        const double* at = values.data() + item * group.ValuesOfItem();
        if (group.kind == ValueKind::Displacements)
          ExpectValues({at, at + group.linear}, reference.Displacement(number), 1e-12);
        if (group.kind == ValueKind::Reactions)
          ExpectValues({at, at + group.linear}, reference.Reaction(number), 1e-12);
      }
    }
  }
}

}  // namespace morlen
