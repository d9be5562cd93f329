#pragma once

namespace morlen {

class Matriu;
class Node;
class ReaVecV;
class VoidPlex;

/// Rotates the block K (n×n) of node a (rows) and node b (columns) from global axes into the axes
/// of their supports, where a support has local axes.
void ApplyLocalAxestoKMatrix(Matriu& K, const Node* a, const Node* b, int n);

/// Rotates the n components of every node whose support has local axes, in a vector by equation,
/// from global axes into those of the support, or back.
void ConvertGlobalLoadToLocal(const VoidPlex& nodes, ReaVecV& vector, int n);
void ConvertLocalResultsToGlobal(const VoidPlex& nodes, ReaVecV& vector, int n);

}  // namespace morlen
