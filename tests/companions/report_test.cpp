#include <gtest/gtest.h>

#include <cmath>
#include <fstream>
#include <nlohmann/json.hpp>

#include "problem/problem.h"
#include "problem/problem_reader.h"
#include "report/applied_loads.h"
#include "report/equilibrium.h"
#include "report/packed.h"
#include "report/page.h"
#include "report/page_data.h"
#include "report/viewer_page.h"
#include "support/run.h"

namespace morlen {

namespace {

/// A model and its loads, read from the text of a problem file.
struct Loaded
{
  explicit Loaded(std::string_view text) : problem(100)
  {
    const TemporaryFolder folder;
    folder.Write("m.dat", text);
    std::ifstream in(folder.Path() / "m.dat");
    ReadProblem(in, problem);
    model = model::ModelOf(problem);
    PrepareLoads(problem);
    loads = AppliedLoadsOf(problem, model);
  }

  Problem problem;
  model::Model model;
  AppliedLoads loads;
};

// A cantilever along X of length 4 with A = 0.1. Loads per length: weight 20·0.1 = 2 along -Y, 3
// along x', 5 along -y'. Loads at the tip: 7, 8 and the moment 9.
constexpr const char* kCantilever = R"(problem type: 2d
GravityDirection 0 -1 0
mesh dimension = 2 elemtype Linear nnode = 2
coordinates
1 10 0
2 14 0
end coordinates
elements
5 1 2 1
end elements
materials
1 E=1e6 A=0.1 Iz=0.01 Weight=20
end materials
constraints
1 111 0 0 0
end constraints
nodal_point_loads
2 7 8 9
end nodal_point_loads
local_pressure_loads
5 3 -5
end local_pressure_loads
)";

void ExpectVec(const Vec3& actual, const Vec3& expected)
{
  for (int k = 0; k < 3; ++k)
    EXPECT_NEAR(actual[k], expected[k], 1e-12) << k;
}

/// Results with these reactions at the first node.
results::Results Reactions(const model::Model& model, const Vec3& force, const Vec3& moment)
{
  results::Results results;
  results.nodes.resize(model.nodes.size());
  results.nodes.front().force = force;
  results.nodes.front().moment = moment;
  return results;
}

std::vector<unsigned char> Bytes(std::string_view text)
{
  return {text.begin(), text.end()};
}

ReportContent ContentOf(const Loaded& loaded, const results::Results& results,
                        const Equilibrium& equilibrium)
{
  return {.file = "m.dat",
          .description = {"<b>&"},
          .model = loaded.model,
          .results = results,
          .loads = loaded.loads,
          .equilibrium = equilibrium,
          .advice = "",
          .check = std::nullopt};
}

}  // namespace

TEST(AppliedLoads, ContainTheEquivalentNodalLoadsOfABeam)
{
  const Loaded loaded(kCantilever);
  // q L / 2 at each end, and q L² / 12 with q = -7 across the beam.
  ExpectVec(loaded.loads.nodes[0].force, {6.0, -14.0, 0.0});
  ExpectVec(loaded.loads.nodes[0].moment, {0.0, 0.0, -28.0 / 3.0});
  ExpectVec(loaded.loads.nodes[1].force, {13.0, -6.0, 0.0});
  ExpectVec(loaded.loads.nodes[1].moment, {0.0, 0.0, 28.0 / 3.0 + 9.0});
  ASSERT_EQ(loaded.loads.onBeams.size(), 1u);
  ExpectVec(loaded.loads.onBeams.front().q, {3.0, -7.0, 0.0});
  for (const Vec3& force : loaded.loads.onSurfaces)
    ExpectVec(force, {});
}

TEST(AppliedLoads, OfAShellAreNodalLoads)
{
  const Loaded loaded(R"(problem type: 3d
mesh dimension = 3 elemtype Triangle nnode = 3
coordinates
1 0 0 0
2 3 0 0
3 0 2 0
end coordinates
elements
1 1 2 3 1
end elements
materials
1 E=1e6 nu=0.2 t=0.1
end materials
constraints
1 111111 0 0 0 0 0 0
end constraints
global_pressure_loads
1 0 0 -4
end global_pressure_loads
)");
  Vec3 sum{};
  for (const Vec3& force : loaded.loads.onSurfaces)
    sum[2] += force[2];
  ExpectVec(sum, {0.0, 0.0, -12.0});
  EXPECT_TRUE(loaded.loads.onBeams.empty());
}

