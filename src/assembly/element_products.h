#pragma once

#include <array>

#include "numeric/matriu.h"

namespace morlen {

class ReaVecV;

// Products of strain blocks: the stiffness Σ w·Bᵢᵀ·D·Bⱼ between two nodes of a solid or a shell.
//
// The strain block B of a node (strains × components) at a point of integration consists of three
// numbers n. In a solid they are the gradient of the node's shape function. In a shell they are the
// slopes of the shape function in the plane and its value. Every product of two entries of Bᵢ and
// Bⱼ is therefore one of the nine entries of nᵢ·nⱼᵀ, and so M = Σ w·nᵢ·nⱼᵀ is summed over the
// points first. D is the same at all points and does not couple normal strains with shear strains,
// so it is applied once, to M. Nothing is allocated.

/// The three numbers of a node at a point of integration.
using NodeNumbers = std::array<double, 3>;

/// The sum M over the points of integration for a pair of nodes.
struct PairSums
{
  PairSums() = default;
  /// M = weight·a·bᵀ.
  PairSums(double weight, const NodeNumbers& a, const NodeNumbers& b)
  {
    for (int r = 0; r < 3; ++r) {
      const double factor = weight * a[r];
      for (int c = 0; c < 3; ++c)
        M[r][c] = factor * b[c];
    }
  }

  /// M += weight·a·bᵀ.
  void Add(double weight, const NodeNumbers& a, const NodeNumbers& b)
  {
    const PairSums more(weight, a, b);
    for (int r = 0; r < 3; ++r) {
      for (int c = 0; c < 3; ++c)
        M[r][c] += more.M[r][c];
    }
  }

  double M[3][3] = {};
};

/// K = Σ w·Bᵢᵀ·D·Bⱼ of a solid. K: 3×3, nine numbers row by row. D: 6×6.
inline void AddtoKMatrix(const PairSums& sums, const Matriu& D, double* K)
{
  const auto& M = sums.M;
  const double* d = D.Data();
  const double xy = d[6 * 3 + 3];
  const double xz = d[6 * 4 + 4];
  const double yz = d[6 * 5 + 5];
  K[0] = d[0] * M[0][0] + xy * M[1][1] + xz * M[2][2];
  K[1] = d[1] * M[0][1] + xy * M[1][0];
  K[2] = d[2] * M[0][2] + xz * M[2][0];
  K[3] = d[6] * M[1][0] + xy * M[0][1];
  K[4] = d[7] * M[1][1] + xy * M[0][0] + yz * M[2][2];
  K[5] = d[8] * M[1][2] + yz * M[2][1];
  K[6] = d[12] * M[2][0] + xz * M[0][2];
  K[7] = d[13] * M[2][1] + yz * M[1][2];
  K[8] = d[14] * M[2][2] + xz * M[0][0] + yz * M[1][1];
}

/// The same of a shell, in the axes of the element. K: 6×6, for the displacements and the rotations
/// of the nodes; rows and columns of the rotation about the normal are 0. Dm, Db (3×3) and Ds
/// (2×2): membrane, bending and shear.
void AddtoKMatrix(const PairSums& sums, const Matriu& Dm, const Matriu& Db, const Matriu& Ds,
                  Matriu& K);

/// res(offset + 1, ...) += D·strain, for as many strains as D has columns.
void AddToStrengthVec(ReaVecV& res, int offset, const Matriu& D, const double* strain);

}  // namespace morlen
