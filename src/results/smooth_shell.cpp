// Averages the forces and moments of shells over the elements that meet at a node and lie in
// the same plane, and gives the averages back to the elements.

#include "results/smooth_shell.h"

#include <algorithm>
#include <array>
#include <vector>

#include "assembly/solution.h"
#include "model/elem.h"
#include "model/euler.h"
#include "model/mesh.h"
#include "model/node.h"
#include "numeric/matriu.h"
#include "numeric/plex_range.h"
#include "problem/problem.h"

namespace morlen {

namespace {

constexpr int kValues = 8;  // of a point

using Triple = std::array<double, 3>;

// The values of the elements at a node whose axes agree.
struct Group
{
  Triple axes;  // Euler angles
  Triple sums{};
  int count = 0;
  int next = -1;  // the next group of the node; -1 at the end
};

// The groups of all nodes, each node's in a chain.
class NodeGroups
{
public:
  NodeGroups(int nodes, double smoothingAngle)
      : angle(smoothingAngle), first(static_cast<std::size_t>(nodes), -1)
  {
  }

  // The first group of these axes at a node (system number); made when there is none.
  int Find(int node, const Triple& axes)
  {
    int last = -1;
    for (int i = first[node - 1]; i != -1; last = i, i = groups[i].next) {
      if (AreEulerAnglesEqual(groups[i].axes.data(), axes.data(), angle))
        return i;
    }
    const int added = static_cast<int>(groups.size());
    (last == -1 ? first[node - 1] : groups[last].next) = added;
    groups.push_back({.axes = axes});
    return added;
  }

  void Add(int group, const Triple& values)
  {
    for (int k = 0; k < 3; ++k)
      groups[group].sums[k] += values[k];
    ++groups[group].count;
  }

  // The mean values, once Average has run.
  const Triple& Values(int group) const { return groups[group].sums; }

  void Average()
  {
    for (Group& group : groups) {
      for (double& sum : group.sums)
        sum /= group.count;
    }
  }

private:
  double angle;
  std::vector<int> first;  // of each node, by system number less 1; -1 without any
  std::vector<Group> groups;
};

// One of the smoothed quantities: three of the eight values of each point.
struct ShellVariable
{
  int number;
  int First() const { return 3 * number; }
};

constexpr ShellVariable kMembraneForces = {0};
constexpr ShellVariable kMoments = {1};

// The axes that decide with which elements an element is averaged: its own, or the principal
// ones where the values are principal.
Triple AxesOfValues(const Elem& elem, const Material* material, const ReaVecV* mainAngles,
                    int angleOffset, int points, ShellVariable variable)
{
  Triple axes;
  if (!mainAngles) {
    elem.GiveEulerAnglesTriangle(axes.data(), material);
    return axes;
  }
  const double* angles = mainAngles->Data() + angleOffset + variable.First();
  if (points == 3)
    MeanEulerAngles(angles, angles + 6, angles + 12, axes.data());
  else
    std::copy_n(angles, 3, axes.begin());
  return axes;
}

// Points stand on the middles of the edges, where linear values are the means of the corners':
// M = ((½ ½ 0), (0 ½ ½), (½ 0 ½)).
void CalcLUMatrixForSmooth6n(Matriu& M, Matriu& LU)
{
  M.redimension(3, 3);
  for (int point = 1; point <= 3; ++point) {
    for (int corner = 1; corner <= 3; ++corner)
      M(point, corner) = (corner == point || corner == point % 3 + 1) ? 0.5 : 0.0;
  }
  LU = M.LU();
}

// Between the points of an element and its corners.
class CornerValues
{
public:
  explicit CornerValues(int pointCount) : points(pointCount), scratch(3)
  {
    CalcLUMatrixForSmooth6n(M, LU);
  }

  // The three components of a variable at each corner; v points at the element's first.
  std::array<Triple, 3> FromPoints(const double* v)
  {
    std::array<Triple, 3> corners;
    for (int k = 0; k < 3; ++k) {
      for (int g = 0; g < 3; ++g)
        scratch(g + 1) = v[points == 3 ? kValues * g + k : k];
      if (points == 3)
        LULinSolve(LU, scratch);
      for (int corner = 0; corner < 3; ++corner)
        corners[corner][k] = scratch(corner + 1);
    }
    return corners;
  }

  void ToPoints(const std::array<Triple, 3>& corners, double* v) const
  {
    for (int g = 0; g < points; ++g) {
      for (int k = 0; k < 3; ++k) {
        double sum = 0.0;
        for (int corner = 0; corner < 3; ++corner)
          sum += (points == 1 ? 1.0 : M(g + 1, corner + 1)) * corners[corner][k];
        v[kValues * g + k] = points == 1 ? sum / 3.0 : sum;
      }
    }
  }

private:
  int points;
  Matriu M, LU;
  ReaVecV scratch;
};

/// Smooths one variable of a mesh of shells.
class VariableSmoothing
{
public:
  VariableSmoothing(const Problem& problem_, const Mesh& mesh_, const MeshResults& results_)
      : problem(problem_), mesh(mesh_), results(results_)
  {
  }

  // values: of all elements, smoothed in place. mainAngles: the axes of principal values, null for
  // local ones.
  void Run(ShellVariable variable, ReaVecV& values, const ReaVecV* mainAngles) const
  {
    NodeGroups groups(problem.numNodes, problem.smoothing.angle);
    CornerValues corners(results.points);
    std::vector<std::array<int, 3>> groupsOf;  // of each element, at its corners
    groupsOf.reserve(results.numbers.size());
    const auto valuesAt = [&](int place) {  // of an element
      return values.Data() + variable.First() + place * results.blockSize;
    };
    for (const Elem& elem : Each<Elem>(*mesh.GiveElemPlex())) {
      const int place = static_cast<int>(groupsOf.size());
      const Triple axes = AxesOfValues(elem, &problem.RequireMaterial(elem), mainAngles,
                                       place * 6 * results.points, results.points, variable);
      const std::array<Triple, 3> given = corners.FromPoints(valuesAt(place));
      std::array<int, 3>& own = groupsOf.emplace_back();
      for (int corner = 0; corner < 3; ++corner) {
        own[corner] = groups.Find(elem(corner)->number, axes);
        groups.Add(own[corner], given[corner]);
      }
    }
    groups.Average();
    for (std::size_t place = 0; place < groupsOf.size(); ++place) {
      const std::array<int, 3>& own = groupsOf[place];
      corners.ToPoints({groups.Values(own[0]), groups.Values(own[1]), groups.Values(own[2])},
                       valuesAt(static_cast<int>(place)));
    }
  }

private:
  const Problem& problem;
  const Mesh& mesh;
  const MeshResults& results;
};

}  // namespace

void SmoothShells(const Problem& problem, int mesh, Solution& solution)
{
  MeshResults& results = solution.results[mesh];
  const VariableSmoothing smoothing(problem, *problem.meshes[mesh], results);
  const ReaVecV* axes = problem.stressOutput == StressOutput::Main ? &results.mainAngles : nullptr;
  for (const ShellVariable variable : {kMembraneForces, kMoments}) {
    smoothing.Run(variable, results.strengths, axes);
    if (problem.stressOutput == StressOutput::MainAndLocal)
      smoothing.Run(variable, results.mainStrengths, &results.mainAngles);
  }
}

}  // namespace morlen
