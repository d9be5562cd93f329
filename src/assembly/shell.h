#pragma once

#include <array>

#include "numeric/matriu.h"

class Elem;
class Material;
class ReaVecV;

// The flat shell element of three nodes (one point, the centroid) or six (three points):
// membrane, plate bending and transverse shear, in the element's own plane.
//
// The plate is of Mindlin's kind: see O. C. Zienkiewicz, R. L. Taylor, The Finite Element
// Method, vol. 2, Butterworth-Heinemann, Oxford, 5th ed. 2000, chapter 5.

/// Strain blocks of one node: membrane (3×5), bending (3×5) and shear (2×5) strains by the
/// node's five components.
struct ShellBlocks
{
  Matriu Bm, Bb, Bs;
};

/// One point of integration: the blocks of the nodes, and the area that the point stands for.
struct ShellPoint
{
  std::array<ShellBlocks, 6> nodes;
  double weight = 0.0;
};

/// Blocks of corner i (from 0) of the three-node element at the point (xc, yc), over u, v, w
/// and the two slopes. Only the entries that are not 0 are written. a, b, c: coefficients of
/// the corners; twoA: twice the area.
void ConstructB(int i, const double* a, const double* b, const double* c, double twoA, double xc,
                double yc, ShellBlocks& blocks);

/// Blocks of a node (from 1) of the six-node element at a point, likewise. Fatal on a Jacobian
/// that is not positive. Returns its determinant.
double ConstructB6nodesAndJ(const Elem& elem, int node, const double* x, const double* y, double xi,
                            double eta, ShellBlocks& blocks);

/// Everything that stiffness and strengths need of an element; allocated once, for many.
class ShellEvaluator
{
public:
  ShellEvaluator();

  /// Frame, constitutive matrices and points of an element. Fatal on one that is degenerate,
  /// and on a material that does not fit.
  void Evaluate(const Elem& elem, const Material& material);

  int PointCount() const { return points; }
  double Area() const { return area; }
  const Matriu& Frame() const { return T; }

  /// Stiffness between the nodes i and j (from 0), 6×6 in the element's axes; without the
  /// rotation about the normal.
  void CalcStiffness(int i, int j, Matriu& K);

  /// Adds a small resistance of the nodes k that are folded against turning about the normal
  /// by more than the membrane does; a rigid motion does not meet it.
  void AddTurnsAboutNormal(int i, int j, const std::array<bool, 6>& folded, Matriu& K) const;

  /// The eight local forces of every point (Nx, Ny, Nxy, Mx, My, Mxy, Qx, Qy) from the nodes'
  /// displacements in local axes, six each; added to res(offset + 1, ...).
  void AddStrengths(const double* local, ReaVecV& res, int offset);

private:
  void EvaluateThreeNodes(const Elem& elem);
  void EvaluateSixNodes(const Elem& elem);
  void CalcTurns();

  int nnode = 0;
  int points = 0;
  double area = 0.0;
  double x[6], y[6];  ///< local coordinates
  double turn[6][2];  ///< minus the mean rotation of the membrane by u and v of each node
  std::array<ShellPoint, 3> point;
  Matriu T, Tbig, Dm, Db, Ds;
};
