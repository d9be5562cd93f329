// Finds plane shells whose triangles are folded only because their coordinates are rounded.
//
// Triangles that share an edge and are folded there by less than 0.05 belong to one patch. A patch
// that keeps near one plane is meant to be flat. The analysis still counts its triangles as folded
// where the angle between them exceeds the coplanarity angle, and slight folds transmit no twisting
// moments. A fold counts when it is below 0.02 and the patch contains all triangles at both ends of
// the edge: elsewhere, as on the rim of a plane strip between two real folds, the nodes are folded
// anyway. The two limits differ because rounding would cut a curved shell with folds of about the
// limit into small parts that are nearly plane.
//
// Refined shells transmit twisting moments at folds of any size: there is nothing to find.

#include <algorithm>
#include <cmath>
#include <limits>
#include <numbers>
#include <optional>
#include <string>
#include <unordered_map>

#include "base/disjoint_sets.h"
#include "check/checks.h"
#include "check/recorder.h"
#include "check/shell_edges.h"
#include "model/elem.h"
#include "model/node.h"
#include "numeric/plane_angle.h"
#include "problem/problem.h"

namespace morlen::check {
namespace {

// Triangles with a smaller fold between them, in radians, belong to one patch.
constexpr double kBetweenPatches = 0.05;
// A larger fold is not one by rounding.
constexpr double kLargestSlight = 0.02;
// A patch is meant to be flat when it departs from one plane by less than this part of its size.
constexpr double kFlat = 1e-3;
// The analysis compares cosines, whose rounding errors are larger than smaller angles.
constexpr double kSmallestAngle = 1e-8;
// More triangles at one edge than the program takes at a node.
constexpr std::size_t kTooManySides = 25;

/// An edge at which two triangles of a patch meet.
struct Fold
{
  const ShellSide* side;  ///< of one of them
  double angle;           ///< between their normals without regard to their signs, in radians
};

/// A patch with a fold that counts.
struct Patch
{
  std::vector<const Elem*> triangles;
  double largestFold = 0.0;
};

/// The patches of a list of elements.
class Patches
{
public:
  explicit Patches(const std::vector<const Elem*>& list)
      : elements(list), edges(list), sets(list.size())
  {
    for (const Elem* elem : elements)
      normals.push_back(elem->ElemType() == Triangle ? NormalOf(*elem) : Point{});
    for (const ShellEdges::Edge& edge : edges.All()) {
      if (edge.size() <= kTooManySides)
        AddFolds(edge);
    }
    for (std::size_t t = 0; t < elements.size(); ++t)
      AddToNodes(t);
  }

  /// The patches with folds above the limit that count, by their first triangle.
  std::vector<Patch> Folded(double limit)
  {
    std::unordered_map<std::size_t, double> largest;
    for (const Fold& fold : folds) {
      const std::size_t patch = sets.Find(fold.side->triangle);
      if (fold.angle > limit && fold.angle < kLargestSlight &&
          IsInside(fold.side->First(), patch) && IsInside(fold.side->Second(), patch))
        largest[patch] = std::max(largest[patch], fold.angle);
    }
    std::vector<Patch> folded;
    if (largest.empty())
      return folded;
    std::unordered_map<std::size_t, std::size_t> placeOf;
    for (std::size_t t = 0; t < elements.size(); ++t) {
      const std::size_t patch = sets.Find(t);
      if (!largest.contains(patch))
        continue;
      const auto [place, added] = placeOf.try_emplace(patch, folded.size());
      if (added)
        folded.push_back({.triangles = {}, .largestFold = largest[patch]});
      folded[place->second].triangles.push_back(elements[t]);
    }
    return folded;
  }

private:
  // Triangles without an area are not joined.
  void AddFolds(const ShellEdges::Edge& edge)
  {
    for (std::size_t i = 0; i < edge.size(); ++i) {
      for (std::size_t j = i + 1; j < edge.size(); ++j) {
        const Point& n = normals[edge[i].triangle];
        const Point& m = normals[edge[j].triangle];
        const double angle = AngleOfPlanes(n.data(), m.data());
        if (!(angle < kBetweenPatches && Dot(n, n) > 0.0 && Dot(m, m) > 0.0))
          continue;
        sets.Join(edge[i].triangle, edge[j].triangle);
        folds.push_back({&edge[i], angle});
      }
    }
  }

  void AddToNodes(std::size_t triangle)
  {
    if (elements[triangle]->ElemType() != Triangle)
      return;
    const std::size_t patch = sets.Find(triangle);
    for (int i = 0; i < 3; ++i) {
      const auto [known, added] = patchAt.try_emplace((*elements[triangle])(i), patch);
      if (!added && known->second != patch)
        known->second.reset();
    }
  }

  bool IsInside(const Node& node, std::size_t patch) const { return patchAt.at(&node) == patch; }

