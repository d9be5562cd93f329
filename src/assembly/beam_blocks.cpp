#include "assembly/beam_blocks.h"

#include "model/elem.h"
#include "model/material.h"
#include "model/node.h"
#include "problem/beam_span.h"

namespace {

/// The sum of K·a and L·b, or Lᵀ·b, in row i of a beam's end.
double RowTimes(const Matriu& own, const double* a, const Matriu& other, bool transposed,
                const double* b, int i)
{
  double sum = 0.0;
  for (int j = 1; j <= own.Cols(); ++j)
    sum += own(i, j) * a[j - 1] + (transposed ? other(j, i) : other(i, j)) * b[j - 1];
  return sum;
}

}  // namespace

void BeamBlocks::Construct(const BeamSpan& beam)
{
  beam.material.ConstructLocalK(beam.elem.Num(), K11, K12, K22, dist2(beam.elem(0), beam.elem(1)),
                                beam.type, beam.hingeCode);
}

void BeamBlocks::Multiply(const double* local, double* forces) const
{
  const int n = K11.Rows();
  const double* const first = local;
  const double* const second = local + n;
  for (int i = 1; i <= n; ++i) {
    forces[i - 1] = RowTimes(K11, first, K12, false, second, i);
    forces[n + i - 1] = RowTimes(K22, second, K12, true, first, i);
  }
}
