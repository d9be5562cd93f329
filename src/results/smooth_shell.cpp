// Smoothing of the forces and moments of shells.
//
// Each component is constant or linear in an element. Its values at the corners are extrapolated
// from the Gauss points, averaged at each node over the elements whose axes agree, and interpolated
// to the points again. The averages do not cross folds: elements with other axes form another group
// of the node. Source: E. Hinton, J. S. Campbell, Local and global smoothing of discontinuous
// finite element functions using a least squares method, Int. J. Numer. Meth. Engng 8, 1974.

#include "results/smooth_shell.h"

#include <algorithm>
#include <array>
#include <vector>

#include "assembly/solution.h"
#include "base/interruption.h"
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

// The elements at a node whose axes agree, and their values there.
struct Group
{
  Triple axes;    // Euler angles
  Triple sums{};  // of the values; their means after NodeGroups::Average
  int count = 0;
  int next = -1;  // the next group of the node; -1 at the end
};

// The groups of all nodes. Those of a node form a chain.
class NodeGroups
{
public:
  NodeGroups(int nodes, double smoothingAngle)
      : angle(smoothingAngle), first(static_cast<std::size_t>(nodes), -1)
  {
  }

  // The first group with these axes at a node (system number). Adds one when there is none.
  int FindOrAdd(int node, const Triple& axes)
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

  // The mean values, after Average.
  const Triple& Means(int group) const { return groups[group].sums; }

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

// A smoothed quantity: three of the eight values of each point.
struct ShellVariable
{
  int number;
  // Position of its values among those of a point, and of its axes among mainAngles; from 0.
  int First() const { return 3 * number; }
};

constexpr ShellVariable kMembraneForces = {0};
constexpr ShellVariable kMoments = {1};

// The axes of an element's values: its local ones, or the mean principal ones of its points when
// there are mainAngles. angleOffset: before the angles of its first point.
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

// The three points are the middles of the edges, where a linear value is the mean of the corners of
// the edge: M = ((½ ½ 0), (0 ½ ½), (½ 0 ½)) maps corners to points.
void CalcLUMatrixForSmooth6n(Matriu& M, Matriu& LU)
{
  M.redimension(3, 3);
  for (int point = 1; point <= 3; ++point) {
    for (int corner = 1; corner <= 3; ++corner)
      M(point, corner) = (corner == point || corner == point % 3 + 1) ? 0.5 : 0.0;
  }
  LU = M.LU();
}

// Converts values between the Gauss points of an element (1 or 3) and its corners.
class CornerValues
{
public:
  explicit CornerValues(int pointCount) : points(pointCount), scratch(3)
  {
    CalcLUMatrixForSmooth6n(M, LU);
  }

  // The three components of a variable at each corner. v: its first component at the first point.
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

  // The inverse: writes the values at the points.
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

// Smooths variables of a mesh of shells. All arguments are borrowed.
class ShellSmoothing
{
public:
  // angle: up to which axes agree.
  ShellSmoothing(const Mesh& mesh_, const MeshResults& results_, const VoidPlex& materials_,
                 int numNodes_, double angle_)
      : mesh(mesh_), results(results_), materials(materials_), numNodes(numNodes_), angle(angle_)
  {
  }

  // values: of all elements, smoothed in place; empty for a mesh without elements. mainAngles: the
  // axes of principal values, null for local ones.
  void Run(ShellVariable variable, ReaVecV& values, const ReaVecV* mainAngles) const
  {
    if (!values.Data())
      return;
    NodeGroups groups(numNodes, angle);
    CornerValues corners(results.points);
    double* element = values.Data() + variable.First();
    const std::vector<std::array<int, 3>> groupsOfElements =
        Collect(variable, element, mainAngles, corners, groups);
    groups.Average();
    for (const auto& [a, b, c] : groupsOfElements) {
      corners.ToPoints({groups.Means(a), groups.Means(b), groups.Means(c)}, element);
      element += results.blockSize;
    }
  }

private:
  // Adds the values of all elements to the groups. Returns the groups of each element, by corner.
  // element: the first value of the first element.
  std::vector<std::array<int, 3>> Collect(ShellVariable variable, const double* element,
                                          const ReaVecV* mainAngles, CornerValues& corners,
                                          NodeGroups& groups) const
  {
    std::vector<std::array<int, 3>> groupsOfElements;
    groupsOfElements.reserve(results.numbers.size());
    int angleOffset = 0;
    for (const Elem& elem : Each<Elem>(*mesh.GiveElemPlex())) {
      CheckInterruption();
      const Triple axes = AxesOfValues(elem, &RequireMaterial(elem, materials), mainAngles,
                                       angleOffset, results.points, variable);
      const std::array<Triple, 3> atCorners = corners.FromPoints(element);
      std::array<int, 3>& own = groupsOfElements.emplace_back();
      for (int corner = 0; corner < 3; ++corner) {
        own[corner] = groups.FindOrAdd(elem(corner)->number, axes);
        groups.Add(own[corner], atCorners[corner]);
      }
      element += results.blockSize;
      angleOffset += 6 * results.points;
    }
    return groupsOfElements;
  }

  const Mesh& mesh;
  const MeshResults& results;
  const VoidPlex& materials;
  int numNodes;
  double angle;
};

}  // namespace

void SmoothShells(const Problem& problem, int mesh, Solution& solution)
{
  MeshResults& results = solution.results[mesh];
  const ShellSmoothing smoothing(*problem.meshes[mesh], results, problem.materials,
                                 problem.numNodes, problem.smoothing.angle);
  const ReaVecV* axes = problem.stressOutput == StressOutput::Main ? &results.mainAngles : nullptr;
  for (const ShellVariable variable : {kMembraneForces, kMoments}) {
    smoothing.Run(variable, results.strengths, axes);
    if (problem.stressOutput == StressOutput::MainAndLocal)
      smoothing.Run(variable, results.mainStrengths, &results.mainAngles);
  }
}

}  // namespace morlen
