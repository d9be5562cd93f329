#pragma once

namespace morlen {

/// Operations per second of C = A·B with square matrices of 1500 rows, on one thread; 0 when the
/// benchmarks were built without OpenBLAS.
double DgemmRate();

}  // namespace morlen
