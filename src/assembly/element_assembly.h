#pragma once

class BSolver;
class Elem;
class Matriu;
class Node;

// Values of applyLocalAxes: in which axes the stiffness of the elements is added.
constexpr int kInGlobalAxes = 0;
constexpr int kInSupportAxes = 1;
/// In global axes, and only the elements at supported nodes, so that of the rows of the matrix
/// only those of these nodes are complete.
constexpr int kOnlyAtSupports = -1;

/// Where the node blocks of the elements of one kind go: the matrix, with the number of
/// components of a node.
class BlockAssembler
{
public:
  BlockAssembler(BSolver& matrix, int components, int applyLocalAxes);

  /// Whether the stiffness of the element is wanted.
  bool Takes(const Elem& elem) const;

  /// Adds the block K (n×n, global axes) between the components of a (rows) and b
  /// (columns), its mirror image included. K is used as scratch. The solver gets the
  /// block with the lower system number in its rows.
  void Add(const Node& a, const Node& b, Matriu& K);

private:
  BSolver& solver;
  int n;
  bool toSupportAxes;
  bool onlyAtSupports;
};
