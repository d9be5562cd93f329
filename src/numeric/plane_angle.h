#pragma once

namespace morlen {

/// The cross product of two vectors of three components.
void CrossProduct(const double* a, const double* b, double* product);

/// The angle between two planes with these normals of any length, 0 to π/2: planes with opposite
/// normals are one. Exact also for small angles, where a cosine has lost its digits.
double AngleOfPlanes(const double* a, const double* b);

}  // namespace morlen
