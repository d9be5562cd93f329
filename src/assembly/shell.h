#pragma once

#include <array>

#include "assembly/element_products.h"
#include "model/material.h"
#include "model/shape_functions.h"
#include "numeric/matriu.h"
#include "numeric/split_vector.h"

namespace morlen {

class Elem;
class ReaVecV;

// The flat shell element of three nodes (one point, the centroid) or six (three points):
// membrane, plate bending and transverse shear, in the element's own plane.
//
// The plate is of Mindlin's kind: see O. C. Zienkiewicz, R. L. Taylor, The Finite Element
// Method, vol. 2, Butterworth-Heinemann, Oxford, 5th ed. 2000, chapter 5.

/// One point of integration: derivatives by x' and y' and value of the shape functions of the
/// nodes, and the area that the point stands for.
///
/// These numbers (x, y, N) are all that the strain blocks of a node have, over u, v, w and the
/// two slopes: Bm (membrane) with the rows (x,0,0,0,0), (0,y,0,0,0), (y,x,0,0,0), Bb (bending)
/// with (0,0,0,-x,0), (0,0,0,0,-y), (0,0,0,-y,-x), Bs (shear) with (0,0,x,-N,0), (0,0,y,0,-N).
struct ShellPoint
{
  std::array<NodeNumbers, 6> B;
  double weight = 0.0;
};

/// Blocks of corner i (from 0) of the three-node element at the point (xc, yc). a, b, c:
/// coefficients of the corners; twoA: twice the area.
void ConstructB(int i, const double* a, const double* b, const double* c, double twoA, double xc,
                double yc, NodeNumbers& B);

/// Blocks of the nodes of the six-node element at the point where the shape functions are
/// these. Fatal on a Jacobian that is not positive. Returns its determinant.
double ConstructB6nodesAndJ(const Elem& elem, const double* x, const double* y,
                            const SixNodeFunctions& at, std::array<NodeNumbers, 6>& B);

/// Everything that stiffness and strengths need of an element; made once, for many elements
/// whose materials stay as they are meanwhile.
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
  /// rotation about the normal. K has its size before.
  void CalcStiffness(int i, int j, Matriu& K) const;

  /// The displacements of the nodes in local axes, six each, without the rigid motion (see
  /// relative_motion.h); u: by equation, global axes.
  void CalcRelative(const Elem& elem, const std::array<bool, 6>& folded, const SplitView& u,
                    double* local) const;

  /// The forces of the nodes for these relative displacements, both in local axes, six each:
  /// what CalcStiffness, AddTurnsAboutNormal and TurnAgainstGround make of them together.
  void CalcForces(const double* local, const std::array<bool, 6>& folded, double* forces) const;

  /// The stiffness against the ground of the rotation about the normal of a node in a plane,
  /// which has no other.
  double TurnAgainstGround() const { return area * materialOfD->E1; }

  /// Adds a small resistance of the nodes k that are folded against turning about the normal
  /// by more than the membrane does; a rigid motion does not meet it.
  void AddTurnsAboutNormal(int i, int j, const std::array<bool, 6>& folded, Matriu& K) const;

  /// The eight local forces of every point (Nx, Ny, Nxy, Mx, My, Mxy, Qx, Qy) from the nodes'
  /// displacements in local axes, six each; added to res(offset + 1, ...).
  void AddStrengths(const double* local, ReaVecV& res, int offset) const;

private:
  void EvaluateThreeNodes(const Elem& elem);
  void EvaluateSixNodes(const Elem& elem);
  void CalcTurns();
  /// Membrane strains, curvatures and shear strains at a point, eight numbers.
  std::array<double, 8> StrainsAt(const ShellPoint& at, const double* local) const;
  void AddTurningForces(const double* local, const std::array<bool, 6>& folded,
                        double* forces) const;

  std::array<SixNodeFunctions, 3> functions;  ///< at the points of the six-node element
  int nnode = 0;
  int points = 0;
  double area = 0.0;
  double x[6], y[6];  ///< local coordinates
  double turn[6][2];  ///< minus the mean rotation of the membrane by u and v of each node
  std::array<ShellPoint, 3> point;
  const Material* materialOfD = nullptr;  ///< borrowed, only compared
  Matriu T, Tbig, Dm, Db, Ds;
};

}  // namespace morlen
