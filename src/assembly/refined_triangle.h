#pragma once

#include <array>

#include "assembly/shell_rows.h"
#include "model/shape_functions.h"

namespace morlen {

// The rows of the refined shell triangles (refined_three_nodes.cpp, refined_six_nodes.cpp).
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
class ThreeNodeShell
{
public:
  static constexpr int kNodes = 3;

  /// Sets the section of the elements that follow. Its axes are those of the elements.
  void SetSection(const ShellSection& section);
  /// Makes the rows. False for a degenerate element, whose rows are not valid.
  bool Set(const double* x, const double* y, const double* shares);
  const ShellRows<3>& Rows() const { return rows; }
  /// Strengths at the centroid, the only point.
  void CalcStrengths(int point, const double* displacements, double* strengths) const;

private:
  ShellRows<3> rows;
  ShellRows<3>::PlatePoint centroid;
  double higher = 0.0;  ///< HigherMembraneCoefficient of the section
};

/// A six-node element.
class SixNodeShell
{
public:
  static constexpr int kNodes = 6;

  SixNodeShell();
  /// Sets the section of the elements that follow. Its axes are those of the elements.
  void SetSection(const ShellSection& section) { rows.section = section; }
  /// Makes the rows. False for a degenerate element, whose rows are not valid.
  bool Set(const double* x, const double* y, const double* shares);
  const ShellRows<6>& Rows() const { return rows; }
  /// Strengths at the middle of an edge, point 0 to 2.
  void CalcStrengths(int point, const double* displacements, double* strengths) const;

private:
  ShellRows<6> rows;
  std::array<SixNodeFunctions, ShellRows<6>::kPlatePoints> atPoints;
  std::array<SixNodeFunctions, kNodes> atNodes;
};

/// The moments about the normal by which the edge from corner i to the next of a three-node element
/// carries a load of `normal` per length across it: -moment at its first end, +moment at its
/// second. normal: along the outward normal of the edge. The forces at the ends are half of the
/// load each.
double EdgeMoment(double normal, double length, double firstShare, double secondShare);

}  // namespace morlen
