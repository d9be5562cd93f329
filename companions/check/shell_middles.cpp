// Supports that ConvertTo6Nodes adds to the middles of edges where they are not meant.
//
// The conversion gives the middle of an edge the flags that both its ends have. That is right on a
// line of supports. It is wrong on an edge that cuts a corner between two such lines, and it adds
// springs to those that the file gives. Refined shells have neither fault: they get no supports at
// edges inside the shell, and no springs.
//
// A line of supports runs along the rim of the shell or a fold, or inside the shell along edges
// that continue each other. Another edge inside the shell is reported for a component when a
// triangle at the edge has a third corner that is free, and
// - both ends are on lines along the rim or a fold, or
// - the two other edges of a triangle at the edge are on lines.
// Also reported are, on no line,
// - the longest edge of a single triangle that is held all around, and
// - an edge to a support inside the shell that no other edge joins to a support.
// Other edges inside the shell belong to a support along a line or over an area.

#include <algorithm>
#include <array>
#include <cmath>
#include <string>
#include <unordered_map>
#include <unordered_set>

#include "check/checks.h"
#include "check/held_edges.h"
#include "check/recorder.h"
#include "check/shell_edges.h"
#include "model/constraint.h"
#include "model/node.h"
#include "problem/problem.h"

namespace morlen::check {
namespace {

constexpr std::size_t kShownEdges = 3;
std::vector<const Elem*> TrianglesOf(const Subject& subject)
{
  std::vector<const Elem*> triangles;
  for (const Elem* elem : subject.elements) {
    if (elem->ElemType() == Triangle && elem->Nnode() == 3)
      triangles.push_back(elem);
  }
  return triangles;
}

double LengthOf(const ShellEdges::Edge& edge)
{
  return std::sqrt(dist2(&edge.front().First(), &edge.front().Second()));
}

/// The nodes and triangles on which the held edges lie.
class HeldLines
{
public:
  HeldLines(const ShellEdges& all, const std::vector<HeldEdge>& edges, std::size_t triangles)
      : allAround(triangles),
        atNeighbour(triangles),
        sides(triangles),
        line(triangles),
        corner(triangles)
  {
    for (const ShellEdges::Edge& edge : all.All()) {
      if (edge.size() == 1)
        rim.insert({&edge.front().First(), &edge.front().Second()});
    }
    for (const HeldEdge& edge : edges)
      AddEdge(edge);
    for (const HeldEdge& edge : edges)
      AddNeighbours(edge);
  }

  /// The components of a line of supports along the rim or a fold through the node.
  Components OnLine(const Node& node) const
  {
    const auto found = onLine.find(&node);
    return found == onLine.end() ? Components() : found->second;
  }

  /// The components in which two or three edges of the triangle are on lines.
  Components Corner(std::size_t triangle) const { return corner[triangle]; }
  bool IsOnRim(const Node& node) const { return rim.contains(&node); }
  int EdgesAt(const Node& node, std::size_t k) const { return edgesAt.at(&node)[k]; }

  /// The components in which all edges of the triangle are held, but those of no neighbour.
  Components SingleAllAround(std::size_t triangle) const
  {
    return AllAround(triangle) & ~atNeighbour[triangle];
  }

private:
  Components AllAround(std::size_t triangle) const
  {
    return sides[triangle] == 3 ? allAround[triangle] : Components();
  }

  void AddEdge(const HeldEdge& edge)
  {
    for (const ShellSide& side : edge.edge) {
      Components& around = allAround[side.triangle];
      around = sides[side.triangle]++ == 0 ? edge.held : around & edge.held;
      corner[side.triangle] |= line[side.triangle] & edge.line;
      line[side.triangle] |= edge.line;
    }
    for (const Node* node : {&edge.edge.front().First(), &edge.edge.front().Second()}) {
      if (!edge.inside)
        onLine[node] |= edge.held;
      for (std::size_t k = 0; k < kMaxComponents; ++k)
        edgesAt[node][k] += edge.held[k];
    }
  }

