#pragma once

#include "numeric/matriu.h"

namespace morlen {

struct BeamSpan;

/// The stiffness of a beam in its local axes, as n×n blocks for n components of a node.
///
/// K11 and K22 belong to the ends. K12 has the rows of the first end and the columns of the second;
/// K21 is its transpose.
struct BeamBlocks
{
  /// Fatal on a section or a material that does not fit.
  void Construct(const BeamSpan& beam);

  /// forces = K·local. Both arrays hold the components of the first end, then those of the second.
  void Multiply(const double* local, double* forces) const;

  Matriu K11, K12, K22;
};

}  // namespace morlen
