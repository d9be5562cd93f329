#include "assembly/beam_blocks.h"

#include "model/elem.h"
#include "model/material.h"
#include "model/node.h"
#include "problem/beam_span.h"

namespace morlen {

namespace {

/// forces = own·a + other·b, for n×n blocks. The rows of `other` are `step` entries apart, its
/// columns `stride` entries.
void MultiplyEnd(int n, const double* own, const double* a, const double* other, int step,
                 int stride, const double* b, double* forces)
{
  for (int i = 0; i < n; ++i) {
    double sum = 0.0;
    for (int j = 0; j < n; ++j)
      sum += own[i * n + j] * a[j] + other[i * step + j * stride] * b[j];
    forces[i] = sum;
  }
}

}  // namespace

void BeamBlocks::Construct(const BeamSpan& beam)
{
  beam.material.ConstructLocalK(beam.elem.Num(), K11, K12, K22, dist2(beam.elem(0), beam.elem(1)),
                                beam.type, beam.hingeCode.Value());
}

void BeamBlocks::Multiply(const double* local, double* forces) const
{
  const int n = K11.Rows();
  const double* const second = local + n;
  MultiplyEnd(n, K11.Data(), local, K12.Data(), n, 1, second, forces);
  MultiplyEnd(n, K22.Data(), second, K12.Data(), 1, n, local, forces + n);
}

}  // namespace morlen
