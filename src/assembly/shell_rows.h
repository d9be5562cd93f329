#pragma once

#include <array>

namespace morlen {

/// The elastic matrices of a shell in the axes of an element, integrated over its thickness.
struct ShellSection
{
  double Dm[3][3];  ///< membrane
  double Db[3][3];  ///< bending
  double Ds[2][2];  ///< transverse shear, with its correction factor
  double thickness;
};

/// A flat shell element of N nodes, each part of its stiffness as rows.
///
/// A row times the displacements of the nodes is a strain, a curvature, or another number that is 0
/// for every rigid motion. Stiffness, forces and strengths follow from the same rows. All is in the
/// axes of the element; rotations are a vector. Membrane and drilling work on u, v and rz of the
/// nodes, the plate on rx, w and ry. The columns are those of all nodes for the first component,
/// then for the second, then for the third, so that the entries of a row that are not 0 are
/// together.
template <int N>
struct ShellRows
{
  static constexpr int kColumns = 3 * N;
  static constexpr int kTriples = N == 3 ? 4 : 3;
  static constexpr int kScalars = N == 3 ? 3 : 12;
  static constexpr int kPlatePoints = 3;
  using Row = std::array<double, kColumns>;

  // Columns of node i (from 0).
  static constexpr int U(int i) { return i; }
  static constexpr int V(int i) { return N + i; }
  static constexpr int Rz(int i) { return 2 * N + i; }
  static constexpr int Rx(int i) { return i; }
  static constexpr int W(int i) { return N + i; }
  static constexpr int Ry(int i) { return 2 * N + i; }

  /// The columns from `first` to before `last`; all others of a row are 0.
  struct Span
  {
    int first, last;
  };
  static constexpr Span kAll = {0, kColumns};
  static constexpr std::array<Span, 3> kStrainSpans =
      N == 3 ? std::array{kAll, kAll, kAll}
             : std::array{Span{0, N}, Span{N, 2 * N}, Span{0, 2 * N}};
  static constexpr std::array<Span, 3> kCurvatureSpans =
      N == 3 ? std::array{kAll, kAll, kAll} : std::array{Span{2 * N, 3 * N}, Span{0, N}, kAll};
  static constexpr std::array<Span, 2> kShearSpans =
      N == 3 ? std::array{kAll, kAll} : std::array{Span{N, 3 * N}, Span{0, 2 * N}};

  /// Rows of one plate point: (bx,x), (by,y), (bx,y + by,x), and (w,x + bx), (w,y + by).
  struct PlatePoint
  {
    std::array<Row, 3> curvature;
    std::array<Row, 2> shear;
  };

  ShellSection section;

  /// Membrane strains εx, εy, γxy: each triple of rows contributes weight · rowsᵀ Dm rows.
  std::array<std::array<Row, 3>, kTriples> strain;
  std::array<double, kTriples> strainWeight;
  /// Single rows, each with its stiffness.
  std::array<Row, kScalars> scalar;
  std::array<double, kScalars> scalarStiffness;
  /// Each point contributes weight · (curvatureᵀ Db curvature + shearFactor · shearᵀ Ds shear).
  std::array<PlatePoint, kPlatePoints> plate;
  std::array<double, kPlatePoints> plateWeight;
  double shearFactor = 1.0;
};

/// The stiffness of an element of N nodes. Membrane and plate do not act on each other.
template <int N>
class ShellStiffness
{
public:
  /// Computes the stiffness of the rows.
  void Calc(const ShellRows<N>& rows);
  /// The stiffness between the nodes i and j (from 0) as 6×6 numbers, row by row.
  void CopyBlock(int i, int j, double* K) const;

private:
  static constexpr int kColumns = ShellRows<N>::kColumns;
  double membrane[kColumns][kColumns];
  double plate[kColumns][kColumns];
};

/// The forces on the nodes for these displacements, six at each node.
template <int N>
void CalcShellForces(const ShellRows<N>& rows, const double* displacements, double* forces);

/// Nx, Ny, Nxy, Mx, My, Mxy, Qx, Qy at a point with these rows.
template <int N>
void CalcShellStrengths(const ShellRows<N>& rows,
                        const std::array<typename ShellRows<N>::Row, 3>& strain,
                        const typename ShellRows<N>::PlatePoint& plate, const double* displacements,
                        double* strengths);

}  // namespace morlen
