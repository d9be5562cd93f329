#pragma once

#include <array>

namespace morlen {

class Matriu;

/// The elastic matrices of a shell in the axes of an element, integrated over its thickness. The
/// axes are those of the material: the entries (1,3), (2,3) of Dm and Db and (1,2) of Ds are 0.
struct ShellSection
{
  double Dm[3][3];  ///< membrane
  double Db[3][3];  ///< bending
  double Ds[2][2];  ///< transverse shear, with its correction factor
  double thickness;
};

/// The axes of an element, by which blocks are turned into global axes.
class ShellAxes
{
public:
  /// T: 3×3, its columns are the axes.
  explicit ShellAxes(const Matriu& T);

  /// The column of T of axis a for a displacement (a = 0 to 2) or, after three zeros, for a
  /// rotation (a = 3 to 5): six numbers.
  const std::array<double, 6>& Column(int a) const { return columns[a]; }
  /// The components of the three axes along global axis k.
  const std::array<double, 3>& Row(int k) const { return rows[k]; }

private:
  std::array<std::array<double, 3>, 3> rows;
  std::array<std::array<double, 6>, 6> columns{};
};

/// The stiffness of a flat shell element of N nodes in its axes. It has two parts that do not act
/// on each other: the membrane of u, v and rz, and the plate of w, rx and ry.
///
/// Entry (a·N + i, b·N + j) of a part is that of component a of node i and component b of node j,
/// all from 0. Only entries with a <= b are read; the others follow by symmetry.
template <int N>
struct ShellStiffness
{
  using Part = double[3 * N][3 * N];

  /// The block of the nodes i and j (from 0) as 6×6 numbers, row by row.
  void CopyBlock(int i, int j, double* K) const;
  /// The same in global axes.
  void CopyBlock(const ShellAxes& axes, int i, int j, double* K) const;

  Part membrane;
  Part plate;
};

/// The components u, v, rz and w, rx, ry among the six of a node.
constexpr int kMembraneComponents[] = {0, 1, 5};
constexpr int kPlateComponents[] = {2, 3, 4};

}  // namespace morlen
