// Patch recovery. At a node the shells are taken in the order of the model; each that no group has
// yet begins one, which grows over the edges at the node.

#include "export/shell_corners.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "export/patch_fit.h"

namespace morlen {

namespace {

using Forces = ShellCorners::Forces;

constexpr double kNan = std::numeric_limits<double>::quiet_NaN();
constexpr ShellCorners::Group kNoGroup = {{kNan, kNan, kNan, kNan, kNan, kNan, kNan, kNan}, -1};

// Components of a symmetric tensor, whose three components begin at t, along axes turned by an
// angle with this cosine and sine.
void TurnTensor(double c, double s, double* t)
{
  const double x = t[0];
  const double y = t[1];
  const double xy = t[2];
  t[0] = c * c * x + s * s * y + 2.0 * c * s * xy;
  t[1] = s * s * x + c * c * y - 2.0 * c * s * xy;
  t[2] = c * s * (y - x) + (c * c - s * s) * xy;
}

}  // namespace

Forces ForcesAtNode(std::span<const results::ShellPoint> pointsOfElement, int i)
{
  if (pointsOfElement.size() == 1)
    return pointsOfElement[0].local;
  if (i >= 3)
    return pointsOfElement[i - 3].local;
  // Point k is in the middle of the edge from corner k to the next one.
  const Forces& one = pointsOfElement[i].local;
  const Forces& two = pointsOfElement[(i + 2) % 3].local;
  const Forces& opposite = pointsOfElement[(i + 1) % 3].local;
  Forces forces{};
  for (std::size_t k = 0; k < forces.size(); ++k)
    forces[k] = one[k] + two[k] - opposite[k];
  return forces;
}

Forces Turned(const Forces& forces, const std::array<Vec3, 3>& from, const std::array<Vec3, 3>& to)
{
  if (from == to)
    return forces;
  // The new x' is c x' + s y'.
  const double cosine = Dot(to[0], from[0]) + Dot(to[1], from[1]);
  const double sine = Dot(to[0], from[1]) - Dot(to[1], from[0]);
  const double length = std::hypot(cosine, sine);
  const double c = cosine / length;
  const double s = sine / length;
  Forces turned = forces;
  TurnTensor(c, s, &turned[0]);
  TurnTensor(c, s, &turned[3]);
  turned[6] = c * forces[6] + s * forces[7];
  turned[7] = c * forces[7] - s * forces[6];
  return turned;
}

/// Finds the values of a model's groups, one after the other.
class ShellCorners::Recovery
{
public:
  using Corner = ShellNeighbours::Corner;

  Recovery(const model::Model& ofModel, std::span<const results::ShellPoint> itsPoints)
      : model(ofModel), points(itsPoints), neighbours(ofModel), isTaken(ofModel.elements.size())
  {
  }

  std::span<const Corner> At(int node) const { return neighbours.At(node); }
  bool IsTaken(int element) const { return isTaken[element]; }

  /// The group of a shell at a node: its members with their nodes there. It is taken then.
  const std::vector<Corner>& Collect(const Corner& first, int node);
  /// The values of the last group.
  Group Value(int node);
  /// Makes the shells at a node free for the groups of other nodes.
  void Release(int node);

private:
  void Append(int element, int node);
  void Grow();
  void CollectPoints(int node);
  Forces Fitted();
  Forces MeanOfCorners() const;

  const model::Element& First() const { return model.elements[group.front().element]; }
  std::span<const results::ShellPoint> PointsOf(int element) const
  {
    const model::Element& shell = model.elements[element];
    return points.subspan(shell.firstPoint, shell.points);
  }

