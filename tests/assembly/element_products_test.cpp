// The products of strain blocks against the triple product of the full blocks.

#include "assembly/element_products.h"

#include <gtest/gtest.h>

#include <random>
#include <vector>

#include "numeric/reavecv.h"
#include "support/dense.h"
#include "support/solved.h"

namespace morlen {

namespace {

using Rows = std::vector<std::vector<double>>;

class Numbers
{
public:
  double operator()() { return distribution(random); }
  NodeNumbers OfNode() { return {(*this)(), (*this)(), (*this)()}; }

  // A material stiffness that is symmetric, or symmetric up to the last digit.
  Matriu Material(int stretches, int rows)
  {
    Matriu D(rows, rows);
    D = 0.0;
    for (int i = 1; i <= rows; ++i) {
      D(i, i) = 3.0 + (*this)();
      for (int j = 1; i <= stretches && j < i; ++j)
        D(i, j) = 1e-9 * (*this)() + (D(j, i) = (*this)());
    }
    return D;
  }

private:
  std::mt19937 random{11};
  std::uniform_real_distribution<double> distribution{-1.0, 1.0};
};

Rows SolidBlock(const NodeNumbers& n)
{
  const auto [x, y, z] = n;
  return {{x, 0, 0}, {0, y, 0}, {0, 0, z}, {y, x, 0}, {z, 0, x}, {0, z, y}};
}

// Over u, v, w and the rotations about x', y', z': the slopes are θa = -r_y', θb = r_x'.
Rows ShellBlock(const NodeNumbers& n)
{
  const auto [x, y, N] = n;
  return {{x, 0, 0, 0, 0, 0},  {0, y, 0, 0, 0, 0},  {y, x, 0, 0, 0, 0}, {0, 0, 0, 0, x, 0},
          {0, 0, 0, -y, 0, 0}, {0, 0, 0, -x, y, 0}, {0, 0, x, 0, N, 0}, {0, 0, y, -N, 0, 0}};
}

// K += weight·Biᵀ·D·Bj.
void AddPlainly(const Rows& Bi, const Rows& D, const Rows& Bj, double weight,
                std::vector<double>& K)
{
  const std::size_t columns = Bj[0].size();
  for (std::size_t a = 0; a < Bi[0].size(); ++a) {
    for (std::size_t b = 0; b < columns; ++b) {
      for (std::size_t r = 0; r < Bi.size(); ++r) {
        for (std::size_t s = 0; s < Bj.size(); ++s)
          K[a * columns + b] += weight * Bi[r][a] * D[r][s] * Bj[s][b];
      }
    }
  }
}

// Writes D into the rows and columns from `first` on.
void Place(const Matriu& D, int first, Rows& all)
{
  for (int i = 0; i < D.Rows(); ++i) {
    for (int j = 0; j < D.Cols(); ++j)
      all[first + i][first + j] = D(i + 1, j + 1);
  }
}

}  // namespace

TEST(ElementProducts, OfASolidAreThoseOfItsBlocks)
{
  Numbers numbers;
  for (int points = 0; points <= 4; ++points) {
    const Matriu D = numbers.Material(3, 6);
    Rows allD(6, std::vector<double>(6));
    Place(D, 0, allD);
    PairSums sums;
    std::vector<double> expected(9, 0.0);
    for (int g = 0; g < points; ++g) {
      const NodeNumbers a = numbers.OfNode();
      const NodeNumbers b = numbers.OfNode();
      sums.Add(0.5 + g, a, b);
      AddPlainly(SolidBlock(a), allD, SolidBlock(b), 0.5 + g, expected);
    }
    Matriu K(3, 3);
    K = 7.0;  // must be overwritten
    AddtoKMatrix(sums, D, K.Data());
    ExpectValues(Entries(K), expected, 1e-13);
  }
}

TEST(ElementProducts, OfAShellAreThoseOfItsBlocks)
{
  Numbers numbers;
  for (int points = 0; points <= 3; ++points) {
    const Matriu Dm = numbers.Material(2, 3);
    const Matriu Db = numbers.Material(2, 3);
    const Matriu Ds = numbers.Material(0, 2);
    Rows allD(8, std::vector<double>(8));
    Place(Dm, 0, allD);
    Place(Db, 3, allD);
    Place(Ds, 6, allD);
    PairSums sums;
    std::vector<double> expected(36, 0.0);
    for (int g = 0; g < points; ++g) {
      const NodeNumbers a = numbers.OfNode();
      const NodeNumbers b = numbers.OfNode();
      sums.Add(0.5 + g, a, b);
      AddPlainly(ShellBlock(a), allD, ShellBlock(b), 0.5 + g, expected);
    }
    Matriu K(6, 6);
    K = 7.0;
    AddtoKMatrix(sums, Dm, Db, Ds, K);
    ExpectValues(Entries(K), expected, 1e-13);
  }
}

TEST(ElementProducts, AddStrengthsOfTheMaterial)
{
  const Matriu D = MatriuOf(2, 2, {2, 1, 1, 3});
  ReaVecV res;
  res.resize(4, 1.0);
  const double strain[] = {5, 11};
  AddToStrengthVec(res, 1, D, strain);
  EXPECT_EQ(Values(res), (std::vector<double>{1, 22, 39, 1}));
}

}  // namespace morlen
