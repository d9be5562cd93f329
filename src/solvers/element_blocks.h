#pragma once

#include <span>

namespace morlen {

/// The stiffness of an element, symmetric, in blocks of its nodes; borrowed.
struct ElementBlocks
{
  std::span<const int> nodes;  ///< their numbers, from 1
  int ndof;                    ///< equations of a node
  /// The blocks (i, j), from 0, of ndof² numbers row by row, for j from i on and one i after
  /// the other.
  const double* values;
};

/// What takes the stiffness of the elements of a model, one after the other.
class ElementSink
{
public:
  virtual ~ElementSink() = default;

  virtual void AddElement(const ElementBlocks& element) = 0;

  /// Tells that elements of these nodes, `count` each, are going to be added in this order, so
  /// that the way to them can be prepared. Changes nothing.
  virtual void Expect(std::span<const int> /*nodes*/, int /*count*/) {}

protected:
  ElementSink() = default;
  ElementSink(const ElementSink&) = default;
  ElementSink& operator=(const ElementSink&) = default;
};

}  // namespace morlen
