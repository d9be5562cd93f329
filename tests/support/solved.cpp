#include "support/solved.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <map>

#include "base/textscan.h"
#include "model/constraint.h"
#include "model/mesh.h"
#include "model/nodal_load.h"
#include "model/node.h"
#include "numeric/matriu.h"
#include "numeric/plex_range.h"
#include "problem/problem_reader.h"
#include "support/processor.h"
#include "support/tested_solver.h"

namespace morlen {

namespace {

// Force and moment in space. Of a plane frame they are x, y and the moment about z.
struct Wrench
{
  std::array<double, 3> force{};
  std::array<double, 3> moment{};

  void Add(const double* components, int count)
  {
    const bool plane = count == 3;
    const std::array<double, 6> all =
        plane ? std::array<double, 6>{components[0], components[1], 0, 0, 0, components[2]}
              : std::array<double, 6>{components[0], components[1], components[2],
                                      components[3], components[4], components[5]};
    for (int i = 0; i < 3; ++i) {
      force[i] += all[i];
      moment[i] += all[i + 3];
    }
  }

  void Add(const Wrench& other, double factor)
  {
    for (int i = 0; i < 3; ++i) {
      force[i] += factor * other.force[i];
      moment[i] += factor * other.moment[i];
    }
  }

  void ExpectZero(double smallForce, double smallMoment) const
  {
    for (int i = 0; i < 3; ++i) {
      EXPECT_NEAR(force[i], 0.0, smallForce) << "force " << i + 1;
      EXPECT_NEAR(moment[i], 0.0, smallMoment) << "moment " << i + 1;
    }
  }
};

std::array<double, 3> Position(const Node& node)
{
  return {node(1), node(2), node.Size() == 3 ? node(3) : 0.0};
}

// The force of a wrench at a point, with its moment about the origin.
Wrench AboutOrigin(const Wrench& w, const std::array<double, 3>& at)
{
  Wrench moved = w;
  for (int i = 0; i < 3; ++i) {
    const int j = (i + 1) % 3;
    const int k = (i + 2) % 3;
    moved.moment[i] += at[j] * w.force[k] - at[k] * w.force[j];
  }
  return moved;
}

// Loads and reactions on a node.
Wrench OuterForces(const Node& node, int components)
{
  Wrench outer;
  if (node.load)
    outer.Add(node.load->values.data(), components);
  if (node.constraint)
    outer.Add(node.constraint->reactions.data(), components);
  return outer;
}

struct Largest
{
  double force = 1e-300;
  double moment = 1e-300;