  void AddNeighbours(const HeldEdge& edge)
  {
    Components once, twice;
    for (const ShellSide& side : edge.edge) {
      twice |= once & AllAround(side.triangle);
      once |= AllAround(side.triangle);
    }
    for (const ShellSide& side : edge.edge)
      atNeighbour[side.triangle] |= twice;
  }

  std::vector<Components> allAround;    ///< by triangle: held at the edges seen so far
  std::vector<Components> atNeighbour;  ///< by triangle: a neighbour is held all around too
  std::vector<int> sides;               ///< by triangle: its edges with a support
  std::vector<Components> line;         ///< by triangle: an edge is on a line
  std::vector<Components> corner;       ///< by triangle: two edges are on lines
  std::unordered_map<const Node*, Components> onLine;
  std::unordered_map<const Node*, std::array<int, kMaxComponents>> edgesAt;
  std::unordered_set<const Node*> rim;
};

Components FreeAcross(const HeldEdge& edge)
{
  Components everywhere = edge.held;
  for (const ShellSide& side : edge.edge)
    everywhere &= FlagsOf(side.Opposite().constraint.get(), Constraint::kPrescribed);
  return edge.held & ~everywhere;
}

// Held at an end inside the shell that no other edge joins to a support.
Components AtSingleSupport(const HeldEdge& edge, const HeldLines& lines)
{
  Components single;
  for (const Node* node : {&edge.edge.front().First(), &edge.edge.front().Second()}) {
    for (std::size_t k = 0; k < single.size() && !lines.IsOnRim(*node); ++k)
      single[k] = single[k] || (edge.held[k] && lines.EdgesAt(*node, k) == 1);
  }
  return single;
}

// The longest edge of a single triangle that is held all around becomes unmeant, except on lines
// and unless another edge of the triangle is already.
void MarkLongest(std::vector<HeldEdge>& edges, const HeldLines& lines, std::size_t triangles)
{
  struct Around
  {
    HeldEdge* longest = nullptr;
    Components unmeant;
  };
  std::vector<Around> around(triangles);
  for (HeldEdge& edge : edges) {
    for (const ShellSide& side : edge.edge) {
      Around& at = around[side.triangle];
      at.unmeant |= edge.unmeant;
      const bool onLine = (edge.held & ~edge.line).none();
      if (!onLine && (!at.longest || LengthOf(edge.edge) > LengthOf(at.longest->edge)))
        at.longest = &edge;
    }
  }
  for (std::size_t t = 0; t < triangles; ++t) {
    if (around[t].longest)
      around[t].longest->unmeant |=
          lines.SingleAllAround(t) & ~around[t].unmeant & ~around[t].longest->line;
  }
}

void MarkUnmeant(std::vector<HeldEdge>& edges, const HeldLines& lines, std::size_t triangles)
{
  for (HeldEdge& edge : edges) {
    if (!edge.inside)
      continue;
    const ShellSide& first = edge.edge.front();
    Components cut = lines.OnLine(first.First()) & lines.OnLine(first.Second());
    for (const ShellSide& side : edge.edge)
      cut |= lines.Corner(side.triangle);
    edge.unmeant = ((cut & FreeAcross(edge)) | AtSingleSupport(edge, lines)) & ~edge.line;
  }
  MarkLongest(edges, lines, triangles);
}

// "2-10 of elements 1 and 2 (the other diagonal: 1-11)"
std::string NameOf(const ShellEdges::Edge& edge)
{
  std::string name =
      Joined(edge.front().low, "-", edge.front().high, " of elements ", edge.front().elem->Num());
  for (const ShellSide& side : edge.subspan(1))
    name += Joined(" and ", side.elem->Num());
  if (edge.size() == 2) {
    const auto [low, high] = std::minmax(edge[0].Opposite().number, edge[1].Opposite().number);
    name += Joined(" (the other diagonal: ", low, "-", high, ")");
  }
  return name;
}

std::string Conversion(const Problem& problem)
{
  return problem.convertTo6Nodes ? "ConvertTo6Nodes" : "Solver Double";
}

void WarnOfEdges(const std::vector<const HeldEdge*>& edges, const Problem& problem,
                 Recorder& recorder)
{
  std::string names;
  for (std::size_t i = 0; i < std::min(edges.size(), kShownEdges); ++i)
    names += (i == 0 ? "" : ", ") + NameOf(edges[i]->edge);
  if (edges.size() > kShownEdges)
    names += Joined(" and ", edges.size() - kShownEdges, " more");
  recorder.Warn(Code::ShellEdgeSupported,
                recorder.PlaceOf(ReadItem::Element, edges.front()->edge.front().elem->Num()),
                Conversion(problem), " supports the middle of ",
                edges.size() == 1 ? "an edge" : Joined(edges.size(), " edges"),
                " inside the shell, because both ends are supported: ", names,
                ". The shell becomes too stiff. Swap the diagonal or refine there, so that no "
                "edge inside the shell joins two supported nodes, unless the support runs along "
                "it");
}

/// The springs of one component: those of the file at the ends of edges whose middles get springs
/// too, and those of the middles.
struct Springs
{
  double given = 0.0;
  double added = 0.0;
  std::unordered_set<const Node*> nodes;
};

void AddSpring(const HeldEdge& edge, std::size_t k, Springs& springs)
{
  springs.added += edge.support->values[k];
  for (const Node* node : {&edge.edge.front().First(), &edge.edge.front().Second()}) {
    if (springs.nodes.insert(node).second)
      springs.given += node->constraint->values[k];
  }
}

// "along x, along y 1.5 times, along z 3.24 times"; empty when no springs are added.
std::string FactorsOf(const std::array<Springs, kMaxComponents>& springs)
{
  static constexpr const char* kNames[kMaxComponents] = {"along x", "along y", "along z",
                                                         "about x", "about y", "about z"};
  std::string text, last;
  for (std::size_t k = 0; k < kMaxComponents; ++k) {
    if (!(springs[k].added > 0.0 && springs[k].given > 0.0))
      continue;
    const std::string factor =
        Joined(" ", Rounded(1.0 + springs[k].added / springs[k].given, 3), " times");
    text += (factor == last ? "" : last) + (text.empty() ? "" : ", ") + kNames[k];
    last = factor;
  }
  return text + last;
}

void CheckSprings(const std::vector<HeldEdge>& edges, const Problem& problem, Recorder& recorder)
{
  std::array<Springs, kMaxComponents> springs;
  int middles = 0;
  const HeldEdge* first = nullptr;
  for (const HeldEdge& edge : edges) {
    const Components sprung = FlagsOf(edge.support.get(), Constraint::kSpring);
    for (std::size_t k = 0; k < kMaxComponents; ++k) {
      if (sprung[k])
        AddSpring(edge, k, springs[k]);
    }
    middles += sprung.any();
    first = first || sprung.none() ? first : &edge;
  }
  const std::string factors = FactorsOf(springs);
  if (!first || factors.empty())
    return;
  const int node = first->edge.front().low;
  recorder.Warn(Code::SpringUnderConversion, recorder.PlaceOf(ReadItem::Support, node),
                Conversion(problem), " adds springs in the middle of ", middles,
                middles == 1 ? " edge" : " edges",
                ", because both ends have one (the first: ", node, "-", first->edge.front().high,
                "). In all the springs become stiffer: ", factors,
                ". Divide their stiffnesses by this, or put them on nodes that no edge joins");
}

}  // namespace

void CheckMiddleNodes(const Subject& subject, Recorder& recorder)
{
  const Problem& problem = subject.problem;
  const bool converts =
      problem.convertTo6Nodes || problem.solverSettings.type == SolverType::Double;
  if (!converts || problem.shellFormulation == ShellFormulation::Refined)
    return;
  const std::vector<const Elem*> triangles = TrianglesOf(subject);
  const ShellEdges edges(triangles);
  std::vector<HeldEdge> held = HeldEdgesOf(edges, problem);
  MarkUnmeant(held, HeldLines(edges, held, triangles.size()), triangles.size());
  std::vector<const HeldEdge*> unmeant;
  for (const HeldEdge& edge : held) {
    if (edge.unmeant.any())
      unmeant.push_back(&edge);
  }
  if (!unmeant.empty())
    WarnOfEdges(unmeant, problem, recorder);
  CheckSprings(held, problem, recorder);
}

}  // namespace morlen::check
