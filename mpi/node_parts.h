#pragma once

#include <vector>

#include "solvers/node_couplings.h"

namespace morlen::mpi {

/// A part (from 0) for each node. All parts have about as many blocks of the matrix, and few nodes
/// have neighbours in other parts.
///
/// Source: G. Karypis, V. Kumar, Multilevel k-way partitioning scheme for irregular graphs, Journal
/// of Parallel and Distributed Computing 48 (1998) 96-129.
std::vector<int> PartsOfNodes(const NodePattern& pattern, int parts);

}  // namespace morlen::mpi
