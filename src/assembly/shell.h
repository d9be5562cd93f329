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

// The flat shell element of three nodes (one Gauss point, the centroid) or six (three points):
// membrane, plate bending and transverse shear in the plane of the element.
//
// The plate follows Mindlin's theory: see O. C. Zienkiewicz, R. L. Taylor, The Finite Element
// Method, vol. 2, Butterworth-Heinemann, Oxford, 5th ed. 2000, chapter 5.

/// One Gauss point of an element.
///
/// The strain blocks of a node consist of the numbers (x, y, N): the derivatives of its shape
/// function by x' and y', and its value. The columns belong to u, v, w and the two slopes of the
/// normal:
/// - membrane Bm has the rows (x,0,0,0,0), (0,y,0,0,0), (y,x,0,0,0);
/// - bending Bb has (0,0,0,-x,0), (0,0,0,0,-y), (0,0,0,-y,-x);
/// - shear Bs has (0,0,x,-N,0), (0,0,y,0,-N).
struct ShellPoint
{
  std::array<NodeNumbers, 6> B;  ///< (x, y, N) of each node
  double weight = 0.0;           ///< the point's part of the area
};

/// The numbers (x, y, N) of corner i (from 0) of the three-node element at the point (xc, yc).
/// a, b, c: coefficients of the corners, N = (a + b·x' + c·y') / twoA. twoA: twice the area.
void ConstructB(int i, const double* a, const double* b, const double* c, double twoA, double xc,
                double yc, NodeNumbers& B);

/// The numbers (x, y, N) of all nodes of the six-node element at the point whose shape functions
/// are given. x, y: local coordinates of the nodes. Returns the determinant of the Jacobian. Fatal
/// when it is not positive.
double ConstructB6nodesAndJ(const Elem& elem, const double* x, const double* y,
                            const SixNodeFunctions& at, std::array<NodeNumbers, 6>& B);

/// Computes stiffness, forces and strengths of shell elements, one element at a time.
///
/// One evaluator serves many elements. Materials must not change as long as it is used.
class ShellEvaluator
{
public:
  ShellEvaluator();

  /// Computes frame, constitutive matrices and Gauss points of an element, to which all other
  /// functions refer. Fatal on a degenerate element and on unsuitable values of the material.
  void Evaluate(const Elem& elem, const Material& material);

  int PointCount() const { return points; }
  double Area() const { return area; }
  const Matriu& Frame() const { return T; }

  /// Stiffness between the nodes i and j (from 0) in the axes of the element, without that of the
  /// rotation about the normal. K must be 6×6.
  void CalcStiffness(int i, int j, Matriu& K) const;

  /// The displacements of the nodes in local axes, six each, without the rigid motion (see
  /// relative_motion.h). u: by equation, global axes.
  void CalcRelative(const Elem& elem, const std::array<bool, 6>& folded, const SplitView& u,
                    double* local) const;

  /// The forces on the nodes for these relative displacements, both in local axes, six each. They
  /// are the product with the sum of CalcStiffness, AddTurnsAboutNormal and TurnAgainstGround.
  void CalcForces(const double* local, const std::array<bool, 6>& folded, double* forces) const;

  /// The stiffness between the ground and the rotation about the normal of a node that is not
  /// folded. This rotation has no other stiffness.
  double TurnAgainstGround() const { return area * materialOfD->E1; }

  /// Adds a small stiffness of each folded node against a rotation about the normal other than the
  /// mean rotation of the membrane. A rigid motion causes no force.
  void AddTurnsAboutNormal(int i, int j, const std::array<bool, 6>& folded, Matriu& K) const;

  /// Adds the eight local forces of every Gauss point (Nx, Ny, Nxy, Mx, My, Mxy, Qx, Qy) to
  /// res(offset + 1, ...). local: displacements of the nodes in local axes, six each.
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
  double turn[6][2];  ///< minus the mean rotation of the membrane for a unit u and v of each node
  std::array<ShellPoint, 3> point;
  const Material* materialOfD = nullptr;  ///< of Dm, Db and Ds; borrowed
  Matriu T, Tbig, Dm, Db, Ds;
};

}  // namespace morlen
