// The edges of a shell whose middle nodes get a support, and the lines of supports along them.
//
// Two held edges at a node are on one line when each continues the other best.

#include "check/held_edges.h"

#include <algorithm>
#include <cmath>
#include <unordered_map>
#include <utility>

#include "check/checks.h"
#include "model/euler.h"
#include "model/node.h"
#include "problem/problem.h"

namespace morlen::check {
namespace {

// Edges with a larger angle between the normals, in radians, are folds.
constexpr double kFold = 0.02;
// A rotation whose axis is closer to the normal than this (1 less the cosine) is the drilling
// rotation, which plane shells do not feel.
constexpr double kAlongNormal = 1e-6;
// Nodes with more held edges are passed over: a node has at most 25 triangles of each mesh.
constexpr std::size_t kMostRays = 60;

Point AxisOf(const Constraint& support, std::size_t k)
{
  Point axis{};
  if (!support.localAxes) {
    axis[k] = 1.0;
    return axis;
  }
  const Axes axes = AxesFromEuler(support.euler.data());
  const ReaVec& local = k == 0 ? axes.x : k == 1 ? axes.y : axes.z;
  for (int i = 1; i <= 3; ++i)
    axis[i - 1] = local(i);
  return axis;
}

bool IsAlong(const Point& axis, const Point& normal)
{
  return std::fabs(Dot(axis, normal)) >= (1.0 - kAlongNormal) * Length(normal);
}

// The rotations of a support about the normals of all triangles at the edge.
Components DrillingOf(const Constraint& support, const ShellEdges::Edge& edge)
{
  Components drilling;
  for (std::size_t k = 3; k < drilling.size(); ++k) {
    const Point axis = AxisOf(support, k - 3);
    drilling[k] = std::all_of(edge.begin(), edge.end(), [&](const ShellSide& side) {
      return IsAlong(axis, NormalOf(*side.elem));
    });
  }
  return drilling;
}

bool IsFold(const ShellEdges::Edge& edge)
{
  const Point n = NormalOf(*edge.front().elem);
  return std::any_of(edge.begin() + 1, edge.end(), [&](const ShellSide& side) {
    const Point m = NormalOf(*side.elem);
    return Length(Cross(n, m)) > std::sin(kFold) * Length(n) * Length(m);
  });
}

/// An edge as seen from one of its ends.
struct Ray
{
  HeldEdge* edge;
  Point direction;  ///< of length 1, away from the node
};

using Rays = std::vector<Ray>;

// The ray that continues this one best, by the cosine of the angle between them.
const Ray& BestContinuation(const Ray& ray, const Rays& rays)
{
  return *std::min_element(rays.begin(), rays.end(), [&](const Ray& a, const Ray& b) {
    return Dot(a.direction, ray.direction) < Dot(b.direction, ray.direction);
  });
}

// Two edges at a node are on one line when each continues the other best, with a bend of less than
// 45 degrees.
void MarkLinesAt(const Rays& rays)
{
  constexpr double kStraight = -0.70710678;
  for (const Ray& ray : rays) {
    const Ray& next = BestContinuation(ray, rays);
    if (Dot(ray.direction, next.direction) < kStraight &&
        BestContinuation(next, rays).edge == ray.edge)
      ray.edge->line |= ray.edge->held & next.edge->held;
  }
}

void MarkLines(std::vector<HeldEdge>& edges)
{
  std::unordered_map<const Node*, Rays> raysAt;
  for (HeldEdge& edge : edges) {
    if (edge.held.none())
      continue;
    const ShellSide& side = edge.edge.front();
    Point along = Minus(PlaceOf(side.Second()), PlaceOf(side.First()));
    const double length = Length(along);
    for (double& component : along)
      component /= length;
    raysAt[&side.First()].push_back({&edge, along});
    raysAt[&side.Second()].push_back({&edge, Minus({}, along)});
  }
  for (const auto& [node, rays] : raysAt) {
    if (rays.size() <= kMostRays)
      MarkLinesAt(rays);
  }
}

}  // namespace

Components FlagsOf(const Constraint* support, Constraint::Flag flag)
{
  Components flags;
  for (std::size_t k = 0; support && k < flags.size(); ++k)
    flags[k] = support->flags[k] == flag;
  return flags;
}

std::vector<HeldEdge> HeldEdgesOf(const ShellEdges& edges, const Problem& problem)
{
  std::vector<HeldEdge> held;
  for (const ShellEdges::Edge& edge : edges.All()) {
    const ShellSide& side = edge.front();
    std::unique_ptr<Constraint> support =
        MergeTwoConstraints(problem.components.count, side.First().constraint.get(),
                            side.Second().constraint.get(), problem.coplanarityAngle);
    if (!support)
      continue;
    const Components prescribed =
        FlagsOf(support.get(), Constraint::kPrescribed) & ~DrillingOf(*support, edge);
    const bool inside = edge.size() > 1 && !IsFold(edge);
    held.push_back(
        {edge, std::move(support), prescribed, inside, inside ? Components() : prescribed});
  }
  MarkLines(held);
  return held;
}

}  // namespace morlen::check
