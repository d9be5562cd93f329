// Mechanisms that the check names. Each expected motion is written by hand, from the rules of rigid
// bodies, and the assembled stiffness times it must vanish: the test knows that the structure can
// move in this way without the search that it tests.
#include "check/mechanisms.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "assembly/preparation.h"
#include "assembly/solve.h"
#include "base/textscan.h"
#include "check/check.h"
#include "model/node.h"
#include "numeric/matriu.h"
#include "problem/problem.h"
#include "problem/problem_reader.h"
#include "run/element_families.h"
#include "solvers/skymatriu.h"

namespace morlen {

namespace {

using Components = std::array<double, 6>;
/// Displacements and rotations by node of the file; other nodes rest.
using NodeMotions = std::map<int, Components>;

struct Mechanism
{
  std::string name;
  std::string text;
  std::vector<std::string> messages;  ///< of the check, without the place
  std::vector<NodeMotions> motions;   ///< one for each message
};

void PrintTo(const Mechanism& mechanism, std::ostream* out)
{
  *out << mechanism.name;
}

std::string Block(const std::string& name, const std::string& records)
{
  return records.empty() ? "" : name + "\n" + records + "end " + name + "\n";
}

/// A frame with one material.
std::string FrameText(int dimension, const std::string& nodes, const std::string& beams,
                      const std::string& supports, const std::string& hinges)
{
  const std::string d = std::to_string(dimension);
  return "problem type: " + d + "d\nmesh dimension = " + d + " elemtype Linear nnode = 2\n" +
         Block("coordinates", nodes) + Block("elements", beams) +
         Block("materials", "1 E=2e8 G=8e7 A=0.01 Iy=1e-4 Iz=2e-4 J=1e-5\n") +
         Block("constraints", supports) + Block("elem_rotules", hinges);
}

std::string PlaneFrame(const std::string& nodes, const std::string& beams,
                       const std::string& supports, const std::string& hinges)
{
  return FrameText(2, nodes, beams, supports, hinges);
}

std::string SpaceFrame(const std::string& nodes, const std::string& beams,
                       const std::string& supports, const std::string& hinges)
{
  return FrameText(3, nodes, beams, supports, hinges);
}

std::string ShellText(const std::string& settings, const std::string& nodes,
                      const std::string& triangles, const std::string& supports)
{
  return "problem type: 3d\n" + settings + "mesh dimension = 3 elemtype Triangle nnode = 3\n" +
         Block("coordinates", nodes) + Block("elements", triangles) +
         Block("materials", "1 E=1e6 nu=0.25 G=4e5 t=0.1\n") + Block("constraints", supports);
}

/// Two cubes of six tetrahedra each, the second shifted by `shift`. The foot of the first is held.
std::string TwoCubes(const std::array<int, 3>& shift)
{
  std::vector<std::array<int, 3>> places;
  const auto numberOf = [&](const std::array<int, 3>& place) {
    const auto found = std::find(places.begin(), places.end(), place);
    if (found == places.end())
      places.push_back(place);
    else
      return static_cast<int>(found - places.begin()) + 1;
    return static_cast<int>(places.size());
  };
  std::string elements;
  int number = 0;
  for (const std::array<int, 3>& corner : {std::array<int, 3>{0, 0, 0}, shift}) {
    std::array<int, 3> order = {0, 1, 2};
    bool even = true;
    do {
      std::array<int, 3> place = corner;
      std::array<int, 4> nodes = {numberOf(place)};
      for (int i = 0; i < 3; ++i) {
        ++place[order[i]];
        nodes[i + 1] = numberOf(place);
      }
      // Neighbouring permutations differ in one or two exchanges; the sign follows from inversions.
      even = ((order[0] > order[1]) + (order[0] > order[2]) + (order[1] > order[2])) % 2 == 0;
      if (!even)
        std::swap(nodes[2], nodes[3]);
      elements += std::to_string(++number);
      for (const int node : nodes)
        elements += " " + std::to_string(node);
      elements += " 1\n";
    } while (std::next_permutation(order.begin(), order.end()));
  }
  std::string nodes;
  std::string supports;
  for (std::size_t i = 0; i < places.size(); ++i) {
    const std::string name = std::to_string(i + 1);
    nodes += name;
    for (const int x : places[i])
      nodes += " " + std::to_string(x);
    nodes += "\n";
    if (places[i][2] == 0 && i < 8)
      supports += name + " 111 0 0 0\n";
  }
  return "problem type: 3d\nmesh dimension = 3 elemtype Tetrahedra nnode = 4\n" +
         Block("coordinates", nodes) + Block("elements", elements) +
         Block("materials", "1 E=1e6 nu=0.25\n") + Block("constraints", supports);
}

/// A problem as the analysis prepares it, with its stiffness and supports.
struct Assembled
{
  explicit Assembled(const std::string& text) : problem(100)
  {
    TextScan scan(text);
    ReadProblem(scan, problem);
    PrepareModel(problem, FamiliesOf(problem));
    PrepareForSkyline(problem, false);
    SkyMatriu matrix(problem.Equations());
    CreateMatrix(problem.meshes, problem.components, matrix);
    AddStiffness({problem, FamiliesOf(problem), nullptr}, matrix);
    std::vector<ReaVecV> noLoads;
    ApplySupports(problem.GiveNodes(), problem.components, matrix, noLoads);
    matrix.CopyFromYouToMat(K);
  }

