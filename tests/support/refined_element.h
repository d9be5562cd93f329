#pragma once

#include <string_view>
#include <vector>

#include "assembly/shell_stiffness.h"
#include "support/sparse.h"

namespace morlen {

/// A refined shell element in its own axes: three or six nodes, corners first.
struct RefinedElement
{
  std::vector<double> x, y;
  std::vector<double> shares;  ///< of the nodes in the drilling freedoms
  ShellSection section;

  int Nodes() const { return static_cast<int>(x.size()); }
  /// 6×6 blocks of all pairs of nodes; components u, v, w, rx, ry, rz of each node.
  DenseRows Stiffness() const;
  /// The same matrix from the forces under unit displacements, column by column.
  DenseRows StiffnessByForces() const;
  std::vector<double> Forces(const std::vector<double>& displacements) const;
  /// The eight strengths of a point.
  std::vector<double> Strengths(int point, const std::vector<double>& displacements) const;
};

/// The section of an isotropic material with G = E / 2(1 + ν).
ShellSection IsotropicSection(double E, double nu, double t);

/// The elastic constants of an orthotropic shell.
struct Orthotropic
{
  double Ex, Ey, nuXY, nuYX, Gxy, Gxz, Gyz;
};
ShellSection OrthotropicSection(const Orthotropic& m, double t);

/// The corners (0, 0), (2, 0.3), (0.5, 1.4), t = 0.1. With six nodes the middles are off the middle
/// of their edges. Shares are 1, 0.5, 0.2 and of the middles 0.7, 1, 0.4.
RefinedElement Example(int nodes, const ShellSection& section);
ShellSection IsotropicExample();
ShellSection OrthotropicExample();

/// The index of a component from its name and the number of the node, as "rz2".
int ComponentIndex(std::string_view name);

/// The displacements of an element under three translations and rotations.
std::vector<double> RigidMotionOf(const RefinedElement& e, const std::vector<double>& motion);

double FrobeniusNorm(const DenseRows& K);

/// Expects agreement to this number of significant digits, the last one rounded.
void ExpectDigits(double actual, double expected, int digits = 10);

/// Expects that the matrix has exactly six eigenvalues of 0: the rigid motions.
void ExpectSixZeroEigenvalues(const DenseRows& K);

}  // namespace morlen
