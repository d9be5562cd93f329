#pragma once

#include "numeric/matriu.h"

namespace morlen {

struct BeamSpan;

/// The stiffness of a beam in its local axes, in blocks of its ends, each of as many rows as a
/// node has components; that of the second end with the first is the transpose of K12.
struct BeamBlocks
{
  /// Fatal on a section or a material that does not fit.
  void Construct(const BeamSpan& beam);

  /// forces = K·local: both hold the components of the first end, then those of the second.
  void Multiply(const double* local, double* forces) const;

  Matriu K11, K12, K22;
};

}  // namespace morlen