// The moments about the normal that a refined triangle gets from a load on an edge cancel.
TEST(AppliedLoads, OnEdgesOfARefinedShellKeepTheirSum)
{
  const Loaded loaded(R"(problem type: 3d
ShellFormulation Refined
mesh dimension = 3 elemtype Triangle nnode = 3
coordinates
1 0 0 0
2 3 0 0
3 0 2 0
end coordinates
elements
1 1 2 3 1
end elements
materials
1 E=1e6 nu=0.2 G=4e5 t=0.1
end materials
constraints
1 111111 0 0 0 0 0 0
end constraints
face_loads
1 0 0 8 0
end face_loads
)");
  // 8 per length on the edge of 3: 12 at each end, and the moments 8·3²/8 = 9.
  ExpectVec(loaded.loads.nodes[0].force, {0.0, 12.0, 0.0});
  ExpectVec(loaded.loads.nodes[0].moment, {0.0, 0.0, 9.0});
  ExpectVec(loaded.loads.nodes[1].force, {0.0, 12.0, 0.0});
  ExpectVec(loaded.loads.nodes[1].moment, {0.0, 0.0, -9.0});
}

TEST(Equilibrium, OfTheRightReactionsIsExact)
{
  const Loaded loaded(kCantilever);
  // Moments about the support: 8·4 + 9 of the tip loads, -7·4·2 of the load across the beam.
  const results::Results results =
      Reactions(loaded.model, {-19.0, 20.0, 0.0}, {0.0, 0.0, 56.0 - 32.0 - 9.0});
  const Equilibrium found = EquilibriumOf(loaded.model, loaded.loads.nodes, results);
  ExpectVec(found.center, {12.0, 0.0, 0.0});
  ExpectVec(found.loads.force, {19.0, -20.0, 0.0});
  ExpectVec(found.loads.moment, {0.0, 0.0, 8.0 * 2.0 + 9.0});
  ExpectVec(found.reactions.moment, {0.0, 0.0, 15.0 - 20.0 * 2.0});
  EXPECT_NEAR(found.residual, 0.0, 1e-15);
  EXPECT_TRUE(found.IsBalanced());
}

TEST(Equilibrium, ResidualIsRelativeToTheSizesOfLoadsOrReactions)
{
  const Loaded loaded(kCantilever);
  // The sizes of the loads add up to 6 + 14 + 13 + 6 = 39, those of the reactions to 49.
  const results::Results results =
      Reactions(loaded.model, {-19.0, 30.0, 0.0}, {0.0, 0.0, 15.0 + 20.0});
  const Equilibrium found = EquilibriumOf(loaded.model, loaded.loads.nodes, results);
  EXPECT_NEAR(found.residual, 10.0 / 49.0, 1e-12);
  EXPECT_FALSE(found.IsBalanced());
}

// Opposite moments of 28/3 at the ends, reactions of 1e-14 from rounding: the scale of forces is
// 1e-9 of 56/3 over half the length of 4, that of moments is 56/3.
TEST(Equilibrium, OfBalancedMomentsIsRelativeToThem)
{
  const Loaded loaded(kCantilever);
  std::vector<Wrench> moments(loaded.model.nodes.size());
  moments[0].moment = {0.0, 0.0, -28.0 / 3.0};
  moments[1].moment = {0.0, 0.0, 28.0 / 3.0};
  const auto residualWith = [&](double force, double moment) {
    return EquilibriumOf(loaded.model, moments,
                         Reactions(loaded.model, {force, 0.0, 0.0}, {0.0, 0.0, moment}))
        .residual;
  };
  EXPECT_NEAR(residualWith(1e-14, 0.0), 1e-14 / (1e-9 * 28.0 / 3.0), 1e-12);
  EXPECT_NEAR(residualWith(0.0, 1.0), 1.0 / (56.0 / 3.0), 1e-9);
  EXPECT_NEAR(residualWith(1.0, 0.0), 1.0, 1e-12);
}

TEST(Equilibrium, FindsAMissingMoment)
{
  const Loaded loaded(kCantilever);
  const results::Results results = Reactions(loaded.model, {-19.0, 20.0, 0.0}, {});
  const Equilibrium found = EquilibriumOf(loaded.model, loaded.loads.nodes, results);
  EXPECT_NEAR(found.residual, 15.0 / (39.0 * 2.0 + 28.0 / 3.0 * 2.0 + 9.0), 1e-12);
}

