// What morlen-check finds in shells: supports and springs that ConvertTo6Nodes adds, and folds of
// plane shells by rounded coordinates. Every fault is tried on a mesh with it and on one without,
// in several positions in space and units of length.

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <functional>
#include <string>
#include <vector>

#include "check/check.h"
#include "support/frame.h"
#include "support/loaded_beams.h"
#include "support/reference_frame.h"
#include "support/shell_model.h"
#include "support/solved.h"

namespace morlen {

namespace {

constexpr const char* kConversion = "ConvertTo6Nodes";

std::vector<std::string> WarningsWith(const std::string& text, const std::string& part)
{
  std::vector<std::string> found;
  const check::Report report = check::CheckText(text);
  for (const check::Located& problem : report.problems) {
    EXPECT_EQ(problem.severity, check::Severity::Warning) << problem.message;
    if (problem.message.find(part) != std::string::npos)
      found.push_back(problem.message);
  }
  return found;
}

std::vector<std::string> EdgeWarnings(const ShellModel& model)
{
  return WarningsWith(model.Text(), "inside the shell");
}

std::vector<std::string> SpringWarnings(const ShellModel& model)
{
  return WarningsWith(model.Text(), "adds springs");
}

std::vector<std::string> FoldWarnings(const ShellModel& model)
{
  return WarningsWith(model.Text(), "coplanarity angle");
}

bool Has(const std::vector<std::string>& warnings, const std::string& part)
{
  return warnings.size() == 1 && warnings[0].find(part) != std::string::npos;
}

// The position of a model: the axes of the grid in space, and the length of its unit.
struct Position
{
  Vector3 angles{};
  double unit = 1.0;
};

const std::vector<Position>& Positions()
{
  static const std::vector<Position> positions = {
      {}, {{0, 0, 0}, 1000.0}, {{0.3, 0.6, -0.4}, 1.0}, {{0.3, 0.6, -0.4}, 1000.0}};
  return positions;
}

// A square of n by n cells with sides of 10 units.
ShellModel Square(int n, const Position& position, Cut cut = Cut::OneWay)
{
  const auto axes = AxesOfAngles(position.angles);
  ShellModel model = GridShell(
      n, n,
      [&](double u, double v) {
        return position.unit * Turned(axes, {10 * u, 10 * v, 0});
      },
      cut);
  model.settings = kConversion;
  model.material = "E=1e6 nu=0.3 G=3.846153846e5 t=" + Digits(0.2 * position.unit);
  return model;
}

// The nodes of the grid where the condition on the numbers of column and row holds.
template <class Condition>
void Hold(ShellModel& model, int n, const std::string& flags, const Condition& condition)
{
  for (int j = 0; j <= n; ++j) {
    for (int i = 0; i <= n; ++i) {
      if (condition(i, j))
        model.Hold(i + 1 + j * (n + 1), flags);
    }
  }
}

auto OnRim(int n)
{
  return [n](int i, int j) { return i % n == 0 || j % n == 0; };
}

}  // namespace

// With one direction of the diagonals two corners are cut off. The cut edges of a grid of four are
// 4-10, whose triangles are 7 and 8, and 16-22 with the triangles 25 and 26.
TEST(ShellEdges, ReportsCutCornersOfSupportedPlates)
{
  for (const Position& position : Positions()) {
    for (const char* flags : {"111000", "111111"}) {
      ShellModel cut = Square(4, position);
      Hold(cut, 4, flags, OnRim(4));
      const std::vector<std::string> found = EdgeWarnings(cut);
      EXPECT_TRUE(Has(found, "of 2 edges")) << flags;
      EXPECT_TRUE(Has(found, "4-10 of elements 7 and 8 (the other diagonal: 5-9)")) << flags;
      EXPECT_TRUE(Has(found, "16-22 of elements 25 and 26 (the other diagonal: 17-21)")) << flags;
      // In turn the diagonals of an even grid run from every corner.
      ShellModel whole = Square(4, position, Cut::BothWays);
      Hold(whole, 4, flags, OnRim(4));
      EXPECT_TRUE(EdgeWarnings(whole).empty()) << flags;
    }
  }
}

TEST(ShellEdges, ReportsTheConversionOnly)
{
  ShellModel cut = Square(4, {});
  Hold(cut, 4, "111000", OnRim(4));
  cut.settings.clear();
  EXPECT_TRUE(EdgeWarnings(cut).empty());
  cut.settings = "Solver Double";
  EXPECT_TRUE(Has(EdgeWarnings(cut), "Solver Double supports the middle of 2 edges"));
  // The file decides about the middles of its own six-node triangles.
  ShellModel six = Square(4, {});
  six = WithMidSideNodes(six);
  Hold(six, 4, "111000", OnRim(4));
  EXPECT_TRUE(EdgeWarnings(six).empty());
}

// The reported edges make the plate stiffer, and the other diagonals mend it: the deflection in the
// middle of a thin plate is 0.00406 qa⁴/D (S. P. Timoshenko, S. Woinowsky-Krieger, Theory of Plates
// and Shells, 2nd edition, table 8).
TEST(ShellEdges, OtherDiagonalsMendThePlate)
{
  const auto deflection = [](Cut cut) {
    ShellModel plate = Square(8, {}, cut);
    Hold(plate, 8, "111000", OnRim(8));
    plate.rest = Block("global_pressure_loads", plate.OnAll("0 0 1"));
    EXPECT_EQ(EdgeWarnings(plate).empty(), cut == Cut::BothWays);
    return Solved(plate.Text()).Displacement(41)[2];
  };
  const double D = 1e6 * 0.2 * 0.2 * 0.2 / 12 / (1 - 0.3 * 0.3);
  const double thin = 0.00406 * 1e4 / D;
  EXPECT_NEAR(deflection(Cut::BothWays), thin, 0.03 * thin);
  EXPECT_LT(deflection(Cut::OneWay), 0.93 * thin);
}

// Symmetry planes of a plate have only the drilling rotation in common. The plane y = 0 and the
// support at x = 10 share y and the rotation about x.
TEST(ShellEdges, KnowsSymmetryPlanes)
{
  for (const double unit : {1.0, 1000.0}) {
    ShellModel quarter = Square(4, {{}, unit});
    for (int i = 0; i <= 4; ++i) {
      for (int j = 0; j <= 4; ++j) {
        std::string flags(6, '0');
        const auto add = [&flags](const std::string& more) {
          for (int k = 0; k < 6; ++k)
            flags[k] = std::max(flags[k], more[k]);
        };
        if (i == 0)
          add("100011");
        if (j == 0)
          add("010101");
        if (i == 4)
          add("111100");
        if (flags != "000000")
          quarter.Hold(i + 1 + j * 5, flags);
      }
    }
    EXPECT_TRUE(Has(EdgeWarnings(quarter),
                    "an edge inside the shell, because both ends are "
                    "supported: 4-10 of elements 7 and 8"));
  }
}

TEST(ShellEdges, AcceptsSupportsAlongLinesAndOverAreas)
{
  for (const Position& position : Positions()) {
    ShellModel wall = Square(8, position, Cut::BothWays);
    Hold(wall, 8, "111111", [](int, int j) { return j == 4; });
    EXPECT_TRUE(EdgeWarnings(wall).empty());
    for (const int last : {4, 5}) {  // a column head of one or two cells in each direction
      ShellModel head = Square(8, position);
      Hold(head, 8, "111111",
           [last](int i, int j) { return i >= 3 && i <= last && j >= 3 && j <= last; });
      EXPECT_TRUE(EdgeWarnings(head).empty()) << last;
    }
    ShellModel strip = Square(8, position);
    Hold(strip, 8, "111111", [](int i, int j) { return i > 1 && i < 6 && (j == 3 || j == 4); });
    EXPECT_TRUE(EdgeWarnings(strip).empty());
    ShellModel everywhere = Square(8, position);
    Hold(everywhere, 8, "111111", [](int, int) { return true; });
    EXPECT_TRUE(EdgeWarnings(everywhere).empty());
  }
}

// A line of supports inside the shell cuts a corner with the rim, or with another such line.
TEST(ShellEdges, ReportsCutCornersOfLinesInside)
{
  ShellModel wall = Square(8, {}, Cut::BothWays);
  Hold(wall, 8, "111000", [](int i, int j) { return i % 8 == 0 || j % 8 == 0 || i == 3; });
  EXPECT_TRUE(Has(EdgeWarnings(wall), "of 4 edges"));
  EXPECT_TRUE(Has(EdgeWarnings(wall),
                  "3-13 of elements 5 and 6 (the other diagonal: 4-12), 5-13 "
                  "of elements 7 and 8 (the other diagonal: 4-14)"));
  ShellModel angle = Square(8, {});
  Hold(angle, 8, "111000", [](int i, int j) { return (i == 4 && j >= 4) || (j == 4 && i <= 4); });
  EXPECT_TRUE(Has(EdgeWarnings(angle), "an edge inside the shell"));
  EXPECT_TRUE(Has(EdgeWarnings(angle), "40-50 of elements"));
}

TEST(ShellEdges, ReportsNeighbouringPointSupports)
{
  // A column next to the supported rim.
  ShellModel column = Square(8, {}, Cut::BothWays);
  Hold(column, 8, "111000", [](int i, int j) { return j == 0 || (i == 4 && j == 1); });
  EXPECT_TRUE(Has(EdgeWarnings(column), "5-14 of elements"));
  ShellModel slab = Square(8, {});
  Hold(slab, 8, "111000",
       [](int i, int j) { return ((i == 3 || i == 4) && j == 4) || (i == 6 && j == 6); });
  Hold(slab, 8, "000111", [](int i, int j) { return i == 1 && j == 1; });
  EXPECT_TRUE(Has(EdgeWarnings(slab),
                  "an edge inside the shell, because both ends are supported: "
                  "40-41 of elements"));
}

// Two walls and a slab: at the folds, as on the rim, supports run along the edges.
TEST(ShellEdges, AcceptsSupportsAlongFolds)
{
  ShellModel bent = GridShell(
      8, 4,
      [](double u, double v) {
        return Vector3{10 * u, 5 * v, std::fabs(u - 0.5) * 10};
      },
      Cut::BothWays);
  bent.settings = kConversion;
  for (int j = 0; j <= 4; ++j)
    bent.Hold(5 + 9 * j, "111111");
  EXPECT_TRUE(EdgeWarnings(bent).empty());
  // The corner between the fold and the rim is cut with these diagonals.
  for (int i = 0; i <= 8; ++i) {
    if (i != 4)
      bent.Hold(i + 1, "111000");
  }
  EXPECT_TRUE(EdgeWarnings(bent).empty());
  ShellModel cut = GridShell(8, 4, [](double u, double v) {
    return Vector3{10 * u, 5 * v, std::fabs(u - 0.5) * 10};
  });
  cut.settings = kConversion;
  cut.constraints = bent.constraints;
  EXPECT_TRUE(Has(EdgeWarnings(cut), "4-14 of elements 7 and 8 (the other diagonal: 5-13)"));
}

// A rigid plate on springs of all nodes: under a uniform pressure it sinks by the load over the sum
// of the springs.
TEST(ShellSprings, NamesTheFactorByWhichTheyBecomeStiffer)
{
  const auto sinking = [](const std::string& settings, const std::string& warning) {
    ShellModel plate = Square(4, {});
    plate.material = "E=1e9 nu=0.3 G=3.846153846e8 t=1";
    plate.settings = settings;
    for (int node = 1; node <= 25; ++node)
      plate.Hold(node, "112000", {0, 0, 2, 0, 0, 0});
    plate.rest = Block("global_pressure_loads", plate.OnAll("0 0 1"));
    const std::vector<std::string> found = SpringWarnings(plate);
    EXPECT_EQ(found.empty(), warning.empty());
    EXPECT_TRUE(warning.empty() || Has(found, warning)) << testing::PrintToString(found);
    return Solved(plate.Text()).Displacement(13)[2];
  };
  const double given = 100.0 / (25 * 2.0);
  EXPECT_NEAR(sinking("", ""), given, 1e-3 * given);
  // 25 nodes and 56 edges: 81/25 = 3.24.
  const double converted = sinking(kConversion, "in the middle of 56 edges");
  EXPECT_NEAR(converted, given / 3.24, 1e-3 * given);
  sinking(kConversion, "along z 3.24 times");
}

// Refined shells get no middle supports inside, and no springs: the same models have no warning,
// and their results show that there is nothing to warn of.
TEST(ShellEdges, RefinedShellsHaveNoneUnmeant)
{
  ShellModel cut = Square(8, {});
  cut.settings = "ConvertTo6Nodes\nShellFormulation Refined";
  Hold(cut, 8, "111000", OnRim(8));
  cut.rest = Block("global_pressure_loads", cut.OnAll("0 0 1"));
  EXPECT_TRUE(WarningsWith(cut.Text(), "").empty());
  // The thin plate as in OtherDiagonalsMendThePlate, on a mesh of 4 elements along a half span.
  const double D = 1e6 * 0.2 * 0.2 * 0.2 / 12 / (1 - 0.3 * 0.3);
  const double thin = 0.00406 * 1e4 / D;
  EXPECT_NEAR(Solved(cut.Text()).Displacement(41)[2], thin, 0.03 * thin);
}

TEST(ShellSprings, RefinedShellsHaveThoseOfTheFile)
{
  ShellModel plate = Square(4, {});
  plate.material = "E=1e9 nu=0.3 G=3.846153846e8 t=1";
  plate.settings = "ConvertTo6Nodes\nShellFormulation Refined";
  for (int node = 1; node <= 25; ++node)
    plate.Hold(node, "112000", {0, 0, 2, 0, 0, 0});
  plate.rest = Block("global_pressure_loads", plate.OnAll("0 0 1"));
  EXPECT_TRUE(WarningsWith(plate.Text(), "").empty());
  const double given = 100.0 / (25 * 2.0);
  EXPECT_NEAR(Solved(plate.Text()).Displacement(13)[2], given, 1e-3 * given);
}

TEST(ShellSprings, CountsOnlySpringsThatEdgesJoin)
{
  for (const Position& position : Positions()) {
    ShellModel apart = Square(4, position);
    Hold(apart, 4, "111111", [](int i, int) { return i == 0; });
    for (const int node : {13, 15})
      apart.Hold(node, "002000", {0, 0, 5, 0, 0, 0});
    EXPECT_TRUE(SpringWarnings(apart).empty());
    ShellModel joined = apart;
    // Between 5 and 7 the middle gets 6: 18 instead of 12. The spring of node 15 stays as it is.
    joined.Hold(14, "000000");
    joined.constraints += "12 002002 0 0 7 0 0 3\n";
    const std::vector<std::string> found = SpringWarnings(joined);
    EXPECT_TRUE(Has(found, "in the middle of 1 edge,"));
    EXPECT_TRUE(Has(found, "along z 1.5 times. Divide"));
    // With 6 at node 14 three edges join 7, 5, 6 and 5: their middles get 6 + 5.5 + 5.5 = 17 more.
    joined.constraints += "14 002000 0 0 6 0 0 0\n13 000002 0 0 0 0 0 3\n";
    EXPECT_TRUE(Has(SpringWarnings(joined), "along z 1.74 times, about z 1.5 times. Divide"));
  }
}

namespace {

// The coordinates with so many decimals.
ShellModel RoundedTo(ShellModel model, int decimals)
{
  const double unit = std::pow(10.0, -decimals);
  for (Vector3& place : model.nodes) {
    for (double& x : place)
      x = std::round(x / unit) * unit;
  }
  return model;
}

ShellModel Slab(int n, double unit = 1.0)
{
  ShellModel slab = Square(n, {{0.3, 0.6, -0.4}, unit});
  Hold(slab, n, "111111", OnRim(n));
  return slab;
}

}  // namespace

TEST(ShellFolds, ReportsPlaneShellsOfRoundedCoordinates)
{
  for (const char* settings : {"", kConversion}) {
    ShellModel slab = Slab(8);
    slab.settings = settings;
    EXPECT_TRUE(FoldWarnings(slab).empty());
    for (const int decimals : {3, 4, 5, 6, 7}) {
      const std::vector<std::string> found = FoldWarnings(RoundedTo(slab, decimals));
      EXPECT_TRUE(Has(found, "the 128 triangles around element 1 lie in one plane")) << decimals;
      EXPECT_TRUE(Has(found, "give the coordinates 8 or more decimals")) << decimals;
    }
    EXPECT_TRUE(FoldWarnings(RoundedTo(slab, 8)).empty());
  }
}

// In millimetres five decimals are as many digits as eight in metres.
TEST(ShellFolds, CountsDecimalsInTheUnitsOfTheFile)
{
  EXPECT_TRUE(Has(FoldWarnings(RoundedTo(Slab(8, 1000.0), 0)), "the coordinates 5 or more"));
  EXPECT_TRUE(FoldWarnings(RoundedTo(Slab(8, 1000.0), 5)).empty());
  ShellModel millimetres = RoundedTo(Slab(8, 1000.0), 0);
  millimetres.settings +=
      "\nunits_names\nhere kN m kPa 1 1\ndrawn kN mm kN/mm2 1 0.001\nend\n"
      "units_mesh mm\nunits_res here";
  EXPECT_TRUE(Has(FoldWarnings(millimetres), "the coordinates 5 or more"));
}

// The proposed angle makes the shell plane again. Without it the plate is too soft.
TEST(ShellFolds, ProposedAngleMendsTheShell)
{
  const auto deflection = [](const ShellModel& model) {
    ShellModel slab = model;
    slab.rest = Block("local_pressure_loads", slab.OnAll("0 0 1"));
    const std::vector<double> u = Solved(slab.Text()).Displacement(41);
    return std::hypot(u[0], u[1], u[2]);
  };
  const ShellModel exact = Slab(8);
  ShellModel rounded = RoundedTo(exact, 4);
  const std::vector<std::string> found = FoldWarnings(rounded);
  ASSERT_EQ(found.size(), 1u);
  const std::size_t from = found[0].find("CoplanarityAngle ");
  ASSERT_NE(from, std::string::npos);
  EXPECT_GT(deflection(rounded), 1.005 * deflection(exact));
  rounded.settings += "\n" + found[0].substr(from, found[0].find('\'', from) - from);
  EXPECT_TRUE(FoldWarnings(rounded).empty());
  EXPECT_NEAR(deflection(rounded), deflection(exact), 1e-3 * deflection(exact));
}

// Folds of 0.01 and more need decimals: a coplanarity angle that large would hold the rotations.
TEST(ShellFolds, ProposesNoLargeAngle)
{
  const std::vector<std::string> found = FoldWarnings(RoundedTo(Slab(8), 2));
  ASSERT_EQ(found.size(), 1u);
  EXPECT_EQ(found[0].find("CoplanarityAngle "), std::string::npos);
}

// A larger coplanarity angle needs fewer decimals.
TEST(ShellFolds, DecimalsFollowTheCoplanarityAngle)
{
  ShellModel slab = Slab(8);
  slab.settings = "CoplanarityAngle 1e-5";
  EXPECT_TRUE(Has(FoldWarnings(RoundedTo(slab, 4)), "the coordinates 6 or more"));
  EXPECT_TRUE(FoldWarnings(RoundedTo(slab, 6)).empty());
}

// Refined shells transmit twisting moments at slight folds.
TEST(ShellFolds, RefinedShellsAreRightAsTheyAre)
{
  const auto deflection = [](const ShellModel& model) {
    ShellModel slab = model;
    slab.settings += "\nShellFormulation Refined";
    slab.rest = Block("local_pressure_loads", slab.OnAll("0 0 1"));
    EXPECT_TRUE(WarningsWith(slab.Text(), "").empty());
    const std::vector<double> u = Solved(slab.Text()).Displacement(41);
    return std::hypot(u[0], u[1], u[2]);
  };
  const ShellModel exact = Slab(8);
  EXPECT_NEAR(deflection(RoundedTo(exact, 4)), deflection(exact), 1e-3 * deflection(exact));
}

TEST(ShellFolds, AcceptsCurvedShells)
{
  struct Curved
  {
    const char* name;
    std::function<Vector3(double, double)> place;
  };
  const std::vector<Curved> shells = {
      {"roof",
       [](double u, double v) {
         return Vector3{25 * std::sin(0.7 * u), 25 * v, 25 * std::cos(0.7 * u)};
       }},
      {"sphere",
       [](double u, double v) {
         return Vector3{10 * std::cos(u) * std::cos(v), 10 * std::sin(u) * std::cos(v),
                        10 * std::sin(v)};
       }},
      {"saddle",
       [](double u, double v) {
         return Vector3{10 * u, 10 * v, 2 * (u - 0.5) * (v - 0.5)};
       }},
      {"twisted strip",
       [](double u, double v) {
         return Vector3{12 * u, (v - 0.5) * std::cos(1.57 * u), (v - 0.5) * std::sin(1.57 * u)};
       }},
      {"waves",
       [](double u, double v) {
         return Vector3{10 * u, 10 * v, std::sin(3 * u) * std::sin(3 * v)};
       }},
  };
  for (const Curved& shell : shells) {
    for (const int n : {4, 10, 40}) {
      for (const int decimals : {4, 5, 17}) {
        ShellModel model = GridShell(n, n, shell.place, Cut::BothWays);
        model.Hold(1, "111111");
        model.Hold(2, "111000");  // no stiffness resists the rotation of node 1 about the normal
        EXPECT_TRUE(FoldWarnings(RoundedTo(model, decimals)).empty())
            << shell.name << " " << n << " " << decimals << ": "
            << testing::PrintToString(FoldWarnings(RoundedTo(model, decimals)));
      }
    }
  }
}

// Walls that meet at right angles: each is a part with its own plane.
TEST(ShellFolds, ReportsPlaneWallsOfFoldedShells)
{
  const auto axes = AxesOfAngles({0.3, 0.6, -0.4});
  ShellModel walls = GridShell(8, 4, [&](double u, double v) {
    return Turned(axes, {std::max(0.0, 10 * u - 5), 5 * v, std::max(0.0, 5 - 10 * u)});
  });
  walls.Hold(1, "111111");
  walls.Hold(2, "111000");
  EXPECT_TRUE(FoldWarnings(walls).empty());
  const std::vector<std::string> found = FoldWarnings(RoundedTo(walls, 3));
  ASSERT_EQ(found.size(), 2u);
  for (const std::string& warning : found)
    EXPECT_NE(warning.find("the 32 triangles around element"), std::string::npos) << warning;
}

// More than three parts share the last warning.
TEST(ShellFolds, GroupsManyParts)
{
  const auto axes = AxesOfAngles({0.3, 0.6, -0.4});
  ShellModel pleats = GridShell(20, 4, [&](double u, double v) {
    const double at = std::fmod(5 * u, 2.0);
    return Turned(axes, {20 * u, 5 * v, 2 * (at < 1.0 ? at : 2.0 - at)});
  });
  pleats.Hold(1, "111111");
  const std::vector<std::string> found = FoldWarnings(RoundedTo(pleats, 3));
  ASSERT_EQ(found.size(), 3u);
  EXPECT_NE(found[2].find("; 2 smaller parts are folded too"), std::string::npos);
}

}  // namespace morlen
