#pragma once

#include <vector>

#include "solvers/node_couplings.h"

namespace morlen::direct {

/// The place of each node in the order of elimination, both from 0: nested dissection of the graph
/// of the couplings. The same pattern gives the same order on every call. Fatal when memory is
/// short.
///
/// Source: G. Karypis, V. Kumar, A fast and high quality multilevel scheme for partitioning
/// irregular graphs, SIAM Journal on Scientific Computing 20 (1998) 359-392.
std::vector<int> OrderNodes(const NodePattern& pattern);

/// The place of each equation, from 1, for places of the nodes, from 0: the ndof equations of a
/// node remain together.
std::vector<int> PlacesOfEquations(const std::vector<int>& placesOfNodes, int ndof);

/// The size of the factors of a matrix of node blocks.
struct FactorSize
{
  double blocks = 0.0;      ///< blocks of the lower factor, diagonal included
  double operations = 0.0;  ///< sum of the squares of the columns' blocks
};

/// Counts the blocks of the factors for an order of the nodes, without computing them: the row of a
/// node in the factor is a subtree of the elimination tree (J. W. H. Liu, The role of elimination
/// trees in sparse factorization, SIAM Journal on Matrix Analysis and Applications 11 (1990)
/// 134-172). Time: proportional to the blocks.
FactorSize CountFactor(const NodePattern& pattern, const std::vector<int>& place);

}  // namespace morlen::direct