TEST(Equilibrium, AdvisesByTheSolverAndTheDifference)
{
  const std::string iterate =
      "The iteration of the equations may have ended too early, as it does with thin curved "
      "shells: solve with `Solver SkyLine`.";
  const std::string mechanism =
      "The structure may be close to a mechanism, or its stiffnesses too far apart.";
  const std::string drilling =
      "Only the moments differ: the stiffness of shells against turning about their normal takes "
      "moments about it, which no reaction balances.";
  Equilibrium off;
  model::Model model;
  EXPECT_EQ(AdviceOf(off, model, ShellFormulation::Standard, true), "");
  off.residual = 0.5;
  model.elements.resize(1);
  model.elements[0].kind = model::Kind::Beam;
  EXPECT_EQ(AdviceOf(off, model, ShellFormulation::Standard, true), iterate);
  EXPECT_EQ(AdviceOf(off, model, ShellFormulation::Standard, false), mechanism);
  model.elements[0].kind = model::Kind::Shell;
  EXPECT_EQ(AdviceOf(off, model, ShellFormulation::Standard, true), drilling + " " + iterate);
  EXPECT_EQ(AdviceOf(off, model, ShellFormulation::Standard, false), drilling);
  EXPECT_EQ(AdviceOf(off, model, ShellFormulation::Refined, false), mechanism);
  off.forceResidual = 0.5;
  EXPECT_EQ(AdviceOf(off, model, ShellFormulation::Standard, false), mechanism);
}

TEST(Equilibrium, WithoutLoadsAndReactionsIsBalanced)
{
  const Loaded loaded(kCantilever);
  const std::vector<Wrench> none(loaded.model.nodes.size());
  EXPECT_EQ(EquilibriumOf(loaded.model, none, Reactions(loaded.model, {}, {})).residual, 0.0);
}

// A settlement that causes no forces has reactions of 1e-14 of those of the other cases.
TEST(Equilibrium, ResidualsOfCasesAreRelativeToTheLargestOfAll)
{
  Equilibrium cases[3];
  cases[0].scale = 200.0;
  cases[0].residual = 1e-3;
  cases[1].scale = 1e-12;
  cases[1].residual = 0.7;
  cases[2].scale = 1e-6;
  cases[2].residual = 0.5;
  RelateToLargest(cases);
  EXPECT_EQ(cases[0].residual, 1e-3);
  EXPECT_NEAR(cases[1].residual, 0.7 * 1e-12 / 2e-7, 1e-18);
  EXPECT_TRUE(cases[1].IsBalanced());
  EXPECT_EQ(cases[2].residual, 0.5);
}

TEST(Base64, GivesTheTestVectors)  // RFC 4648, section 10
{
  for (const auto& [text, coded] : {std::pair{"", ""},
                                    {"f", "Zg=="},
                                    {"fo", "Zm8="},
                                    {"foo", "Zm9v"},
                                    {"foob", "Zm9vYg=="},
                                    {"fooba", "Zm9vYmE="},
                                    {"foobar", "Zm9vYmFy"}})
    EXPECT_EQ(Base64(Bytes(text)), coded);
}

TEST(Packed, NumbersOfSixDigitsTakeFourBytes)
{
  static const struct
  {
    std::vector<double> values;
    const char* type;
  } cases[] = {
      {{0.0, -1.23456e-5, 123456.0, 1e30}, "f4"},
      {{1.0, 1.234567}, "f8"},
      {{1e-40}, "f8"},
      {{1e39}, "f8"},
  };
  for (const auto& c : cases)
    EXPECT_EQ(Packed(std::span<const double>(c.values))["type"], c.type) << c.values.front();
}

TEST(Packed, ExactlyLosesNothing)
{
  EXPECT_EQ(PackedExactly(std::vector<double>{0.5, -3.0})["type"], "f4");
  EXPECT_EQ(PackedExactly(std::vector<double>{0.5, 0.1})["type"], "f8");
  EXPECT_EQ(PackedExactly(std::vector<double>{1e300})["type"], "f8");
}

TEST(Packed, ValuesAreLittleEndian)
{
  EXPECT_EQ(Packed(std::vector<double>{1.0})["data"], "AACAPw==");  // 00 00 80 3f
  EXPECT_EQ(Packed(std::vector<int>{1, -1})["data"], "AQAAAP////8=");
}

TEST(Packed, ColumnsOfATable)
{
  const tables::Table table{"t",
                            {{"number", ""}, {"kind", ""}, {"value", "m"}},
                            {7, "beam", 1.0, 8, "shell", std::monostate{}, 9, "beam", 2.0}};
  const auto packed = Packed(table);
  EXPECT_EQ(packed["rows"], 3);
  EXPECT_EQ(packed["columns"][0]["type"], "i4");
  EXPECT_EQ(packed["columns"][1]["words"], (std::vector<std::string>{"beam", "shell"}));
  EXPECT_EQ(packed["columns"][1]["data"], Packed(std::vector<int>{0, 1, 0})["data"]);
  EXPECT_EQ(packed["columns"][2]["unit"], "m");
}

