#include "support/loaded_beams.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>

#include "model/constraint.h"
#include "model/mesh.h"
#include "model/nodal_load.h"
#include "model/node.h"
#include "numeric/matriu.h"
#include "numeric/plex_range.h"
#include "problem/loads_on_element.h"
#include "results/beam_strengths.h"

namespace morlen {

namespace {

constexpr double kRounding = 1e-10;

using Components = std::array<double, 6>;

// A force and a moment that act at a point.
struct Action
{
  Vector3 at;
  Components components;
};

Components InSpace(const double* values, int count)
{
  if (count == 3)
    return {values[0], values[1], 0, 0, 0, values[2]};
  Components all;
  std::copy_n(values, 6, all.begin());
  return all;
}

Vector3 Position(const Node& node)
{
  return {node(1), node(2), node.Size() == 3 ? node(3) : 0.0};
}

// Expects that the resultant and the moment about the origin are 0.
void ExpectBalance(const std::vector<Action>& actions, double leastScale)
{
  Components sum{};
  double scale = leastScale;
  for (const Action& action : actions) {
    Components c = action.components;
    for (int i = 0; i < 3; ++i) {
      const int j = (i + 1) % 3;
      const int k = (i + 2) % 3;
      c[3 + i] += action.at[j] * action.components[k] - action.at[k] * action.components[j];
    }
    for (int i = 0; i < 6; ++i) {
      sum[i] += c[i];
      scale = std::max(scale, std::fabs(c[i]));
    }
  }
  for (int i = 0; i < 6; ++i)
    EXPECT_NEAR(sum[i], 0.0, kRounding * scale) << "component " << i + 1;
}

// The loads and the reactions of a node.
std::vector<Action> OuterActions(const Node& node, int n)
{
  std::vector<Action> actions;
  if (node.load)
    actions.push_back({Position(node), InSpace(node.load->values.data(), n)});
  if (node.constraint)
    actions.push_back({Position(node), InSpace(node.constraint->reactions.data(), n)});
  return actions;
}

// The forces that the nodes exert on a beam, in global axes: first end, then second.
std::array<Action, 2> EndActions(const Solved& solved, const Elem& elem)
{
  const Problem& problem = solved.Model();
  const int n = problem.components.count;
  Matriu T;
  elem.CalcTransfMatrixBeam(T, &problem.RequireMaterial(elem), problem.problemType);
  const std::vector<double> local = LoadedEndForces(solved, elem.Num());
  std::array<Action, 2> ends;
  for (int end = 0; end < 2; ++end) {
    std::vector<double> global(static_cast<std::size_t>(n), 0.0);
    for (int i = 0; i < n; ++i) {
      const int triple = n == 3 ? 0 : i / 3 * 3;
      for (int j = 0; j < 3; ++j)
        global[i] += T(i - triple + 1, j + 1) * local[end * n + triple + j];
    }
    ends[end] = {Position(*elem(end)), InSpace(global.data(), n)};
  }
  return ends;
}

Action ActionOf(const LineLoad& load, const Elem& elem)
{
  const Vector3 a = Position(*elem(0));
  const Vector3 b = Position(*elem(1));
  const double L = std::hypot(b[0] - a[0], b[1] - a[1], b[2] - a[2]);
  Action action;
  for (int i = 0; i < 3; ++i) {
    action.at[i] = (a[i] + b[i]) / 2;
    action.components[i] = L * load.force[i];
    action.components[3 + i] = L * load.moment[i];
  }
  return action;
}

double LargestOf(const std::vector<Action>& actions)
{
  double largest = 1e-300;
  for (const Action& action : actions) {
    for (const double c : action.components)
      largest = std::max(largest, std::fabs(c));
  }
  return largest;
}

int MeshOf(const Problem& problem, int elem)
{
  int mesh = 0;
  while (!Find<Elem>(*problem.meshes[mesh]->GiveElemPlex(), elem))
    ++mesh;
  return mesh;
}

double LengthOf(const Elem& elem)
{
  return std::sqrt(dist2(elem(0), elem(1)));
}

}  // namespace

std::vector<double> LoadedEndForces(const Solved& solved, int elem)
{
  const Problem& problem = solved.Model();
  Matriu T;
  const BeamSpan beam = MakeSpan(problem, *problem.GiveElem(elem), T);
  std::vector<double> forces = solved.EndForces(elem);
  double R[2][6] = {};
  LoadOn(problem, beam).AddToReactionsVecs(beam, R[0], R[1]);
  const int n = problem.components.count;
  for (int i = 0; i < 2 * n; ++i)
    forces[i] += R[i / n][i % n];
  return forces;
}

double LoadedStrength(const Solved& solved, int elem, int component, double t)
{
  const Problem& problem = solved.Model();
  Matriu T;
  const BeamSpan beam = MakeSpan(problem, *problem.GiveElem(elem), T);
  double value =
      GiveStrength(solved.Result().results[MeshOf(problem, elem)], elem, component, t, beam.L);
  LoadOn(problem, beam).AddToStrengthVectors(beam, component, t, value);
  return value;
}

std::vector<std::vector<double>> LoadedDisplacements(const Solved& solved, int elem, int divisions)
{
  const Problem& problem = solved.Model();
  Matriu T;
  const BeamSpan beam = MakeSpan(problem, *problem.GiveElem(elem), T);
  const SpanLoad load = LoadOn(problem, beam);
  std::vector<std::vector<double>> points = solved.SpanDisplacements(elem, divisions);
  for (int i = 0; i <= divisions; ++i)
    load.AddToDisplacementVectors(beam, static_cast<double>(i) / divisions, points[i].data());
  return points;
}

void ExpectLoadedEquilibrium(const Solved& solved, const std::vector<LineLoad>& lineLoads)
{
  const Problem& problem = solved.Model();
  const int n = problem.components.count;
  std::vector<Action> outer;
  for (const LineLoad& load : lineLoads)
    outer.push_back(ActionOf(load, *problem.GiveElem(load.elem)));
  for (const Node& node : Each<Node>(problem.GiveNodes())) {
    for (const Action& action : OuterActions(node, n))
      outer.push_back(action);
  }
  const double scale = LargestOf(outer);
  ExpectBalance(outer, scale);

  for (const Node& node : Each<Node>(problem.GiveNodes())) {
    std::vector<Action> atNode = OuterActions(node, n);
    for (const auto& mesh : problem.meshes) {
      for (const Elem& elem : Each<Elem>(*mesh->GiveElemPlex())) {
        for (int end = 0; end < 2; ++end) {
          if (elem(end) != &node)
            continue;
          atNode.push_back(EndActions(solved, elem)[end]);
          for (double& c : atNode.back().components)
            c = -c;
        }
      }
    }
    SCOPED_TRACE("a node");
    ExpectBalance(atNode, scale);
  }
  for (const auto& mesh : problem.meshes) {
    for (const Elem& elem : Each<Elem>(*mesh->GiveElemPlex())) {
      const std::array<Action, 2> ends = EndActions(solved, elem);
      std::vector<Action> onBeam(ends.begin(), ends.end());
      for (const LineLoad& load : lineLoads) {
        if (load.elem == elem.Num())
          onBeam.push_back(ActionOf(load, elem));
      }
      SCOPED_TRACE(testing::Message() << "element " << elem.Num());
      ExpectBalance(onBeam, scale);
    }
  }
}

void ExpectDiagrams(const Solved& solved, int elem, const std::vector<double>& q)
{
  const Problem& problem = solved.Model();
  const bool plane = problem.components.count == 3;
  const double L = LengthOf(*problem.GiveElem(elem));
  const std::vector<double> ends = LoadedEndForces(solved, elem);
  const int n = problem.components.count;
  double scale = 1e-300;
  for (const double force : ends)
    scale = std::max({scale, std::fabs(force), std::fabs(force) / L});
  const auto value = [&](int k, double t) { return LoadedStrength(solved, elem, k, t); };
  // The signs of the end forces in the diagrams at the first and at the second end.
  static const int planeSigns[2][3] = {{-1, 1, -1}, {1, -1, 1}};
  static const int spaceSigns[2][6] = {{-1, 1, 1, 1, 1, -1}, {1, -1, -1, -1, -1, 1}};
  for (int k = 1; k <= n; ++k) {
    for (int end = 0; end < 2; ++end) {
      const int sign = plane ? planeSigns[end][k - 1] : spaceSigns[end][k - 1];
      EXPECT_NEAR(value(k, end), sign * ends[end * n + k - 1], kRounding * scale)
          << "component " << k << " at end " << end + 1;
    }
    for (const double t : {0.1, 0.5, 0.8}) {
      constexpr double kStep = 0.1;
      const double slope = (value(k, t + kStep) - value(k, t - kStep)) / (2 * kStep * L);
      const double expected = k == 1            ? -q[0]
                              : plane && k == 3 ? value(2, t)
                              : k == 5          ? value(3, t)
                              : k == 6          ? value(2, t)
                                                : q[k - 1];
      EXPECT_NEAR(slope, expected, 10 * kRounding * scale / std::min(L, 1.0))
          << "slope of component " << k << " at " << t;
    }
  }
}

std::string Digits(double value)
{
  char text[32];
  std::snprintf(text, sizeof text, " %.17g", value);
  return text;
}

}  // namespace morlen
