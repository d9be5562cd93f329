// The reference in higher precision against closed forms, and against the program for models on
// which both are accurate.

#include "support/precise.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <string>

#include "model/material.h"
#include "model/node.h"

namespace morlen {

namespace {

/// The rounding error of the expected values.
constexpr double kLastDigits = 1e-15;

void ExpectClose(double actual, double exact)
{
  EXPECT_NEAR(actual, exact, kLastDigits * std::fabs(exact));
}

/// A component (from 0) of the last node.
double AtTip(const Structure& s, const PreciseResults& results, int component)
{
  return results.displacements[s.Equations() - s.Components() + component];
}

}  // namespace

// v = PL³/3EI: the terms of the solution cancel by up to (L/h)⁴, 1e16 for 10,000 beams.
TEST(Precise, CantileverOfAnyNumberOfBeamsHasTheClosedForm)
{
  for (const int beams : {1, 10, 1000, 10000}) {
    for (const bool space : {false, true}) {
      Structure s = Chain(beams, space);
      s.HoldNode(1, kClamped).Load(beams + 1, {3, -2, 0, 0, 0, 0});
      const PreciseResults exact = SolvePrecisely(s);
      const Frame::Section& steel = s.sections[0];
      const double L = beams;
      const double EI = steel.E * steel.Iz;
      ExpectClose(AtTip(s, exact, 0), 3 * L / (steel.E * steel.A));
      ExpectClose(AtTip(s, exact, 1), -2 * L * L * L / (3 * EI));
      ExpectClose(AtTip(s, exact, space ? 5 : 2), -L * L / EI);
      ExpectClose(exact.reactions[0], -3);
      ExpectClose(exact.reactions[1], 2);
      ExpectClose(exact.reactions[space ? 5 : 2], 2 * L);
    }
  }
}

// The result is exact when the closed form is a double.
TEST(Precise, PowersOfTwoAreExact)
{
  constexpr int kBeams = 4096;
  Structure s = Chain(kBeams, true);
  s.sections[0] = {};  // all 1
  s.HoldNode(1, kClamped).Load(kBeams + 1, {2, -3, 6, 5, 0, 0});
  const PreciseResults exact = SolvePrecisely(s);
  const double L = kBeams;
  const std::array<double, 6> tip = {2 * L, -L * L * L, 2 * L * L * L,
                                     5 * L, -3 * L * L, -1.5 * L * L};
  for (int k = 0; k < 6; ++k)
    EXPECT_EQ(AtTip(s, exact, k), tip[k]) << k;
}

// The length of the direction (0.6, 0.8) is not exactly 1 in doubles, so lengths are computed from
// it.
TEST(Precise, InclinedCantileverHasTheClosedForm)
{
  const Vector3 direction = {0.6, 0.8, 0};
  Structure s = Chain(4000, false, direction);
  s.HoldNode(1, kClamped).Load(4001, {0.8, -0.6, 0, 0, 0, 0});
  const PreciseResults exact = SolvePrecisely(s);
  const double across = -4000.0 * 4000 * 4000 / (3 * s.sections[0].E * s.sections[0].Iz);
  ExpectClose(AtTip(s, exact, 0), -0.8 * across);
  ExpectClose(AtTip(s, exact, 1), 0.6 * across);
}

TEST(Precise, SpringsSettlementsAndSkewSupports)
{
  // A beam on a hinge and a spring under its middle load: half the load each.
  Structure s = Chain(2, false, {2, 0, 0});
  s.supports = {{1, kPin, {0, -0.01}}, {3, {0, 2, 0}, {0, 50}}};
  s.Load(2, {0, -8, 0});
  const PreciseResults exact = SolvePrecisely(s);
  ExpectClose(exact.displacements[7], -4.0 / 50);
  ExpectClose(exact.reactions[1], 4);
  ExpectClose(exact.reactions[7], 4);
  ExpectClose(exact.beams[2 + 3], 8);  // PL/4
  // On two slopes of 45° the reactions meet above the middle.
  Structure skew = Chain(2, false, {2, 0, 0});
  const double eighth = std::atan(1.0);
  skew.supports = {{1, kRollerInX, {}, Vector3{eighth, 0, 0}},
                   {3, kRollerInX, {}, Vector3{-eighth, 0, 0}},
                   {2, {1, 0, 0}}};
  skew.Load(2, {0, -8, 0});
  const PreciseResults onSlopes = SolvePrecisely(skew);
  for (const int node : {0, 2}) {
    ExpectClose(std::fabs(onSlopes.reactions[3 * node]), 4);
    ExpectClose(onSlopes.reactions[3 * node + 1], 4);
  }
}

// Hinge codes on a beam clamped at both ends whose end sinks by 1: k = 12, 3, 3, 0 EI/L³.
TEST(Precise, HingedBeamsHaveTheClosedForm)
{
  for (const auto& [code, factor] : {std::pair{11, 12.0}, {10, 3.0}, {1, 3.0}, {0, 0.0}}) {
    for (const int down : {1, 2}) {
      Structure s = Chain(1, true, {2, 0, 0});
      s.HoldNode(1, kClamped).HoldNode(2, kClamped);
      s.supports[1].values[down] = -1;
      s.hinges[1] = code;
      const PreciseResults exact = SolvePrecisely(s);
      const double I = down == 1 ? s.sections[0].Iz : s.sections[0].Iy;
      const double force = factor * s.sections[0].E * I / 8;
      ExpectClose(exact.beams[down], force);
      ExpectClose(exact.reactions[6 + down], -force);
      ExpectClose(std::fabs(exact.beams[down == 1 ? 5 : 4]), code == 11   ? force
                                                             : code == 10 ? 2 * force
                                                                          : 0.0);
    }
  }
}

// Every element can represent constant strains: the loads on inner nodes are 0 up to rounding.
TEST(Precise, PatchOfConstantStress)
{
  for (const int nnode : {4, 10}) {
    Structure s = SolidOf(SolidBlock({3, 2, 2}, {3, 2, 1}, nnode), {1000, 0.25});
    std::vector<double> u;
    for (const Vector3& x : s.nodes)
      u.insert(u.end(), {1e-3 * x[0], -0.25e-3 * x[1], -0.25e-3 * x[2]});
    const PreciseResults exact = LoadFor(s, u);
    for (std::size_t i = 0; i < exact.tetrahedra.size(); ++i)
      EXPECT_NEAR(exact.tetrahedra[i], i % 6 == 0 ? 1.0 : 0.0, 3e-16 * 1000);  // of rounded u
  }
  for (const int nnode : {3, 6}) {
    Structure s = ShellOn(
        [](double u, double v) {
          return Vector3{4 * u, 3 * v, 0};
        },
        4, 3, 0.1, nnode);
    s.shell = {1000, 0.25, 400, 0.1};
    const PreciseResults exact = LoadFor(s, BentDisplacements(s, {{0, 2, 1.0}, {1, 2, 1.0}}));
    const double moment = -1000 * 0.001 / 12 / (1 - 0.25);
    for (std::size_t i = 0; i < exact.triangles.size(); ++i) {
      if (i % 8 < 6) {
        EXPECT_NEAR(std::fabs(exact.triangles[i]), i % 8 == 3 || i % 8 == 4 ? -moment : 0.0, 1e-15)
            << i;
      }
    }
  }
}

// Small models of all families, with hinges and supports. Double precision loses few digits on
// them.
TEST(Precise, AgreesWithTheProgramOnSmallModels)
{
  std::vector<Structure> models;
  models.push_back(Tower(3, kClamped).Load(9, {1, 2, 3, 4, 5, 6}));
  models.push_back(Storeys(3, 3, kPin).Load(7, {1, -2, 3}));
  models.back().hinges = {{2, 10}, {6, 1}, {9, 0}};
  models.push_back(OnSkewRollers(0.3).Load(3, {1, -1}));
  models.push_back(TrussMast(3).Hold(At(2, 0), kBall).LoadAll({1, 2, -3}));
  models.push_back(TrussGirder(4).HoldNode(1, kPin).HoldNode(9, kRollerInX).LoadAll({0, -1}));
  for (const int nnode : {3, 6}) {
    // Flat, then folded along x = 2.
    models.push_back(ShellOn(
        [](double u, double v) {
          return Vector3{4 * u, 3 * v, std::fabs(2 - 4 * u) - 2 * u * v};
        },
        4, 4, 0.2, nnode));
    models.back().Hold(At(0, 0)).LoadAll({0, 1, -1, 0.1, 0.2, 0});
    models.push_back(models.back());
    models.back().shell.refined = true;
    // Slight folds, at which the nodes have shares between 0 and 1. The middles of the edges of six
    // nodes are off the planes of the corners.
    models.push_back(ShellOn(
        [](double u, double v) {
          return Vector3{4 * u, 3 * v, 0};
        },
        4, 4, 0.2, nnode));
    models.back().shell.refined = true;
    models.back().Hold(At(0, 0)).LoadAll({0, 1, -1, 0.1, 0.2, 0});
    models.back().Map([](const Vector3& p) {
      return Vector3{p[0], p[1], 0.02 * p[0] * p[0] * p[1]};
    });
  }
  for (const int nnode : {4, 10}) {
    models.push_back(SolidOf(SolidBlock({2, 2, 2}, {1, 1, 2}, nnode)).Hold(At(2, 0)));
    models.back().Load(27, {1, 2, 3});
  }
  models.push_back(ShellOn([](double u, double v) { return Vector3{4 * u, 3 * v, 0}; }, 4, 3, 0.2));
  models.back().sections = {Steel()};
  models.back().AddBeams({1, 2, 3, 4, 5}).Hold(At(0, 0)).LoadAll({0, 0, -1});
  for (std::size_t i = 0; i < models.size(); ++i) {
    const Solved solved(models[i].Text("Solver SkyLine\n"));
    // Rounding of double times the condition of small models.
    const PreciseResults exact = SolvePrecisely(models[i]);
    EXPECT_LE(ErrorsOf(solved, models[i], exact).Largest(), 1e-9) << i;
    // The program turns skew supports with axes that are rounded.
    ExpectValues(RefinePrecisely(models[i]).displacements, exact.displacements, 1e-15);
  }
}

TEST(Precise, ProgramReadsTheNumbersOfTheStructure)
{
  Structure s = Chain(50, true, {0.1, 1.0 / 3, std::sqrt(2.0)});
  s.sections[0].Iz = 1e-5 / 3;
  const std::unique_ptr<Project> project = ReadProject(s.Text());
  project->problem.ForEachNodeRead([&](int number, const Node& node) {
    for (int k = 0; k < 3; ++k)
      EXPECT_EQ(node(k + 1), s.nodes[number - 1][k]);
  });
  EXPECT_EQ(project->problem.RequireMaterial(*project->GiveElem(1)).Iz, s.sections[0].Iz);
}

}  // namespace morlen
