#pragma once

#include <span>

/// The stiffness of an element, symmetric, in blocks of its nodes; borrowed.
struct ElementBlocks
{
  std::span<const int> nodes;  ///< their numbers, from 1
  int ndof;                    ///< equations of a node
  /// The blocks (i, j), from 0, of ndof² numbers row by row, for j from i on and one i after
  /// the other.
  const double* values;
};
