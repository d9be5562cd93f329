#include "assembly/element_products.h"

#include <cassert>

#include "numeric/matriu.h"
#include "numeric/reavecv.h"

namespace {

constexpr int kMost = 6;

}  // namespace

void AddtoKMatrix(Matriu& K, const Matriu& Bi, const Matriu& D, const Matriu& Bj, double weight)
{
  const int strains = D.Rows();
  const int columns = Bj.Cols();
  assert(strains <= kMost && columns <= kMost);
  double DB[kMost * kMost];
  for (int r = 0; r < strains; ++r) {
    for (int c = 0; c < columns; ++c) {
      double sum = 0.0;
      for (int k = 0; k < strains; ++k)
        sum += D.Data()[r * strains + k] * Bj.Data()[k * columns + c];
      DB[r * columns + c] = weight * sum;
    }
  }
  for (int a = 0; a < Bi.Cols(); ++a) {
    double* row = K.Data() + a * K.Cols();
    for (int r = 0; r < strains; ++r) {
      const double factor = Bi.Data()[r * Bi.Cols() + a];
      for (int c = 0; c < columns; ++c)
        row[c] += factor * DB[r * columns + c];
    }
  }
}

void AddToStrengthVec(ReaVecV& res, int offset, const Matriu& D, const Matriu& B, const double* u)
{
  assert(B.Rows() <= kMost);
  double strain[kMost] = {};
  for (int r = 1; r <= B.Rows(); ++r) {
    for (int c = 1; c <= B.Cols(); ++c)
      strain[r - 1] += B(r, c) * u[c - 1];
  }
  for (int i = 1; i <= D.Rows(); ++i) {
    for (int r = 1; r <= D.Cols(); ++r)
      res(offset + i) += D(i, r) * strain[r - 1];
  }
}