  /// The largest |K·u| in relation to the largest |K|·|u|, for the motion u.
  double RelativeForce(const NodeMotions& motions) const
  {
    const int n = problem.Equations();
    std::vector<double> u(static_cast<std::size_t>(n) + 1, 0.0);
    for (const auto& [node, values] : motions) {
      for (int k = 1; k <= problem.components.count; ++k)
        u[problem.Equation(*problem.FindNode(node), k)] =
            problem.components.Rotations() == 1 && k == 3 ? values[5] : values[k - 1];
    }
    double largest = 0.0;
    double scale = 0.0;
    for (int i = 1; i <= n; ++i) {
      double sum = 0.0;
      double sizes = 0.0;
      for (int j = 1; j <= n; ++j) {
        sum += K(i, j) * u[j];
        sizes += std::fabs(K(i, j) * u[j]);
      }
      largest = std::max(largest, std::fabs(sum));
      scale = std::max(scale, sizes);
    }
    return scale > 0.0 ? largest / scale : 0.0;
  }

  Problem problem;
  Matriu K;
};

/// The errors of the check without their places.
std::vector<std::string> ErrorsOf(const std::string& text)
{
  std::vector<std::string> errors;
  for (const check::Located& one : check::CheckText(text).problems) {
    if (one.severity == check::Severity::Error)
      errors.push_back(one.message);
  }
  return errors;
}

/// w × (place - centre), with the rotation w, for each of the places of nodes.
NodeMotions TurnAbout(const std::array<double, 3>& w, const std::array<double, 3>& centre,
                      const std::map<int, std::array<double, 3>>& places, bool rotations)
{
  NodeMotions motions;
  for (const auto& [node, place] : places) {
    const std::array<double, 3> r = {place[0] - centre[0], place[1] - centre[1],
                                     place[2] - centre[2]};
    motions[node] = {
        w[1] * r[2] - w[2] * r[1], w[2] * r[0] - w[0] * r[2], w[0] * r[1] - w[1] * r[0], 0, 0, 0};
    for (int k = 0; k < 3 && rotations; ++k)
      motions[node][3 + k] = w[k];
  }
  return motions;
}

const std::string kPortalNodes = "1 0 0\n2 0 3\n3 4 3\n4 4 0\n";
const std::string kPortalBeams = "1 1 2 1\n2 2 3 1\n3 3 4 1\n";
const std::string kPinned = "1 110 0 0 0\n4 110 0 0 0\n";
const std::string kPortalInSpace = "1 0 0 0\n2 0 0 3\n3 4 0 3\n4 4 0 0\n";
const std::string kClampedInSpace = "1 111111 0 0 0 0 0 0\n4 111111 0 0 0 0 0 0\n";

void AddFrames(std::vector<Mechanism>& all)
{
  // The columns turn with the sway 1 / 3; their hinged heads stay.
  all.push_back({"HingedPortal",
                 PlaneFrame(kPortalNodes, kPortalBeams, kPinned, "1 10\n3 01\n"),
                 {"nodes 2 and 3 can move along x: the hinges of beams 1 and 3 allow it"},
                 {{{1, {0, 0, 0, 0, 0, -1.0 / 3}},
                   {2, {1, 0, 0, 0, 0, 0}},
                   {3, {1, 0, 0, 0, 0, 0}},
                   {4, {0, 0, 0, 0, 0, -1.0 / 3}}}}});
  all.push_back({"PortalOfBars",
                 PlaneFrame(kPortalNodes, kPortalBeams, kPinned, "1 00\n2 00\n3 00\n"),
                 {"nodes 2 and 3 can move along x: the hinges of beams 1 and 3 allow it"},
                 {{{2, {1, 0, 0, 0, 0, 0}}, {3, {1, 0, 0, 0, 0, 0}}}}});
  all.push_back({"BarsInLine",
                 PlaneFrame("1 0 0\n2 2 0\n3 4 0\n", "1 1 2 1\n2 2 3 1\n",
                            "1 110 0 0 0\n3 110 0 0 0\n", "1 00\n2 00\n"),
                 {"node 2 can move along y: the hinges of beams 1 and 2 allow it"},
                 {{{2, {0, 1, 0, 0, 0, 0}}}}});
  // The girder turns about the point where the columns' lines meet.
  all.push_back({"InclinedPortal",
                 PlaneFrame("1 0 0\n2 1 3\n3 4 3\n4 6 0\n", kPortalBeams, kPinned, "1 00\n3 00\n"),
                 {"nodes 2 and 3 can turn about z through (2, 6, 0): the hinges of beams 1 and 3 "
                  "allow it"},
                 {TurnAbout({0, 0, 1}, {2, 6, 0}, {{2, {1, 3, 0}}, {3, {4, 3, 0}}}, true)}});
  // The panel without a diagonal is sheared.
  all.push_back(
      {"GirderWithoutADiagonal",
       PlaneFrame("1 0 0\n2 2 0\n3 4 0\n4 0 2\n5 2 2\n6 4 2\n",
                  "1 1 2 1\n2 2 3 1\n3 4 5 1\n4 5 6 1\n5 1 4 1\n6 2 5 1\n7 3 6 1\n8 1 5 1\n",
                  "1 110 0 0 0\n4 100 0 0 0\n", "1 00\n2 00\n3 00\n4 00\n5 00\n6 00\n7 00\n8 00\n"),
       {"nodes 3 and 6 can move along y: the hinges of beams 2 and 4 allow it"},
       {{{3, {0, 1, 0, 0, 0, 0}}, {6, {0, 1, 0, 0, 0, 0}}}}});
  // An overhang behind a hinge, on both sides.
  all.push_back({"HingedOverhangs",
                 PlaneFrame("1 0 0\n2 1 0\n3 3 0\n4 4 0\n", "1 1 2 1\n2 2 3 1\n3 3 4 1\n",
                            "2 110 0 0 0\n3 010 0 0 0\n", "1 10\n3 01\n"),
                 {"node 1 can turn about z through node 2: the hinges of beam 1 allow it",
                  "node 4 can turn about z through node 3: the hinges of beam 3 allow it"},
                 {{{1, {0, -1, 0, 0, 0, 1}}}, {{4, {0, 1, 0, 0, 0, 1}}}}});
  all.push_back({"BeamBetweenHingedColumnsSpins",
                 SpaceFrame(kPortalInSpace, kPortalBeams, kClampedInSpace, "1 10\n3 01\n"),
                 {"nodes 2 and 3 can turn about x: beam 2 spins about its own axis; the hinges of "
                  "beams 1 and 3 allow it"},
                 {{{2, {0, 0, 0, 1, 0, 0}}, {3, {0, 0, 0, 1, 0, 0}}}}});
  all.push_back(
      {"BarOnTopOfAPyramid",
       SpaceFrame("1 0 0 0\n2 3 0 0\n3 3 3 0\n4 0 3 0\n5 1.5 1.5 2\n6 1.5 1.5 4\n",
                  "1 1 5 1\n2 2 5 1\n3 3 5 1\n4 4 5 1\n5 5 6 1\n",
                  "1 111111 0 0 0 0 0 0\n2 111111 0 0 0 0 0 0\n3 111111 0 0 0 0 0 0\n4 111111 0 0 "
                  "0 0 0 0\n",
                  "1 00\n2 00\n3 00\n4 00\n5 00\n"),
       {"node 6 can move along x: the hinges of beam 5 allow it",
        "node 6 can move along y: the hinges of beam 5 allow it"},
       {{{6, {1, 0, 0, 0, 0, 0}}}, {{6, {0, 1, 0, 0, 0, 0}}}}});
  // A spring across the free direction does not hold it.
  all.push_back({"SpringAcrossTheMotion",
                 PlaneFrame(kPortalNodes, kPortalBeams, kPinned + "2 020 0 7 0\n", "1 00\n3 00\n"),
                 {"nodes 2 and 3 can move along x: the hinges of beams 1 and 3 allow it"},
                 {{{2, {1, 0, 0, 0, 0, 0}}, {3, {1, 0, 0, 0, 0, 0}}}}});
}

void AddSurfacesAndSolids(std::vector<Mechanism>& all)
{
  const std::string message =
      "nodes 9, 10, 11, 12, 13 and 14 can turn about y through nodes 4 and 5: elements 7, 8, 9, "
      "10, 11 and 12 hang on nodes 4 and 5 only";
  // The second cube is at x from 1 to 2 and z from 1 to 2; the common edge is x = 1, z = 1. Nodes
  // are numbered as the permutations find them.
  std::map<int, std::array<double, 3>> places;
  const std::array<std::array<double, 3>, 6> found = {
      {{2, 0, 1}, {2, 1, 1}, {2, 1, 2}, {2, 0, 2}, {1, 1, 2}, {1, 0, 2}}};
  for (int i = 0; i < 6; ++i)
    places[9 + i] = found[i];
  all.push_back({"CubesWithACommonEdge",
                 TwoCubes({1, 0, 1}),
                 {message},
                 {TurnAbout({0, 1, 0}, {1, 0, 1}, places, false)}});
  const std::string strips = "1 0 0 0\n2 1 0 0\n3 1 1 0\n4 0 1 0\n5 2 1 0\n6 2 2 0\n7 1 2 0\n";
  const NodeMotions turned =
      TurnAbout({0, 0, 1}, {1, 1, 0}, {{5, {2, 1, 0}}, {6, {2, 2, 0}}, {7, {1, 2, 0}}}, false);
  all.push_back({"ShellsWithACommonNode",
                 ShellText("", strips, "1 1 2 3 1\n2 1 3 4 1\n3 3 5 6 1\n4 3 6 7 1\n",
                           "1 111111 0 0 0 0 0 0\n2 111111 0 0 0 0 0 0\n4 111111 0 0 0 0 0 0\n"),
                 {"nodes 5, 6 and 7 can turn about z through node 3: elements 3 and 4 hang on "
                  "node 3 only"},
                 {turned}});
}

std::vector<Mechanism> Mechanisms()
{
  std::vector<Mechanism> all;
  AddFrames(all);
  AddSurfacesAndSolids(all);
  return all;
}

std::string NameOf(const testing::TestParamInfo<Mechanism>& info)
{
  return info.param.name;
}

}  // namespace

class MechanismTest : public testing::TestWithParam<Mechanism>
{
};

TEST_P(MechanismTest, IsNamed)
{
  EXPECT_EQ(ErrorsOf(GetParam().text), GetParam().messages);
}

// The displacements of the found motion are a multiple of the expected ones. The solution of the
// held system has about ten digits.
TEST_P(MechanismTest, HasItsMotion)
{
  std::vector<check::Motion> found;
  for (const check::Located& problem : check::CheckText(GetParam().text).problems) {
    if (problem.motion)
      found.push_back(*problem.motion);
  }
  ASSERT_EQ(found.size(), GetParam().motions.size());
  for (std::size_t i = 0; i < found.size(); ++i) {
    const NodeMotions& expected = GetParam().motions[i];
    const int first = found[i].turns ? 3 : 0;
    double product = 0.0;
    double square = 0.0;
    double ownSquare = 0.0;
    for (const auto& [node, components] : expected) {
      for (int k = 0; k < 3; ++k)
        square += components[first + k] * components[first + k];
    }
    for (std::size_t j = 0; j < found[i].nodes.size(); ++j) {
      const auto entry = expected.find(found[i].nodes[j]);
      ASSERT_NE(entry, expected.end()) << found[i].nodes[j];
      for (int k = 0; k < 3; ++k) {
        product += found[i].vectors[j][k] * entry->second[first + k];
        ownSquare += found[i].vectors[j][k] * found[i].vectors[j][k];
      }
    }
    EXPECT_NEAR(product * product, square * ownSquare, 1e-6 * square * ownSquare);
  }
}

// Rounding of the stiffness is about 1e-16 of its entries; its sums here have few terms.
TEST_P(MechanismTest, HasNoEnergy)
{
  const Assembled assembled(GetParam().text);
  for (const NodeMotions& motion : GetParam().motions) {
    EXPECT_LT(assembled.RelativeForce(motion), 1e-14);
    // A change of one component meets resistance.
    NodeMotions changed = motion;
    const auto most = std::max_element(changed.begin(), changed.end(), [](auto& a, auto& b) {
      return std::hypot(a.second[0], a.second[1], a.second[2]) <
             std::hypot(b.second[0], b.second[1], b.second[2]);
    });
    for (int k = 0; k < 3; ++k)
      most->second[k] += 0.25 * (k + 1);
    EXPECT_GT(assembled.RelativeForce(changed), 1e-3);
  }
}

INSTANTIATE_TEST_SUITE_P(All, MechanismTest, testing::ValuesIn(Mechanisms()), NameOf);

// Two cubes with one common node have three rotations about it. Their axes are a matter of choice.
TEST(Mechanisms, NamesTheThreeRotationsAboutACommonNode)
{
  const std::vector<std::string> errors = ErrorsOf(TwoCubes({1, 1, 1}));
  ASSERT_EQ(errors.size(), 3u);
  for (const std::string& error : errors) {
    EXPECT_NE(error.find(" can turn about "), error.npos) << error;
    EXPECT_NE(error.find("through node 4: "), error.npos) << error;
    EXPECT_TRUE(error.ends_with("hang on node 4 only")) << error;
  }
}

// Rounding leaves pivots of such a chain that are not 0, so that the search needs its trial loads.
TEST(Mechanisms, FindsMotionsThatThePivotsHide)
{
  std::string nodes;
  std::string beams;
  constexpr int kBeams = 300;
  for (int i = 0; i <= kBeams; ++i) {
    nodes += std::to_string(i + 1) + " " + std::to_string(i * std::cos(0.3)) + " " +
             std::to_string(i * std::sin(0.3)) + "\n";
    if (i > 0)
      beams += std::to_string(i) + " " + std::to_string(i) + " " + std::to_string(i + 1) + " 1\n";
  }
  const std::string middle = std::to_string(kBeams / 2);
  const std::vector<std::string> errors =
      ErrorsOf(PlaneFrame(nodes, beams, "1 111 0 0 0\n", middle + " 10\n"));
  ASSERT_EQ(errors.size(), 1u);
  EXPECT_NE(errors[0].find("can turn about z through node 151: the hinges of beam 150 allow it"),
            std::string::npos)
      << errors[0];
}

TEST(Mechanisms, ListsFiveMotionsOfAPartAndCountsTheRest)
{
  // Beams of a star, each with a hinge at the middle node, free at the other end.
  std::string nodes = "1 0 0\n2 0 -1\n";
  std::string beams = "1 2 1 1\n";
  std::string hinges;
  for (int i = 3; i <= 10; ++i) {
    nodes += std::to_string(i) + " " + std::to_string(i) + " 1\n";
    beams += std::to_string(i) + " 1 " + std::to_string(i) + " 1\n";
    hinges += std::to_string(i) + " 01\n";
  }
  const std::vector<std::string> errors =
      ErrorsOf(PlaneFrame(nodes, beams, "2 111 0 0 0\n", hinges));
  ASSERT_EQ(errors.size(), 6u);
  EXPECT_EQ(errors[0], "node 3 can turn about z through node 1: the hinges of beam 3 allow it");
  EXPECT_EQ(errors[5], "the structure can move in 3 more ways");
}

// The part of nodes 5 and 6 slides on its supports, which is reported once.
TEST(Mechanisms, AreFoundBesidePartsThatTheirSupportsDoNotHold)
{
  const std::vector<std::string> errors =
      ErrorsOf(PlaneFrame(kPortalNodes + "5 10 0\n6 14 0\n", kPortalBeams + "4 5 6 1\n",
                          kPinned + "5 010 0 0 0\n6 010 0 0 0\n", "1 10\n3 01\n"));
  EXPECT_EQ(errors, (std::vector<std::string>{
                        "nodes 2 and 3 can move along x: the hinges of beams 1 and 3 allow it",
                        "the supports let the part of node 5 move along X: node 5 moves most"}));
}

TEST(Mechanisms, FindsNothingInSoftOrSlenderStructures)
{
  std::string nodes;
  std::string beams;
  for (int i = 0; i <= 1500; ++i) {
    nodes += std::to_string(i + 1) + " " + std::to_string(i) + " 0\n";
    if (i > 0)
      beams += std::to_string(i) + " " + std::to_string(i) + " " + std::to_string(i + 1) + " 1\n";
  }
  EXPECT_EQ(ErrorsOf(PlaneFrame(nodes, beams, "1 111 0 0 0\n", "")), std::vector<std::string>{});
  // A spring of 1e-7 of the stiffness of the columns holds the sway.
  EXPECT_EQ(ErrorsOf(PlaneFrame(kPortalNodes, kPortalBeams, kPinned + "2 200 0.06 0 0\n",
                                "1 00\n3 00\n")),
            std::vector<std::string>{});
}

// Every fourth beam is 1e12 times stiffer. The analysis refuses the model, which cannot move: its
// solution looks like a motion without energy.
TEST(Mechanisms, FindsNothingInModelsThatAreTooRough)
{
  std::string nodes;
  std::string beams;
  for (int i = 0; i <= 40; ++i) {
    const std::string number = std::to_string(i);
    nodes += std::to_string(i + 1) + " " + number + " 0\n";
    if (i > 0)
      beams.append(number + " " + number + " ")
          .append(std::to_string(i + 1) + (i % 4 ? " 1\n" : " 2\n"));
  }
  std::string text = PlaneFrame(nodes, beams, "1 111 0 0 0\n", "");
  const std::string soft = "E=2e8 G=8e7 A=0.01 Iy=1e-4 Iz=2e-4 J=1e-5";
  text.replace(text.find(soft), soft.size(), "E=2.1e8 A=0.0078 Iz=5.7e-5");
  text.replace(text.find("end materials"), 0, "2 E=2.1e20 A=0.0078 Iz=5.7e-5\n");
  EXPECT_EQ(ErrorsOf(text), std::vector<std::string>{});
}

TEST(Mechanisms, SaysThatALargeModelIsNotTested)
{
  std::string nodes;
  std::string beams;
  constexpr int kBeams = 66700;
  for (int i = 0; i <= kBeams; ++i) {
    nodes += std::to_string(i + 1) + " " + std::to_string(i) + " 0\n";
    if (i > 0)
      beams += std::to_string(i) + " " + std::to_string(i) + " " + std::to_string(i + 1) + " 1\n";
  }
  const check::Report report =
      check::CheckText(PlaneFrame(nodes, beams, "1 111 0 0 0\n66701 111 0 0 0\n", ""));
  EXPECT_TRUE(report.problems.empty());
  ASSERT_TRUE(report.summary);
  EXPECT_EQ(report.summary->untested, "200103 equations are more than 200000");
  EXPECT_TRUE(check::TextOf(*report.summary)
                  .ends_with("mechanisms: not tested: 200103 equations are more than 200000\n"));
}

}  // namespace morlen
