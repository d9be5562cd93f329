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

/// One Gauss point of an element.
///
/// The strain block B of a node (6×3; strains εx, εy, εz, γxy, γxz, γyz) consists of the gradient
/// (x, y, z) of its shape function: its rows are (x,0,0), (0,y,0), (0,0,z), (y,x,0), (z,0,x) and
/// (0,z,y).
struct SolidPoint
{
  std::array<NodeNumbers, 10> B;  ///< (x, y, z) of each node
  double weight = 0.0;            ///< the point's part of the volume
};

/// The gradients of the shape functions of a four-node element. d: the places of its nodes relative
/// to the first. Returns the determinant of the Jacobian. Fatal on an element that has no volume or
/// is turned inside out.
double ConstructBtetra(const Elem& elem, const double (*d)[3], std::array<NodeNumbers, 10>& B);

/// The same for a ten-node element, at the point whose shape functions are given.
double ConstructB10nodesAndJ(const Elem& elem, const double (*d)[3], const TenNodeFunctions& at,
                             std::array<NodeNumbers, 10>& B);

/// Computes stiffness, forces and stresses of solid elements, one element at a time.
///
/// One evaluator serves many elements. Materials must not change as long as it is used.
class SolidEvaluator
{
public:
  SolidEvaluator();

  /// Computes elasticity matrix and Gauss points of an element, to which all other functions refer.
  /// Fatal on an element that has no volume or is turned inside out, and on unsuitable values of
  /// the material.
  void Evaluate(const Elem& elem, const Material& material);

  int PointCount() const { return points; }

  /// Stiffness between the nodes i and j (from 0) in global axes: 3×3, nine numbers row by row.
  void CalcStiffness(int i, int j, double* K) const;

  /// The forces on the nodes for these displacements, three each, in global axes: the product with
  /// the stiffness.
  void CalcForces(const double* u, double* forces) const;

  /// Adds the six stresses of every Gauss point, in the order of the strains, to res(offset + 1,
  /// ...). u: displacements of the nodes, three each.
  void AddStrengths(const double* u, ReaVecV& res, int offset) const;

private:
  std::array<double, 6> StrainsAt(const SolidPoint& at, const double* u) const;

  std::array<TenNodeFunctions, 4> functions;  ///< at the points of the ten-node element
  int nnode = 0;
  int points = 0;
  std::array<SolidPoint, 4> point;
  const Material* materialOfD = nullptr;  ///< of D; borrowed
  Matriu D;
};

}  // namespace morlen