TEST(HtmlText, HasNoMarkup)
{
  EXPECT_EQ(HtmlText("</title><b a=\"1\">&amp;"),
            "&lt;/title&gt;&lt;b a=&quot;1&quot;&gt;&amp;amp;");
  EXPECT_EQ(HtmlText("tr\u00e4ger"), "tr\u00e4ger");
  EXPECT_EQ(HtmlText("tr\xe4ger"), "tr?ger");
}

TEST(PageData, IsJsonWithoutMarkup)
{
  const Loaded loaded(kCantilever);
  results::Results results = Reactions(loaded.model, {}, {});
  results.beamPoints.resize(static_cast<std::size_t>(loaded.model.beamPoints));
  const Equilibrium equilibrium = EquilibriumOf(loaded.model, loaded.loads.nodes, results);
  const std::string text = PageData(ContentOf(loaded, results, equilibrium));
  EXPECT_EQ(text.find_first_of("<>&"), std::string::npos);
  const nlohmann::json data = nlohmann::json::parse(text);
  EXPECT_EQ(data["model"]["description"][0], "<b>&");
  EXPECT_EQ(data["model"]["file"], "m.dat");
  EXPECT_TRUE(data["check"].is_null());
  EXPECT_FALSE(data["equilibrium"]["balanced"]);
}

TEST(PageData, HasTheFindingsOfACheck)
{
  const Loaded loaded(kCantilever);
  results::Results results = Reactions(loaded.model, {}, {});
  results.beamPoints.resize(static_cast<std::size_t>(loaded.model.beamPoints));
  const Equilibrium equilibrium = EquilibriumOf(loaded.model, loaded.loads.nodes, results);
  ReportContent content = ContentOf(loaded, results, equilibrium);
  content.check = {{.error = false, .place = "m.dat:3:1", .text = "node 4 is not used"}};
  const nlohmann::json data = nlohmann::json::parse(PageData(content));
  EXPECT_EQ(data["check"][0]["place"], "m.dat:3:1");
  EXPECT_EQ(data["check"][0]["error"], false);
}

TEST(PageData, OfAModelHasNoResultsAndTheMotionsOfItsFindings)
{
  const Loaded loaded(kCantilever);
  check::Motion motion{.nodes = {1, 2}, .vectors = {{0.0, 0.0, 0.0}, {0.0, -4.0, 3.0}}};
  motion.Normalise();
  const nlohmann::json data = nlohmann::json::parse(
      PageDataOfModel("m.dat", {}, loaded.model, loaded.loads,
                      {{.error = true,
                        .place = "m.dat:3:1",
                        .text = "node 2 can move",
                        .motion = std::make_shared<const check::Motion>(motion)}}));
  EXPECT_TRUE(data["equilibrium"].is_null());
  for (const nlohmann::json& table : data["tables"])
    EXPECT_NE(table["name"], "displacements");
  const nlohmann::json& shown = data["check"][0]["motion"];
  EXPECT_EQ(shown["turns"], false);
  EXPECT_EQ(shown["nodes"], nlohmann::json(Packed(std::vector<int>{2})));
  EXPECT_EQ(shown["vectors"], nlohmann::json(Packed(std::vector<double>{0.0, -0.8f, 0.6f})));
}

TEST(DescriptionOf, IsTheCommentAtTheBeginning)
{
  const TemporaryFolder folder;
  folder.Write("a.dat", "problem type: 2d\n# A portal.\n#\n#   |  \r\nmesh\n# not this\n");
  folder.Write("b.dat", "problem type: 2d\nmesh\n# not this\n");
  folder.Write("c.dat", "# First.\nproblem type: 2d\n# not this\n");
  EXPECT_EQ(DescriptionOf(folder.Path() / "a.dat"),
            (std::vector<std::string>{"A portal.", "", "  |"}));
  EXPECT_TRUE(DescriptionOf(folder.Path() / "b.dat").empty());
  EXPECT_EQ(DescriptionOf(folder.Path() / "c.dat"), std::vector<std::string>{"First."});
}

TEST(ViewerPage, IsTheWholeFile)
{
  const std::string file = [] {
    std::ifstream in(std::string(MORLEN_VIEWER_PAGE), std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(in), {});
  }();
  EXPECT_EQ(ViewerPage(), file);
}

TEST(WritePage, PutsTitleAndDataIntoTheirPlaces)
{
  const TemporaryFolder folder;
  testing::internal::CaptureStdout();
  WritePage(folder.Path() / "r.html", "a<b", "{\"@DATA@\":1}");
  testing::internal::GetCapturedStdout();
  const std::string page = folder.Read("r.html");
  EXPECT_NE(page.find("<title>a&lt;b</title>"), std::string::npos);
  EXPECT_NE(page.find("id=\"data\">{\"@DATA@\":1}</script>"), std::string::npos);
}

}  // namespace morlen
