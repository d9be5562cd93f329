// Blocks of a shell element in its axes and in global ones.
//
// A block of two nodes has 6×6 numbers, of which half are 0, because membrane and plate do not act
// on each other. Its row of a component is therefore, with turned columns, the sum of three columns
// of the frame. The rows of the block in global axes are sums of three such rows. All sums are over
// six numbers that are together, for the vector instructions.

#include "assembly/shell_stiffness.h"

#include <algorithm>

#include "numeric/matriu.h"

namespace morlen {

namespace {

using Six = std::array<double, 6>;
using Block = std::array<std::array<double, 3>, 3>;  // of one part

// The entries of one part of a block.
template <int N>
void ReadBlock(const double (&part)[3 * N][3 * N], int i, int j, Block& block)
{
  for (int a = 0; a < 3; ++a) {
    for (int b = 0; b < 3; ++b)
      block[a][b] = a <= b ? part[a * N + i][b * N + j] : part[b * N + j][a * N + i];
  }
}

// The sum of three rows, each multiplied by a factor.
Six Combine(const std::array<double, 3>& factors, const Six& first, const Six& second,
            const Six& third)
{
  Six sum;
  for (int c = 0; c < 6; ++c)
    sum[c] = factors[0] * first[c] + factors[1] * second[c] + factors[2] * third[c];
  return sum;
}

void CopyPart(const Block& block, const int (&components)[3], double* K)
{
  for (int a = 0; a < 3; ++a) {
    for (int b = 0; b < 3; ++b)
      K[6 * components[a] + components[b]] = block[a][b];
  }
}

// Turns the columns of one part of a block.
void TurnColumns(const Block& block, const int (&components)[3], const ShellAxes& axes,
                 std::array<Six, 6>& rows)
{
  for (int a = 0; a < 3; ++a)
    rows[components[a]] = Combine(block[a], axes.Column(components[0]), axes.Column(components[1]),
                                  axes.Column(components[2]));
}

}  // namespace

ShellAxes::ShellAxes(const Matriu& T)
{
  for (int a = 0; a < 3; ++a) {
    for (int k = 0; k < 3; ++k)
      rows[k][a] = columns[a][k] = columns[3 + a][3 + k] = T(k + 1, a + 1);
  }
}

template <int N>
void ShellStiffness<N>::CopyBlock(int i, int j, double* K) const
{
  Block block;
  std::fill_n(K, 36, 0.0);
  ReadBlock<N>(membrane, i, j, block);
  CopyPart(block, kMembraneComponents, K);
  ReadBlock<N>(plate, i, j, block);
  CopyPart(block, kPlateComponents, K);
}

template <int N>
void ShellStiffness<N>::CopyBlock(const ShellAxes& axes, int i, int j, double* K) const
{
  Block block;
  std::array<Six, 6> rows;
  ReadBlock<N>(membrane, i, j, block);
  TurnColumns(block, kMembraneComponents, axes, rows);
  ReadBlock<N>(plate, i, j, block);
  TurnColumns(block, kPlateComponents, axes, rows);
  for (int k = 0; k < 3; ++k) {
    const std::array<double, 3>& row = axes.Row(k);
    const Six displacement = Combine(row, rows[0], rows[1], rows[2]);
    const Six rotation = Combine(row, rows[3], rows[4], rows[5]);
    std::copy(displacement.begin(), displacement.end(), K + 6 * k);
    std::copy(rotation.begin(), rotation.end(), K + 6 * k + 18);
  }
}

template struct ShellStiffness<3>;
template struct ShellStiffness<6>;

}  // namespace morlen
