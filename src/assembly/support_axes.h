#pragma once

namespace morlen {

class Matriu;
class Node;
class ReaVecV;
class VoidPlex;

/// Turns the block K (n×n) between the components of node a (rows) and node b (columns)
/// from global axes into the axes of their supports, where these have axes of their own.
void ApplyLocalAxestoKMatrix(Matriu& K, const Node* a, const Node* b, int n);

/// Turns, for every node whose support has axes of its own, its n components of a vector
/// by equation from global axes into those of the support, or back.
void ConvertGlobalLoadToLocal(const VoidPlex& nodes, ReaVecV& vector, int n);
void ConvertLocalResultsToGlobal(const VoidPlex& nodes, ReaVecV& vector, int n);

}  // namespace morlen
