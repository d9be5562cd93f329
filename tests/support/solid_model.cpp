#include "support/solid_model.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <set>
#include <utility>

#include "assembly/solid_family.h"
#include "model/constraint.h"
#include "model/mesh.h"
#include "model/node.h"
#include "numeric/plex_range.h"

namespace morlen {

namespace {

// Edges by the order of their nodes in a ten-node element.
constexpr int kEdges[6][2] = {{0, 1}, {1, 2}, {0, 2}, {0, 3}, {1, 3}, {2, 3}};

std::string Numbers(const Vector3& values)
{
  char text[96];
  std::snprintf(text, sizeof text, " %.17g %.17g %.17g", values[0], values[1], values[2]);
  return text;
}

std::array<int, 3> FaceOf(const std::vector<int>& elem, int face)
{
  return {elem[face], elem[(face + 1) % 4], elem[(face + 2) % 4]};
}

}  // namespace

std::string SolidModel::Text() const
{
  std::string text = "problem type " + header + "\n" + settings +
                     "\nmesh dimension 3 elemtype Tetrahedra nnode " + std::to_string(nnode) +
                     "\ncoordinates\n";
  for (std::size_t i = 0; i < nodes.size(); ++i)
    text += std::to_string(i + 1) + Numbers(nodes[i]) + "\n";
  text += "end\nelements\n";
  for (std::size_t i = 0; i < elements.size(); ++i) {
    text += std::to_string(i + 1);
    for (const int node : elements[i])
      text += " " + std::to_string(node);
    text += " 1\n";
  }
  text += "end\nmaterials\n1 " + material + "\nend\nconstraints\n";
  for (const auto& [node, s] : supports)
    text += std::to_string(node) + " " + s.flags + Numbers(s.values) + " " + s.items + "\n";
  text += "end\nnodal_point_loads\n";
  for (const auto& [node, values] : loads)
    text += std::to_string(node) + Numbers(values) + "\n";
  return text + "end\n" + rest;
}

SolidModel& SolidModel::Map(const std::function<Vector3(const Vector3&)>& place)
{
  for (Vector3& node : nodes)
    node = place(node);
  return *this;
}

SolidModel& SolidModel::ToTenNodes()
{
  std::map<std::pair<int, int>, int> middles;
  for (std::vector<int>& elem : elements) {
    for (const auto& edge : kEdges) {
      const auto ends = std::minmax(elem[edge[0]], elem[edge[1]]);
      const auto [place, added] = middles.try_emplace(ends, static_cast<int>(nodes.size()) + 1);
      if (added)
        nodes.push_back(0.5 * (nodes[ends.first - 1] + nodes[ends.second - 1]));
      elem.push_back(place->second);
    }
  }
  nnode = 10;
  return *this;
}

SolidModel& SolidModel::Prescribe(const std::vector<int>& at,
                                  const std::function<Vector3(const Vector3&)>& field)
{
  for (const int node : at)
    supports[node] = {.flags = "111", .values = field(nodes[node - 1])};
  return *this;
}

SolidModel& SolidModel::Roller(int axis, double value)
{
  for (std::size_t i = 0; i < nodes.size(); ++i) {
    if (std::fabs(nodes[i][axis] - value) > 1e-9)
      continue;
    const auto [support, added] = supports.try_emplace(static_cast<int>(i) + 1);
    if (added)
      support->second.flags = "000";
    support->second.flags[axis] = '1';
  }
  return *this;
}

SolidModel& SolidModel::LoadSides(const std::string& keyword, const Vector3& values,
                                  const std::function<bool(const Vector3&)>& picks)
{
  rest += keyword + "\n";
  for (const SolidSide& side : Sides()) {
    if (std::all_of(side.corners.begin(), side.corners.end(),
                    [&](int node) { return picks(nodes[node - 1]); }))
      rest += std::to_string(side.elem) + " " + std::to_string(side.face) + Numbers(values) + "\n";
  }
  rest += "end\n";
  return *this;
}

std::vector<SolidSide> SolidModel::Sides() const
{
  std::map<std::set<int>, std::vector<SolidSide>> faces;
  for (std::size_t e = 0; e < elements.size(); ++e) {
    for (int face = 0; face < 4; ++face) {
      const std::array<int, 3> corners = FaceOf(elements[e], face);
      faces[{corners.begin(), corners.end()}].push_back({static_cast<int>(e) + 1, face, corners});
    }
  }
  std::vector<SolidSide> outer;
  for (const auto& [corners, owners] : faces) {
    if (owners.size() == 1)
      outer.push_back(owners[0]);
  }
  return outer;
}

std::vector<int> SolidModel::OuterNodes() const
{
  std::set<int> outer;
  for (const SolidSide& side : Sides()) {
    outer.insert(side.corners.begin(), side.corners.end());
    const std::vector<int>& elem = elements[side.elem - 1];
    for (int i = 0; i < 3 && nnode == 10; ++i)
      outer.insert(elem[MiddleOf((side.face + i) % 4, (side.face + (i + 1) % 3) % 4)]);
  }
  return {outer.begin(), outer.end()};
}

int SolidModel::NodeAt(const Vector3& place) const
{
  for (std::size_t i = 0; i < nodes.size(); ++i) {
    const Vector3 d = nodes[i] - place;
    if (Dot(d, d) < 1e-16)
      return static_cast<int>(i) + 1;
  }
  ADD_FAILURE() << "no node at" << Numbers(place);
  return 0;
}

int MiddleOf(int corner, int other)
{
  const auto [low, high] = std::minmax(corner, other);
  int i = 0;
  while (i < 5 && (kEdges[i][0] != low || kEdges[i][1] != high))
    ++i;
  return 4 + i;
}

SolidModel OneSolid(const std::vector<Vector3>& corners, int nnode)
{
  SolidModel model;
  model.nodes = corners;
  model.elements = {{1, 2, 3, 4}};
  return nnode == 10 ? model.ToTenNodes() : model;
}

SolidModel UnitSolid(int nnode)
{
  return OneSolid({{0, 0, 0}, {1, 0, 0}, {0, 1, 0}, {0, 0, 1}}, nnode);
}

// Every cell is cut along the paths from its first corner to the opposite one, one for each
// order of the axes, so that neighbours share their diagonals.
SolidModel SolidBlock(const std::array<int, 3>& cells, const Vector3& sides, int nnode)
{
  SolidModel model;
  const auto node = [&](const std::array<int, 3>& at) {
    return 1 + at[0] + (cells[0] + 1) * (at[1] + (cells[1] + 1) * at[2]);
  };
  for (int k = 0; k <= cells[2]; ++k) {
    for (int j = 0; j <= cells[1]; ++j) {
      for (int i = 0; i <= cells[0]; ++i)
        model.nodes.push_back(
            {sides[0] * i / cells[0], sides[1] * j / cells[1], sides[2] * k / cells[2]});
    }
  }
  for (int cell = 0; cell < cells[0] * cells[1] * cells[2]; ++cell) {
    const std::array<int, 3> first = {cell % cells[0], cell / cells[0] % cells[1],
                                      cell / cells[0] / cells[1]};
    std::array<int, 3> order = {0, 1, 2};
    do {
      std::vector<int> corners = {node(first)};
      std::array<int, 3> at = first;
      for (const int axis : order) {
        ++at[axis];
        corners.push_back(node(at));
      }
      const bool turned = (order[1] - order[0] + 3) % 3 == 2;
      if (turned)
        std::swap(corners[1], corners[2]);
      model.elements.push_back(corners);
    } while (std::next_permutation(order.begin(), order.end()));
  }
  return nnode == 10 ? model.ToTenNodes() : model;
}

Vector3 GradientTimes(const std::array<double, 9>& G, const Vector3& x)
{
  Vector3 u{};
  for (int i = 0; i < 9; ++i)
    u[i / 3] += G[i] * x[i % 3];
  return u;
}

Tensor StressOf(double E, double nu, const Tensor& strain)
{
  const double G = E / (2.0 * (1.0 + nu));
  const double lambda = E * nu / ((1.0 + nu) * (1.0 - 2.0 * nu));
  Tensor stress;
  for (int i = 0; i < 6; ++i)
    stress[i] =
        i < 3 ? 2.0 * G * strain[i] + lambda * (strain[0] + strain[1] + strain[2]) : G * strain[i];
  return stress;
}

Tensor StressAt(const Solved& solved, int node)
{
  const Problem& problem = solved.Model();
  Tensor stress;
  for (int k = 1; k <= 6; ++k)
    stress[k - 1] = solved.Result().nodalStresses((problem.FindNode(node)->number - 1) * 6 + k);
  return stress;
}

std::vector<Vector3> ElementLoads(const SolidModel& model)
{
  const auto project = ReadProject(model.Text());
  ReaVecV loads;
  loads.resize(project->problem.Equations(), 0.0);
  for (const auto& mesh : project->problem.meshes)
    AddSolidLoads(project->problem, *mesh, loads);
  std::vector<Vector3> forces(model.nodes.size());
  for (std::size_t i = 0; i < forces.size(); ++i) {
    for (int k = 0; k < 3; ++k)
      forces[i][k] = loads(3 * static_cast<int>(i) + k + 1);
  }
  return forces;
}

void Resultant::Add(const Vector3& f, const Vector3& at)
{
  force = force + f;
  moment = moment + Cross(at, f);
}

double Resultant::Size() const
{
  return std::sqrt(Dot(force, force) + Dot(moment, moment));
}

Resultant ResultantOf(const SolidModel& model, const std::vector<Vector3>& forces)
{
  Resultant sum;
  for (std::size_t i = 0; i < forces.size(); ++i)
    sum.Add(forces[i], model.nodes[i]);
  return sum;
}

void ExpectBalanced(const SolidModel& model, const Solved& solved, double tolerance)
{
  std::vector<Vector3> forces = ElementLoads(model);
  for (const auto& [node, load] : model.loads)
    forces[node - 1] = forces[node - 1] + load;
  const Resultant loads = ResultantOf(model, forces);
  double scale = loads.Size();
  for (const auto& [node, support] : model.supports) {
    const std::vector<double> r = solved.Reaction(node);
    forces[node - 1] = forces[node - 1] + Vector3{r[0], r[1], r[2]};
    scale = std::max({scale, std::fabs(r[0]), std::fabs(r[1]), std::fabs(r[2])});
  }
  const Resultant all = ResultantOf(model, forces);
  EXPECT_LE(all.Size(), tolerance * scale);
}

double Dot(const Vector3& a, const Vector3& b)
{
  return a[0] * b[0] + a[1] * b[1] + a[2] * b[2];
}

Vector3 Cross(const Vector3& a, const Vector3& b)
{
  return {a[1] * b[2] - a[2] * b[1], a[2] * b[0] - a[0] * b[2], a[0] * b[1] - a[1] * b[0]};
}

Vector3 Rotated(const Vector3& v)
{
  const double c = std::cos(0.7), s = std::sin(0.7);
  const Vector3 a = {c * v[0] - s * v[1], s * v[0] + c * v[1], v[2]};
  const Vector3 b = {a[0], c * a[1] - s * a[2], s * a[1] + c * a[2]};
  return {c * b[0] + s * b[2], b[1], -s * b[0] + c * b[2]};
}

}  // namespace morlen