  const model::Model& model;
  std::span<const results::ShellPoint> points;
  ShellNeighbours neighbours;
  std::vector<bool> isTaken;  ///< by element
  std::vector<Corner> group;  ///< of the present node
  std::vector<int> patch;     ///< elements whose points are fitted
  std::vector<int> nodes;     ///< of the group
  std::vector<double> factors;
  // Of the Gauss points of the patch, along the axes of the group's first shell.
  std::vector<std::array<double, 2>> places;
  std::vector<Forces> values;
};

void ShellCorners::Recovery::Append(int element, int node)
{
  const auto& all = model.elements[element].nodes;
  const int i = static_cast<int>(std::find(all.begin(), all.end(), node) - all.begin());
  group.push_back({element, i});
  isTaken[element] = true;
}

const std::vector<ShellNeighbours::Corner>& ShellCorners::Recovery::Collect(const Corner& first,
                                                                            int node)
{
  group.clear();
  Append(first.element, node);
  for (std::size_t m = 0; m < group.size(); ++m) {
    const Corner member = group[m];
    // The edges at a corner are its own and the one before; at a middle it is that edge.
    const bool corner = member.i < 3;
    const std::array<int, 2> edges = {corner ? member.i : member.i - 3,
                                      corner ? (member.i + 2) % 3 : member.i - 3};
    for (const int edge : edges) {
      const int next = neighbours.Beyond(member.element, edge);
      if (next >= 0 && !isTaken[next] && AxesAgree(First(), model.elements[next]))
        Append(next, node);
    }
  }
  return group;
}

void ShellCorners::Recovery::Release(int node)
{
  for (const Corner& corner : At(node))
    isTaken[corner.element] = false;
}

// Adds the shells that the group reaches over edges and that have a node of it. The number is
// bounded for nodes with very many shells.
void ShellCorners::Recovery::Grow()
{
  constexpr std::size_t kMost = 40;
  const auto has = [](const std::vector<int>& list, int one) {
    return std::find(list.begin(), list.end(), one) != list.end();
  };
  nodes.clear();
  for (const int element : patch)
    nodes.insert(nodes.end(), model.elements[element].nodes.begin(),
                 model.elements[element].nodes.begin() + 3);
  for (std::size_t m = 0; m < patch.size() && patch.size() < kMost; ++m) {
    for (int edge = 0; edge < 3; ++edge) {
      const int next = neighbours.Beyond(patch[m], edge);
      if (next < 0 || has(patch, next))
        continue;
      const model::Element& shell = model.elements[next];
      const bool touches = std::any_of(shell.nodes.begin(), shell.nodes.begin() + 3,
                                       [&](int node) { return has(nodes, node); });
      if (touches && AxesAgree(First(), shell))
        patch.push_back(next);
    }
  }
}

void ShellCorners::Recovery::CollectPoints(int node)
{
  const model::Element& first = First();
  places.clear();
  values.clear();
  for (const int element : patch) {
    const model::Element& shell = model.elements[element];
    const auto corner = [&](int i) {
      return Minus(model.nodes[shell.nodes[i % 3]].x, model.nodes[node].x);
    };
    for (int k = 0; k < shell.points; ++k) {
      Vec3 sum{};
      const int corners = shell.points == 1 ? 3 : 2;
      for (int i = 0; i < corners; ++i) {
        const Vec3 x = corner(k + i);
        for (int c = 0; c < 3; ++c)
          sum[c] += x[c] / corners;
      }
      places.push_back({Dot(sum, first.axes[0]), Dot(sum, first.axes[1])});
      values.push_back(Turned(points[shell.firstPoint + k].local, shell.axes, first.axes));
    }
  }
}

Forces ShellCorners::Recovery::MeanOfCorners() const
{
  Forces mean{};
  for (const Corner& corner : group) {
    const Forces forces = Turned(ForcesAtNode(PointsOf(corner.element), corner.i),
                                 model.elements[corner.element].axes, First().axes);
    for (std::size_t k = 0; k < mean.size(); ++k)
      mean[k] += forces[k] / static_cast<double>(group.size());
  }
  return mean;
}

// The limit of a polynomial of degree 2 is that of one point; of degree 1 that of one shell with
// three points, whose corners have the factors 1, 1 and -1.
Forces ShellCorners::Recovery::Fitted()
{
  const bool found = (First().points == 3 && FindPatchFactors(places, 2, 1.0, factors)) ||
                     FindPatchFactors(places, 1, 3.0 + 1e-9, factors);
  if (!found)
    return MeanOfCorners();
  Forces fitted{};
  for (std::size_t i = 0; i < values.size(); ++i) {
    for (std::size_t k = 0; k < fitted.size(); ++k)
      fitted[k] += factors[i] * values[i][k];
  }
  return fitted;
}

ShellCorners::Group ShellCorners::Recovery::Value(int node)
{
  constexpr std::size_t kFewShells = 5;
  patch.clear();
  for (const Corner& member : group)
    patch.push_back(member.element);
  if (First().points == 1 && group.size() < kFewShells)
    Grow();
  CollectPoints(node);
  Forces forces = Fitted();
  for (std::size_t k = 0; patch.size() > 1 && k < forces.size(); ++k) {
    const auto [least, largest] =
        std::minmax_element(values.begin(), values.end(),
                            [k](const Forces& a, const Forces& b) { return a[k] < b[k]; });
    const double margin = 0.5 * ((*largest)[k] - (*least)[k]);
    forces[k] = std::clamp(forces[k], (*least)[k] - margin, (*largest)[k] + margin);
  }
  return {forces, group.front().element};
}

ShellCorners::ShellCorners(const model::Model& model, std::span<const results::ShellPoint> points)
    : firstPlace(model.elements.size()), ofNodes(model.nodes.size(), kNoGroup)
{
  int places = 0;
  for (std::size_t e = 0; e < model.elements.size(); ++e) {
    firstPlace[e] = places;
    places += model.elements[e].kind == model::Kind::Shell ? model.elements[e].nodeCount : 0;
  }
  copies.assign(places, -1);
  Recovery recovery(model, points);
  for (int node = 0; node < static_cast<int>(model.nodes.size()); ++node) {
    bool isFirst = true;
    for (const ShellNeighbours::Corner& corner : recovery.At(node)) {
      if (recovery.IsTaken(corner.element))
        continue;
      const int copy = isFirst ? -1 : static_cast<int>(copiedNodes.size());
      for (const ShellNeighbours::Corner& member : recovery.Collect(corner, node))
        copies[firstPlace[member.element] + member.i] = copy;
      if (isFirst) {
        ofNodes[node] = recovery.Value(node);
      } else {
        copiedNodes.push_back(node);
        ofCopies.push_back(recovery.Value(node));
      }
      isFirst = false;
    }
    recovery.Release(node);
  }
}

int ShellCorners::CopyAt(std::size_t element, int i) const
{
  return copies.empty() ? -1 : copies[firstPlace[element] + i];
}

}  // namespace morlen
