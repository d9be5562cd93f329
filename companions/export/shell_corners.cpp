// Averages over nodes. A list of the shells at each node is made by counting, so that the work
// grows with the number of elements. At a node the shells are taken in the order of the model; each
// joins the first group whose axes it fits, or founds one.

#include "export/shell_corners.h"

#include <cmath>
#include <limits>

namespace morlen {

namespace {

using Forces = ShellCorners::Forces;

constexpr double kNan = std::numeric_limits<double>::quiet_NaN();
constexpr Forces kNoForces = {kNan, kNan, kNan, kNan, kNan, kNan, kNan, kNan};

bool Agree(const model::Element& a, const model::Element& b)
{
  constexpr double kLimit = 0.9659258262890683;  // cos 15°
  return a.mesh == b.mesh && Dot(a.axes[0], b.axes[0]) > kLimit &&
         Dot(a.axes[2], b.axes[2]) > kLimit;
}

struct Group
{
  const model::Element* first;
  Forces sum;
  int count;
};

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

ShellCorners::ShellCorners(const model::Model& model, std::span<const results::ShellPoint> points)
    : firstPlace(model.elements.size()), ofNodes(model.nodes.size(), kNoForces)
{
  std::vector<int> start(model.nodes.size() + 1);
  for (std::size_t e = 0; e < model.elements.size(); ++e) {
    const model::Element& element = model.elements[e];
    firstPlace[e] = static_cast<int>(ownerOf.size());
    for (int i = 0; element.kind == model::Kind::Shell && i < element.nodeCount; ++i) {
      ++start[element.nodes[i] + 1];
      ownerOf.push_back(static_cast<int>(e));
    }
  }
  for (std::size_t i = 1; i < start.size(); ++i)
    start[i] += start[i - 1];
  copies.assign(ownerOf.size(), -1);
  std::vector<int> places(ownerOf.size());  // of the shells at each node
  std::vector<int> next(start.begin(), start.end() - 1);
  for (std::size_t place = 0; place < ownerOf.size(); ++place) {
    const int element = ownerOf[place];
    const int node = model.elements[element].nodes[static_cast<int>(place) - firstPlace[element]];
    places[next[node]++] = static_cast<int>(place);
  }
  for (std::size_t node = 0; node < model.nodes.size(); ++node)
    AddNode(model, points, static_cast<int>(node),
            std::span(places).subspan(start[node], start[node + 1] - start[node]));
}

void ShellCorners::AddNode(const model::Model& model, std::span<const results::ShellPoint> points,
                           int node, std::span<const int> places)
{
  std::vector<Group> groups;
  const int firstCopy = static_cast<int>(copiedNodes.size());
  for (const int place : places) {
    const model::Element& element = model.elements[ownerOf[place]];
    const Forces forces = ForcesAtNode(points.subspan(element.firstPoint, element.points),
                                       place - firstPlace[ownerOf[place]]);
    std::size_t g = 0;
    while (g < groups.size() && !Agree(*groups[g].first, element))
      ++g;
    if (g == groups.size())
      groups.push_back({&element, {}, 0});
    const Forces turned = Turned(forces, element.axes, groups[g].first->axes);
    for (std::size_t k = 0; k < turned.size(); ++k)
      groups[g].sum[k] += turned[k];
    ++groups[g].count;
    copies[place] = g == 0 ? -1 : firstCopy + static_cast<int>(g) - 1;
  }
  for (std::size_t g = 0; g < groups.size(); ++g) {
    for (double& sum : groups[g].sum)
      sum /= groups[g].count;
    if (g == 0) {
      ofNodes[node] = groups[g].sum;
    } else {
      copiedNodes.push_back(node);
      ofCopies.push_back(groups[g].sum);
    }
  }
}

int ShellCorners::CopyAt(std::size_t element, int i) const
{
  return copies.empty() ? -1 : copies[firstPlace[element] + i];
}

}  // namespace morlen