  const std::vector<const Elem*>& elements;
  ShellEdges edges;
  DisjointSets sets;
  std::vector<Point> normals;  ///< twice as long as the areas; 0 for other elements
  std::vector<Fold> folds;     ///< within patches
  /// The patch of all triangles at a node; none when they belong to several.
  std::unordered_map<const Node*, std::optional<std::size_t>> patchAt;
};

Point MeanCorner(const Patch& patch)
{
  Point mean{};
  for (const Elem* elem : patch.triangles) {
    for (int i = 0; i < 3; ++i) {
      const Point place = PlaceOf(*(*elem)(i));
      for (int k = 0; k < 3; ++k)
        mean[k] += place[k] / (3.0 * static_cast<double>(patch.triangles.size()));
    }
  }
  return mean;
}

// The mean of the normals, weighted by the areas, is that of the plane: it depends only on the rim.
Point MeanNormal(const Patch& patch)
{
  const Point first = NormalOf(*patch.triangles.front());
  Point sum{};
  for (const Elem* elem : patch.triangles) {
    const Point n = NormalOf(*elem);
    for (int k = 0; k < 3; ++k)
      sum[k] += std::copysign(1.0, Dot(n, first)) * n[k];
  }
  const double length = Length(sum);
  return {sum[0] / length, sum[1] / length, sum[2] / length};
}

// Half the distance of the two planes that enclose the patch, relative to its size: twice the
// distance from its middle to its farthest corner.
double Departure(const Patch& patch)
{
  const Point middle = MeanCorner(patch);
  const Point normal = MeanNormal(patch);
  double low = 0.0, high = 0.0, radius = 0.0;
  for (const Elem* elem : patch.triangles) {
    for (int i = 0; i < 3; ++i) {
      const Point r = Minus(PlaceOf(*(*elem)(i)), middle);
      low = std::min(low, Dot(r, normal));
      high = std::max(high, Dot(r, normal));
      radius = std::max(radius, Length(r));
    }
  }
  return (high - low) / 2.0 / (2.0 * radius);
}

double LeastHeight(const Patch& patch)
{
  double least = std::numeric_limits<double>::infinity();
  for (const Elem* elem : patch.triangles) {
    double longest = 0.0;
    for (int i = 0; i < 3; ++i)
      longest = std::max(longest, dist2((*elem)(i), (*elem)((i + 1) % 3)));
    least = std::min(least, Length(NormalOf(*elem)) / std::sqrt(longest));
  }
  return least;
}

// The decimals with which rounded coordinates fold triangles of this height by less than an angle.
// A corner moves along the normal by up to √3 / 2 units of the last decimal, so that a normal tilts
// by up to √3 units over the height, and a fold is up to twice that. For 1e-7: 8 for heights from
// 0.35 to 3.4.
int DecimalsFor(double height, double angle)
{
  constexpr double kMost = 17.0;
  const double unit = angle * height / (2.0 * std::numbers::sqrt3);
  const double decimals = std::ceil(-std::log10(unit));
  return decimals > 0.0 ? static_cast<int>(std::min(decimals, kMost)) : 0;
}

double LimitOf(const Problem& problem)
{
  return std::max(problem.coplanarityAngle, kSmallestAngle);
}

// A coplanarity angle that makes the patch plane; none when its folds are too large for that. At a
// node with several triangles the folds add up, so it is three times the largest of them. Tilted
// normals turn the drilling stiffness against bending: 0.06 % at 2e-3, 3 % at 0.02.
std::optional<double> AngleFor(double fold)
{
  constexpr double kLargest = 2e-3;
  const double unit = std::pow(10.0, std::floor(std::log10(3.0 * fold)));
  const double angle = unit * std::ceil(3.0 * fold / unit);
  return angle <= kLargest ? std::optional(angle) : std::nullopt;
}

void Warn(const Patch& patch, const Problem& problem, std::size_t others, Recorder& recorder)
{
  const Elem& first = *patch.triangles.front();
  const int decimals =
      DecimalsFor(LeastHeight(patch) / problem.units.MeshLengthRatio(), LimitOf(problem));
  std::string mend = Joined("give the coordinates ", decimals, " or more decimals");
  if (const std::optional<double> angle = AngleFor(patch.largestFold))
    mend += Joined(", or 'CoplanarityAngle ", Rounded(*angle, 2), "'");
  if (others > 0)
    mend += Joined("; ", others, " smaller parts are folded too");
  recorder.Warn(Code::ShellFold, recorder.PlaceOf(ReadItem::Element, first.Num()), "the ",
                patch.triangles.size(), " triangles around element ", first.Num(),
                " lie in one plane up to ", Rounded(Departure(patch), 2),
                " of their size, but they are folded by up to ", Rounded(patch.largestFold, 3),
                ", more than the coplanarity angle of ", Rounded(problem.coplanarityAngle, 2),
                ": such folds transmit no twisting moments. Are the coordinates rounded? Then ",
                mend);
}

}  // namespace

void CheckFolds(const Subject& subject, Recorder& recorder)
{
  constexpr std::size_t kShown = 3;
  const Problem& problem = subject.problem;
  if (problem.shellFormulation == ShellFormulation::Refined)
    return;
  Patches patches(subject.elements);
  std::vector<Patch> flat = patches.Folded(LimitOf(problem));
  std::erase_if(flat, [](const Patch& patch) { return !(Departure(patch) < kFlat); });
  std::stable_sort(flat.begin(), flat.end(), [](const Patch& a, const Patch& b) {
    return a.triangles.size() > b.triangles.size();
  });
  const std::size_t shown = std::min(flat.size(), kShown);
  for (std::size_t i = 0; i < shown; ++i)
    Warn(flat[i], problem, i + 1 == shown ? flat.size() - shown : 0, recorder);
}

}  // namespace morlen::check
