#include "support/shell_model.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <map>
#include <utility>

#include "model/constraint.h"
#include "model/mesh.h"
#include "model/node.h"
#include "support/loaded_beams.h"

namespace morlen {

void ShellModel::Hold(int node, const std::string& flags, const std::array<double, 6>& values)
{
  constraints += std::to_string(node) + " " + flags;
  for (const double value : values)
    constraints += " " + Digits(value);
  constraints += "\n";
}

void ShellModel::Load(int node, const std::array<double, 6>& values)
{
  loads += std::to_string(node);
  for (const double value : values)
    loads += " " + Digits(value);
  loads += "\n";
}

std::string ShellModel::OnAll(const std::string& record) const
{
  std::string records;
  for (std::size_t i = 1; i <= triangles.size(); ++i)
    records += std::to_string(i) + " " + record + "\n";
  return records;
}

std::string ShellModel::Text() const
{
  std::string text = "problem type 3d\n" + settings +
                     "\nmesh dimension 3 elemtype Triangle nnode " +
                     std::to_string(triangles.front().size()) + "\ncoordinates\n";
  for (std::size_t i = 0; i < nodes.size(); ++i) {
    text += std::to_string(i + 1);
    for (const double x : nodes[i])
      text += " " + Digits(x);
    text += "\n";
  }
  text += "end coordinates\nelements\n";
  for (std::size_t i = 0; i < triangles.size(); ++i) {
    text += std::to_string(i + 1);
    for (const int node : triangles[i])
      text += " " + std::to_string(node);
    text += " 1\n";
  }
  return text + "end elements\n" + Block("materials", "1 " + material) +
         Block("constraints", constraints) + Block("nodal_point_loads", loads) + rest;
}

ShellModel GridShell(int nx, int ny, const std::function<Vector3(double, double)>& place, Cut cut)
{
  ShellModel model;
  for (int j = 0; j <= ny; ++j) {
    for (int i = 0; i <= nx; ++i)
      model.nodes.push_back(place(i / static_cast<double>(nx), j / static_cast<double>(ny)));
  }
  for (int j = 0; j < ny; ++j) {
    for (int i = 0; i < nx; ++i) {
      const int a = i + 1 + j * (nx + 1);
      const int b = a + 1;
      const int c = b + nx + 1;
      const int d = a + nx + 1;
      const bool other = cut == Cut::BothWays && (i + j) % 2 == 1;
      model.triangles.push_back(other ? std::vector{a, b, d} : std::vector{a, b, c});
      model.triangles.push_back(other ? std::vector{b, c, d} : std::vector{a, c, d});
    }
  }
  return model;
}

ShellModel WithMidSideNodes(const ShellModel& model)
{
  ShellModel six = model;
  std::map<std::pair<int, int>, int> middles;
  for (std::vector<int>& triangle : six.triangles) {
    for (int i = 0; i < 3; ++i) {
      const std::pair<int, int> edge = std::minmax({triangle[i], triangle[(i + 1) % 3]});
      int& middle = middles[edge];
      if (middle == 0) {
        six.nodes.push_back(0.5 * (six.nodes[edge.first - 1] + six.nodes[edge.second - 1]));
        middle = static_cast<int>(six.nodes.size());
      }
      triangle.push_back(middle);
    }
  }
  return six;
}

std::vector<int> NodesWhere(const ShellModel& model,
                            const std::function<bool(const Vector3&)>& condition)
{
  std::vector<int> found;
  for (std::size_t i = 0; i < model.nodes.size(); ++i) {
    if (condition(model.nodes[i]))
      found.push_back(static_cast<int>(i) + 1);
  }
  return found;
}

namespace {

std::vector<ShellForces> BlockOf(const MeshResults& result, int triangle)
{
  std::vector<ShellForces> points(static_cast<std::size_t>(result.points));
  const double* first = result.strengths.Data() + result.Block(triangle);
  for (ShellForces& point : points) {
    std::copy_n(first, point.size(), point.begin());
    first += point.size();
  }
  return points;
}

void ExpectForces(const ShellForces& actual, const ShellForces& expected, double tolerance)
{
  constexpr int kKinds[][2] = {{0, 3}, {3, 6}, {6, 8}};
  for (const auto& [begin, end] : kKinds) {
    double scale = 1.0;
    for (int k = begin; k < end; ++k)
      scale = std::max(scale, std::fabs(expected[k]));
    for (int k = begin; k < end; ++k)
      EXPECT_NEAR(actual[k], expected[k], tolerance * scale) << "force " << k + 1;
  }
}

}  // namespace

std::vector<ShellForces> ForcesOf(const Solved& solved, int triangle)
{
  const Problem& problem = solved.Model();
  int mesh = 0;
  while (!Find<Elem>(*problem.meshes[mesh]->GiveElemPlex(), triangle))
    ++mesh;
  return BlockOf(solved.Result().results[mesh], triangle);
}

void ExpectForcesEverywhere(const Solved& solved, const ShellForces& expected, double tolerance)
{
  const Problem& problem = solved.Model();
  for (std::size_t mesh = 0; mesh < problem.meshes.size(); ++mesh) {
    if (problem.meshes[mesh]->GiveElemType() != Triangle)
      continue;
    for (const int number : solved.Result().results[mesh].numbers) {
      SCOPED_TRACE("triangle " + std::to_string(number));
      for (const ShellForces& actual : BlockOf(solved.Result().results[mesh], number))
        ExpectForces(actual, expected, tolerance);
    }
  }
}

std::array<double, 6> SumOfReactions(const Solved& solved)
{
  std::array<double, 6> sum{};
  solved.Model().ForEachNodeRead([&](int, const Node& node) {
    if (!node.constraint)
      return;
    const std::array<double, 6>& r = node.constraint->reactions;
    const Vector3 moment = Cross({node(1), node(2), node(3)}, {r[0], r[1], r[2]});
    for (int k = 0; k < 3; ++k) {
      sum[k] += r[k];
      sum[k + 3] += r[k + 3] + moment[k];
    }
  });
  return sum;
}

Vector3 Turned(const std::array<Vector3, 3>& axes, const Vector3& components)
{
  return components[0] * axes[0] + components[1] * axes[1] + components[2] * axes[2];
}

}  // namespace morlen
