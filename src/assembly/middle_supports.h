#pragma once

namespace morlen {

struct Problem;

/// Gives the nodes that a conversion to six nodes has added the supports of refined shells.
///
/// The node in the middle of an edge gets the supports that both ends of the edge have, but no
/// springs, where the edge is at the border of the shells, at a fold of more than 0.02 radians or
/// at the meeting of three or more triangles. Inside a smooth shell it stays free: a support there
/// would hold the shell along an edge of which only the ends are supported.
void SupportMiddleNodes(Problem& problem);

}  // namespace morlen
