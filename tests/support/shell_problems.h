#pragma once

#include "support/shell_model.h"

namespace morlen {

/// A shell with a displacement from the literature or from a closed form.
struct ShellProblem
{
  ShellModel model;
  int node;       ///< the node of the compared displacement
  int component;  ///< from 1
  double reference;

  /// The computed displacement by the reference, with three nodes or with ConvertTo6Nodes.
  double Ratio(bool six) const;
  /// The same with refined shells.
  ShellProblem Refined() const;
};

/// The diagonals of the quadrilaterals: in turn, all one way, or in turn with the inner nodes moved
/// by up to a quarter of an element.
enum class ShellGrid
{
  Alternating,
  OneWay,
  Distorted
};

/// A plate of 10 by 2, clamped at x = 0, with a load along its tip.
ShellProblem Cantilever(int n, double t, ShellGrid grid = ShellGrid::Alternating);
/// A quarter of a plate of 10 by 10 under pressure. The reference is the factor times q a⁴/D.
ShellProblem SquarePlate(int n, double t, bool clamped, double factor,
                         ShellGrid grid = ShellGrid::Alternating);
/// The factor of a simply supported plate with sides of 10, by Navier's series with shear.
double SupportedFactor(double t);
ShellProblem Roof(int n, ShellGrid grid = ShellGrid::Alternating);
ShellProblem PinchedCylinder(int n, ShellGrid grid = ShellGrid::Alternating);
/// A quarter. Its symmetry planes hold the displacement across them, and their rotations or not.
ShellProblem Hemisphere(int n, bool rotations, ShellGrid grid = ShellGrid::Alternating);
ShellProblem WholeHemisphere(int n, ShellGrid grid = ShellGrid::Alternating);
/// A force of 1 at the tip along its width (component 3) or across it (2).
ShellProblem TwistedStrip(int n, double t, int component, double reference,
                          ShellGrid grid = ShellGrid::Alternating);
ShellProblem TaperedPanel(int n, ShellGrid grid = ShellGrid::Alternating);
ShellProblem DeepBeam(int n, ShellGrid grid = ShellGrid::Alternating);
ShellProblem Hook(int n, ShellGrid grid = ShellGrid::Alternating);

}  // namespace morlen
