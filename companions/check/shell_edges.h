#pragma once

#include <cstddef>
#include <span>
#include <vector>

namespace morlen {

class Elem;
class Node;

namespace check {

/// A side of a triangle, from its corner `corner` (from 0) to the next one.
struct ShellSide
{
  const Elem* elem;
  std::size_t triangle;  ///< the position of the triangle in the list
  int corner;
  int low, high;  ///< numbers of its ends
  bool upwards;   ///< from the lower number to the higher, in the order of the triangle's nodes

  const Node& First() const;
  const Node& Second() const;
  /// The corner that is not on the side.
  const Node& Opposite() const;
};

/// The edges of a list of elements, each with the sides of the triangles that meet there. Elements
/// other than triangles are passed over. Takes n log n.
class ShellEdges
{
public:
  /// The sides of one edge, in the order of the list.
  using Edge = std::span<const ShellSide>;

  explicit ShellEdges(const std::vector<const Elem*>& elements);
  ShellEdges(const ShellEdges&) = delete;
  ShellEdges& operator=(const ShellEdges&) = delete;

  /// By ascending numbers of their ends.
  const std::vector<Edge>& All() const { return edges; }

private:
  std::vector<ShellSide> sides;
  std::vector<Edge> edges;  ///< parts of `sides`
};

}  // namespace check

}  // namespace morlen
