#pragma once

#include <array>

#include "assembly/element_products.h"
#include "model/shape_functions.h"
#include "numeric/matriu.h"

namespace morlen {

class Elem;
class Material;
class ReaVecV;

// The solid tetrahedron of four nodes (one point) or ten (four points). See O. C. Zienkiewicz,
// R. L. Taylor, The Finite Element Method, vol. 1, Butterworth-Heinemann, Oxford, 5th ed.
// 2000, chapter 6.

/// One point of integration: the gradients of the shape functions of the nodes, and the volume
/// that the point stands for.
///
/// The gradient (x, y, z) is all that the strain block B of a node has (6×3; strains εx, εy, εz,
/// γxy, γxz, γyz by the displacements): its rows are (x,0,0), (0,y,0), (0,0,z), (y,x,0), (z,0,x)
/// and (0,z,y).
struct SolidPoint
{
  std::array<NodeNumbers, 10> B;
  double weight = 0.0;
};

/// Blocks of the corners of a four-node element. d: the places of its nodes from the first.
/// Fatal on one that has no volume or is turned inside out. Returns the determinant.
double ConstructBtetra(const Elem& elem, const double (*d)[3], std::array<NodeNumbers, 10>& B);

/// Blocks of the nodes of a ten-node element at the point where the shape functions are these,
/// likewise. Returns the determinant of the Jacobian.
double ConstructB10nodesAndJ(const Elem& elem, const double (*d)[3], const TenNodeFunctions& at,
                             std::array<NodeNumbers, 10>& B);

/// Everything that stiffness and strengths need of an element; made once, for many elements
/// whose materials stay as they are meanwhile.
class SolidEvaluator
{
public:
  SolidEvaluator();

  /// Elasticity matrix and points of an element. Fatal on one that has no volume or is turned
  /// inside out, and on a material that does not fit.
  void Evaluate(const Elem& elem, const Material& material);

  int PointCount() const { return points; }

  /// Stiffness between the nodes i and j (from 0), 3×3, global axes: nine numbers row by row.
  void CalcStiffness(int i, int j, double* K) const;

  /// The forces of the nodes for these displacements, three each, global axes: what CalcStiffness
  /// makes of them.
  void CalcForces(const double* u, double* forces) const;

  /// The six stresses of every point, in the order of the strains, from the displacements of
  /// the nodes, three each; added to res(offset + 1, ...).
  void AddStrengths(const double* u, ReaVecV& res, int offset) const;

private:
  std::array<double, 6> StrainsAt(const SolidPoint& at, const double* u) const;

  std::array<TenNodeFunctions, 4> functions;  ///< at the points of the ten-node element
  int nnode = 0;
  int points = 0;
  std::array<SolidPoint, 4> point;
  const Material* materialOfD = nullptr;  ///< borrowed, only compared
  Matriu D;
};

}  // namespace morlen
