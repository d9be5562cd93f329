#pragma once

#include <array>

#include "assembly/shell_stiffness.h"
#include "model/shape_functions.h"

namespace morlen {

// The refined shell triangles in their own axes (refined_three_nodes.cpp with
// three_node_parts.cpp, refined_six_nodes.cpp).
//
// x, y: coordinates of the nodes in the axes of the element, the corners first and
// counter-clockwise. shares: of the nodes in the drilling freedoms, see shell_shares.h.

/// The triangle of the corners.
struct CornerTriangle
{
  CornerTriangle(const double* x, const double* y);

  double area;
  double gradient[3][2];  ///< of the area coordinates
  double edge[3][2];      ///< from corner i to the next
  double squares[3];      ///< lengths of the edges, squared
};

/// The relative stiffness min(1, t² / 10 A) of the drilling of a node without a share.
double DrillingRemainder(double thickness, double area);

/// max(2 / m − 3/2, 0.1), where m is the mean of E11 C11 over all directions in the plane and C is
/// E⁻¹: the coefficient of the higher part of the three-node membrane. Dm: in the axes of the
/// material; a multiple has the same coefficient.
double HigherMembraneCoefficient(const double (&Dm)[3][3]);

/// A three-node element.
///
/// Both parts, membrane and plate, have the same form. Three rows give strains or curvatures, which
/// are constant in the element. Three further rows, of the corners or of the edges, have a
/// stiffness between each other; they add the rest of the energy. Rows have the columns of
/// ShellStiffness.
class ThreeNodeShell
{
public:
  static constexpr int kNodes = 3;
  static constexpr int kColumns = 3 * kNodes;
  using Row = std::array<double, kColumns>;

  /// stiffness = meanᵀ elastic mean + furtherᵀ furtherStiffness further.
  struct Part
  {
    std::array<Row, 3> mean;
    double elastic[3][3];  ///< times the area
    std::array<Row, 3> further;
    double furtherStiffness[3][3];
  };

  /// Sets the section of the elements that follow.
  void SetSection(const ShellSection& section);
  /// Computes the rows. False for a degenerate element, whose rows are not valid.
  bool Set(const double* x, const double* y, const double* shares);
  double Area() const { return area; }

  void CalcStiffness(ShellStiffness<kNodes>& stiffness) const;
  /// The forces on the nodes for these displacements, six at each node.
  void CalcForces(const double* displacements, double* forces) const;
  /// Nx, Ny, Nxy, Mx, My, Mxy, Qx, Qy at the centroid, the only point.
  void CalcStrengths(int point, const double* displacements, double* strengths) const;

private:
  ShellSection section;
  double higher = 0.0;  ///< HigherMembraneCoefficient of the section
  double area = 0.0;
  Part membrane, plate;
  double shear[2][3];  ///< shear strains at the centroid for the further rows of the plate
};

/// A six-node element.
///
/// The points of integration are the middles of the edges. There the shape functions of the other
/// nodes are 0.
class SixNodeShell
{
public:
  static constexpr int kNodes = 6;
  static constexpr int kCorners = 3;

  /// Derivatives of the shape functions by x and by y at a point.
  struct Slopes
  {
    double x[kNodes], y[kNodes];
  };

  SixNodeShell();
  /// Sets the section of the elements that follow.
  void SetSection(const ShellSection& section_) { section = section_; }
  /// Computes the numbers of an element. False for a degenerate one, whose numbers are not valid.
  bool Set(const double* x, const double* y, const double* shares);
  double Area() const { return area; }  ///< of the triangle of the corners

  void CalcStiffness(ShellStiffness<kNodes>& stiffness) const;
  /// The forces on the nodes for these displacements, six at each node.
  void CalcForces(const double* displacements, double* forces) const;
  /// Nx, Ny, Nxy, Mx, My, Mxy, Qx, Qy at the middle of an edge, point 0 to 2.
  void CalcStrengths(int point, const double* displacements, double* strengths) const;

private:
  bool CalcSlopes(const double* x, const double* y);
  void CalcDeviations(const CornerTriangle& triangle, const double* x, const double* y,
                      const double* shares, double remainder);
  void ReplaceMiddles(const double* shares);

  ShellSection section;
  std::array<SixNodeFunctions, kNodes> functions;  ///< at the nodes
  double area = 0.0;
  std::array<Slopes, kNodes> slopes;    ///< at the nodes
  std::array<Slopes, kNodes> membrane;  ///< the same of the membrane, see the source
  double weight[3];                     ///< parts of the area: of the points of integration
  double drilling[kNodes];              ///< stiffness of the nodes
  double deviation[3][kNodes];          ///< of a mid-side node from the corners: row for u or v
  double deviationStiffness[3];
  double shearFactor = 1.0;
};

/// The moments about the normal by which the edge from corner i to the next of a three-node element
/// carries a load of `normal` per length across it: -moment at its first end, +moment at its
/// second. normal: along the outward normal of the edge. The forces at the ends are half of the
/// load each.
double EdgeMoment(double normal, double length, double firstShare, double secondShare);

}  // namespace morlen
