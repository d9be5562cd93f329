#include "assembly/element_products.h"

#include <algorithm>
#include <cassert>

#include "numeric/matriu.h"
#include "numeric/reavecv.h"

namespace morlen {

namespace {

/// The 2×2 stiffness of the membrane, or of bending for the slopes of the normal.
struct PlaneBlock
{
  PlaneBlock(const double (&M)[3][3], const Matriu& D)
      : xx(D(1, 1) * M[0][0] + D(3, 3) * M[1][1]),
        xy(D(1, 2) * M[0][1] + D(3, 3) * M[1][0]),
        yx(D(2, 1) * M[1][0] + D(3, 3) * M[0][1]),
        yy(D(2, 2) * M[1][1] + D(3, 3) * M[0][0])
  {
  }

  double xx, xy, yx, yy;
};

}  // namespace

// Bending and shear are formulated with the slopes θa, θb of the normal, which are ∂w/∂x' and
// ∂w/∂y' when there is no shear strain. The nodes have the rotations r about x' and y', with θa =
// -r_y' and θb = r_x'. The column of r_x' is therefore that of θb, the column of r_y' minus that of
// θa.
void AddtoKMatrix(const PairSums& sums, const Matriu& Dm, const Matriu& Db, const Matriu& Ds,
                  Matriu& K)
{
  assert(K.Rows() == 6 && K.Cols() == 6);
  std::fill_n(K.Data(), 36, 0.0);
  const auto& M = sums.M;
  const PlaneBlock membrane(M, Dm);
  K(1, 1) = membrane.xx;
  K(1, 2) = membrane.xy;
  K(2, 1) = membrane.yx;
  K(2, 2) = membrane.yy;
  const PlaneBlock bending(M, Db);
  const double xz = Ds(1, 1);
  const double yz = Ds(2, 2);
  K(3, 3) = xz * M[0][0] + yz * M[1][1];
  K(3, 4) = -yz * M[1][2];
  K(3, 5) = xz * M[0][2];
  K(4, 3) = -yz * M[2][1];
  K(5, 3) = xz * M[2][0];
  K(4, 4) = bending.yy + yz * M[2][2];
  K(4, 5) = -bending.yx;
  K(5, 4) = -bending.xy;
  K(5, 5) = bending.xx + xz * M[2][2];
}

void AddToStrengthVec(ReaVecV& res, int offset, const Matriu& D, const double* strain)
{
  for (int i = 1; i <= D.Rows(); ++i) {
    for (int r = 1; r <= D.Cols(); ++r)
      res(offset + i) += D(i, r) * strain[r - 1];
  }
}

}  // namespace morlen