  void Update(const Wrench& w)
  {
    for (int i = 0; i < 3; ++i) {
      force = std::max(force, std::fabs(w.force[i]));
      moment = std::max(moment, std::fabs(w.moment[i]));
    }
    // A model under moments alone has forces from rounding only: they must not set the scale.
    force = std::max(force, 1e-3 * moment);
  }
};

// The stored forces of one end of a beam (0 or 1) in global axes.
Wrench EndForce(const Solved& solved, const Elem& elem, int end)
{
  const Problem& problem = solved.Model();
  const int n = problem.components.count;
  const std::vector<double> local = solved.EndForces(elem.Num());
  Matriu T;
  elem.CalcTransfMatrixBeam(T, &problem.RequireMaterial(elem), problem.problemType);
  std::vector<double> global(static_cast<std::size_t>(n), 0.0);
  for (int i = 0; i < n; ++i) {
    for (int j = 0; j < n; ++j)
      global[i] += T(i + 1, j + 1) * local[end * n + j];
  }
  Wrench force;
  force.Add(global.data(), n);
  return force;
}

void ReadInto(Problem& problem, const std::string& text)
{
  problem.solverSettings.processor = TestedProcessor();
  TextScan scan(text);
  ReadProblem(scan, problem);
  SetTestedSolver(problem.solverSettings);
}

}  // namespace

std::unique_ptr<Problem> ReadProblemText(const std::string& text)
{
  auto problem = std::make_unique<Problem>(100);
  ReadInto(*problem, text);
  return problem;
}

std::unique_ptr<Project> ReadProject(const std::string& problem)
{
  auto project = std::make_unique<Project>(100, TestedKit());
  ReadInto(project->problem, problem);
  return project;
}

Solved::Solved(const std::string& problem, bool renumber, std::FILE* info)
    : project(ReadProject(problem))
{
  project->Calc(renumber, info);
  project->CalcStrengthsAndReactions(info);
}

std::vector<double> Solved::Displacement(int node) const
{
  const double* first =
      project->solution.displacements.Data() + project->Equation(*project->FindNode(node), 1) - 1;
  return {first, first + project->problem.components.count};
}

std::vector<double> Solved::Reaction(int node) const
{
  const Constraint* support = project->FindNode(node)->constraint.get();
  if (!support) {
    ADD_FAILURE() << "node " << node << " has no support";
    return {};
  }
  return {support->reactions.begin(),
          support->reactions.begin() + project->problem.components.count};
}

int Solved::MeshOf(int elem) const
{
  int mesh = 0;
  while (!Find<Elem>(*project->problem.meshes[mesh]->GiveElemPlex(), elem))
    ++mesh;
  return mesh;
}

std::vector<double> Solved::EndForces(int elem) const
{
  const MeshResults& result = project->solution.results[MeshOf(elem)];
  const double* first = result.strengths.Data() + result.Block(elem);
  return {first, first + result.blockSize};
}

std::vector<std::vector<double>> Solved::SpanDisplacements(int elem, int divisions) const
{
  const Elem& beam = *project->GiveElem(elem);
  const int c = project->problem.components.translations;
  Matriu T;
  beam.CalcTransfMatrixBeam(T, &project->problem.RequireMaterial(beam),
                            project->problem.problemType);
  std::vector<double> values(static_cast<std::size_t>((divisions + 1) * c));
  project->SetDisplacementVectors(beam, T, divisions, values.data());
  std::vector<std::vector<double>> points;
  for (auto value = values.begin(); value != values.end(); value += c)
    points.emplace_back(value, value + c);
  return points;
}

double Solved::Strength(int elem, int component, double t) const
{
  const Elem& beam = *project->GiveElem(elem);
  return project->GiveStrength(MeshOf(elem), beam, component, t,
                               std::sqrt(dist2(beam(0), beam(1))));
}

void ExpectValues(const std::vector<double>& actual, const std::vector<double>& expected,
                  double tolerance, double scale)
{
  ASSERT_EQ(actual.size(), expected.size());
  for (const double value : expected)
    scale = std::max(scale, std::fabs(value));
  for (std::size_t i = 0; i < expected.size(); ++i)
    EXPECT_NEAR(actual[i], expected[i], tolerance * scale) << "component " << i + 1;
}

void ExpectEquilibrium(const Solved& solved, double tolerance)
{
  const Problem& problem = solved.Model();
  std::map<const Node*, Wrench> left;
  Wrench sum;
  Largest sumScale;
  Largest nodeScale;
  for (const Node& node : Each<Node>(problem.GiveNodes())) {
    left[&node] = OuterForces(node, problem.components.count);
    nodeScale.Update(left[&node]);
    const Wrench outer = AboutOrigin(left[&node], Position(node));
    sumScale.Update(outer);
    sum.Add(outer, 1.0);
  }
  sum.ExpectZero(tolerance * sumScale.force, tolerance * sumScale.moment);

  for (const auto& mesh : problem.meshes) {
    for (const Elem& elem : Each<Elem>(*mesh->GiveElemPlex())) {
      for (int end = 0; end < 2; ++end) {
        const Wrench force = EndForce(solved, elem, end);
        nodeScale.Update(force);
        left[elem(end)].Add(force, -1.0);
      }
    }
  }
  for (const auto& [node, wrench] : left)
    wrench.ExpectZero(tolerance * nodeScale.force, tolerance * nodeScale.moment);
}

}  // namespace morlen
