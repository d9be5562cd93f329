#pragma once

#include <span>

namespace morlen {

/// The stiffness of an element, symmetric, in blocks of its nodes; borrowed.
struct ElementBlocks
{
  std::span<const int> nodes;  ///< their numbers, from 1
  int ndof;                    ///< equations of a node
  /// The blocks (i, j), i and j from 0, for i <= j, ordered by i, then by j; each has ndof²
  /// numbers, row by row.
  const double* values;
};

/// Receives the elements of a model one by one: a matrix adds their stiffness, a vector their
/// forces.
class ElementSink
{
public:
  virtual ~ElementSink() = default;

  /// Adds one element.
  virtual void AddElement(const ElementBlocks& element) = 0;

  /// Announces elements to the sink in groups so that it can prefetch: the elements that come
  /// next, in this order; `nodes` has the numbers of their nodes, `count` for each element.
  /// Changes no value.
  virtual void Prefetch(std::span<const int> /*nodes*/, int /*count*/) {}

protected:
  ElementSink() = default;
  ElementSink(const ElementSink&) = default;
  ElementSink& operator=(const ElementSink&) = default;
};

}  // namespace morlen
