#pragma once

#include <array>

class Matriu;
class ReaVecV;

// What a node of a solid or a shell has at a point of integration is three numbers, of which
// the strain blocks B (strains × components) consist; for a solid the gradient of its shape
// function, for a shell the slopes in its plane and the value. All products that a pair of
// nodes has in the integral of Bᵢᵀ·D·Bⱼ are then among the nine of their sum M = Σ w·nᵢ·nⱼᵀ
// over the points, and D, the same at all points and without coupling of stretches and shear
// strains, comes in once. Nothing is allocated.

/// The three numbers of a node at a point.
using NodeNumbers = std::array<double, 3>;

/// The sum M over the points of integration for a pair of nodes.
struct PairSums
{
  /// M += weight·a·bᵀ.
  void Add(double weight, const NodeNumbers& a, const NodeNumbers& b)
  {
    for (int r = 0; r < 3; ++r) {
      const double factor = weight * a[r];
      for (int c = 0; c < 3; ++c)
        M[r][c] += factor * b[c];
    }
  }

  double M[3][3] = {};
};

/// K = Σ w·Bᵢᵀ·D·Bⱼ of a solid: K 3×3, D 6×6, both of their size before.
void AddtoKMatrix(const PairSums& sums, const Matriu& D, Matriu& K);

/// The same of a shell, in the axes of the element: K 6×6, over the displacements and the
/// rotations of the nodes, 0 for those about the normal; Dm, Db (3×3) and Ds (2×2): membrane,
/// bending and shear.
void AddtoKMatrix(const PairSums& sums, const Matriu& Dm, const Matriu& Db, const Matriu& Ds,
                  Matriu& K);

/// res(offset + 1, ...) += D·strain, for as many strains as D has columns.
void AddToStrengthVec(ReaVecV& res, int offset, const Matriu& D, const double* strain);
