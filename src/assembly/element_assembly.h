#pragma once

class BSolver;
class Matriu;
class Node;

/// Where the node blocks of the elements of one kind go: the matrix, with the number of
/// components of a node, and whether blocks are turned into the axes of the supports.
class BlockAssembler
{
public:
  BlockAssembler(BSolver& matrix, int components, bool toSupportAxes)
      : solver(matrix), n(components), applyLocalAxes(toSupportAxes)
  {
  }

  /// Adds the block K (n×n, global axes) between the components of a (rows) and b
  /// (columns), its mirror image included. K is used as scratch. The solver gets the
  /// block with the lower system number in its rows.
  void Add(const Node& a, const Node& b, Matriu& K);

private:
  BSolver& solver;
  int n;
  bool applyLocalAxes;
};
