#include <algorithm>
#include <cmath>
#include <cstdint>
#include <unordered_map>

#include "base/constants.h"
#include "check/checks.h"
#include "check/recorder.h"
#include "check/shell_edges.h"
#include "model/node.h"

namespace morlen::check {
namespace {

// Nodes closer than this part of the model's size count as one place.
constexpr double kCoincident = 1e-6;
// Elements with a smaller shape measure (see ShapeOf) are slivers.
constexpr double kSliverTriangle = 0.05;
constexpr double kSliverSolid = 0.02;

double SizeOf(const std::vector<const Node*>& nodes)
{
  Box box;
  for (const Node* node : nodes)
    box.Add(PlaceOf(*node));
  return box.Diagonal();
}

/// Nodes by their cell of a grid, to find those close to a place.
class Grid
{
public:
  explicit Grid(double distance) : size(distance) {}

  /// Adds the node. Returns a node added before whose distance is at most the size, or null.
  const Node* Enter(const Node& node)
  {
    const Point place = PlaceOf(node);
    const Node* near = Near(place);
    cells.emplace(Key(CellOf(place)), &node);
    return near;
  }

private:
  using Cell = std::array<std::int64_t, 3>;

  Cell CellOf(const Point& place) const
  {
    Cell cell;
    for (int k = 0; k < 3; ++k)
      cell[k] = std::llround(std::floor(place[k] / size / 2.0));
    return cell;
  }

  static std::uint64_t Key(const Cell& cell)
  {
    std::uint64_t key = 0;
    for (const std::int64_t k : cell)
      key = (key ^ static_cast<std::uint64_t>(k)) * 0x9e3779b97f4a7c15u + (key >> 29);
    return key;
  }

  const Node* NearInCell(const Cell& cell, const Point& place) const
  {
    const auto [first, last] = cells.equal_range(Key(cell));
    for (auto entry = first; entry != last; ++entry) {
      const Point d = Minus(place, PlaceOf(*entry->second));
      if (Dot(d, d) <= size * size)
        return entry->second;
    }
    return nullptr;
  }

  // A cell is twice as long as the size: at most two cells per axis are within reach of a place.
  const Node* Near(const Point& place) const
  {
    Cell low = CellOf(Minus(place, {size, size, size}));
    Cell high = CellOf(Minus(place, {-size, -size, -size}));
    for (Cell c = low; c[0] <= high[0]; ++c[0]) {
      for (c[1] = low[1]; c[1] <= high[1]; ++c[1]) {
        for (c[2] = low[2]; c[2] <= high[2]; ++c[2]) {
          if (const Node* node = NearInCell(c, place))
            return node;
        }
      }
    }
    return nullptr;
  }

  double size;  ///< half the length of a cell
  std::unordered_multimap<std::uint64_t, const Node*> cells;
};

void CheckCoincidence(const Subject& subject, Recorder& recorder)
{
  const double size = SizeOf(subject.nodes);
  if (!(size > 0.0 && std::isfinite(size)))
    return;
  Grid grid(kCoincident * size);
  for (const Node* node : subject.nodes) {
    if (const Node* other = grid.Enter(*node))
      recorder.Warn(Code::CoincidentNodes, recorder.PlaceOf(ReadItem::Node, node->number), "node ",
                    node->number, " is at the place of node ", other->number);
  }
}

// The determinant of an element with edges of the same lengths at its first corner, but at right
// angles.
double LargestDeterminant(const Elem& elem)
{
  double product = 1.0;
  for (int i = 1; i < (elem.ElemType() == Triangle ? 3 : 4); ++i)
    product *= std::sqrt(dist2(elem(0), elem(i)));
  return product;
}

double SumOfSquares(const Elem& elem, int corners)
{
  double sum = 0.0;
  for (int i = 0; i < corners; ++i) {
    for (int j = i + 1; j < corners; ++j)
      sum += dist2(elem(i), elem(j));
  }
  return sum;
}

// A measure of the shape, 1 for the equilateral element and 0 for a flat one: 4·√3·A over the sum
// of the squared edges, or 6·√2·V over the cube of their root mean square. Source: J. R. Shewchuk,
// "What is a good linear finite element?", 2002 (tables of quality measures).
double ShapeOf(const Elem& elem, double determinant)
{
  if (elem.ElemType() == Triangle)
    return 2.0 * std::sqrt(3.0) * determinant / SumOfSquares(elem, 3);
  return std::sqrt(2.0) * determinant / std::pow(SumOfSquares(elem, 4) / 6.0, 1.5);
}

void CheckShape(const Elem& elem, Recorder& recorder)
{
  if (elem.ElemType() == Linear)
    return;
  const bool solid = elem.ElemType() == Tetrahedra;
  const double determinant = DeterminantOf(elem);
  const std::ptrdiff_t place = recorder.PlaceOf(ReadItem::Element, elem.Num());
  const std::string name = Joined("element ", elem.Num());
  if (!ExceedsRounding(std::fabs(determinant), LargestDeterminant(elem)))
    recorder.Error(Code::ElementWithoutSize, place, name,
                   solid ? " has no volume" : " has no area");
  else if (determinant < 0.0)
    recorder.Error(Code::TurnedElement, place, name,
                   " is turned: its fourth node is on the wrong side");
  else if (ShapeOf(elem, determinant) < (solid ? kSliverSolid : kSliverTriangle))
    recorder.Warn(Code::Sliver, place, name, " is a sliver");
}

// True when the normals are more than 120 degrees apart. At the corner of two walls their
// directions tell nothing about a turned element.
bool AreFolded(const Elem& a, const Elem& b)
{
  const Point n = NormalOf(a);
  const Point m = NormalOf(b);
  return Dot(n, m) < -0.5 * std::sqrt(Dot(n, n) * Dot(m, m));
}

// Two triangles at a common edge run through it in opposite directions unless one is turned.
void CheckNeighbours(const Subject& subject, Recorder& recorder)
{
  const ShellEdges edges(subject.elements);
  for (const ShellEdges::Edge& edge : edges.All()) {
    if (edge.size() != 2 || edge[0].upwards != edge[1].upwards ||
        !AreFolded(*edge[0].elem, *edge[1].elem))
      continue;
    recorder.Warn(Code::TurnedElement, recorder.PlaceOf(ReadItem::Element, edge[1].elem->Num()),
                  "element ", edge[1].elem->Num(), " is turned against its neighbour ",
                  edge[0].elem->Num(), ": their normals are opposite");
  }
}

}  // namespace

void CheckGeometry(const Subject& subject, Recorder& recorder)
{
  if (subject.nodes.empty())
    return;
  CheckCoincidence(subject, recorder);
  for (const Elem* elem : subject.elements)
    CheckShape(*elem, recorder);
  CheckNeighbours(subject, recorder);
}

}  // namespace morlen::check
