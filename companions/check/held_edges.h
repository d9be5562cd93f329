#pragma once

#include <bitset>
#include <memory>
#include <vector>

#include "base/node_components.h"
#include "check/shell_edges.h"
#include "model/constraint.h"

namespace morlen {

struct Problem;

namespace check {

using Components = std::bitset<kMaxComponents>;

/// The components of a support that have this flag; none without a support.
Components FlagsOf(const Constraint* support, Constraint::Flag flag);

/// An edge whose middle node gets a support.
struct HeldEdge
{
  ShellEdges::Edge edge;
  std::unique_ptr<Constraint> support;  ///< of the middle node
  Components held;                      ///< prescribed there, without the drilling rotation
  bool inside;                          ///< neither on the rim nor at a fold
  Components line{};                    ///< held along a line that contains the edge
  Components unmeant{};                 ///< held, but probably not meant
};

/// The edges whose middle nodes get a support by the conversion to six nodes.
std::vector<HeldEdge> HeldEdgesOf(const ShellEdges& edges, const Problem& problem);

}  // namespace check

}  // namespace morlen
