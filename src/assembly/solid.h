#pragma once

#include <array>

#include "numeric/matriu.h"
#include "numeric/reavec.h"

class Elem;
class Material;
class ReaVecV;

// The solid tetrahedron of four nodes (one point) or ten (four points). See O. C. Zienkiewicz,
// R. L. Taylor, The Finite Element Method, vol. 1, Butterworth-Heinemann, Oxford, 5th ed.
// 2000, chapter 6.

/// One point of integration: the strain blocks of the nodes (6×3; strains εx, εy, εz, γxy,
/// γxz, γyz by the displacements), and the volume that the point stands for.
struct SolidPoint
{
  std::array<Matriu, 10> B;
  double weight = 0.0;
};

/// Strain block of a node whose shape function has this gradient.
void ConstructBtetra(const ReaVec& gradient, Matriu& B);

/// Strain block of a node (from 1) of a ten-node element at a point, by the inverse Jacobian
/// there (derivatives of ξ, η, ζ in its columns).
void ConstructB10nodes(int node, double xi, double eta, double zeta, const double inverse[3][3],
                       Matriu& B);

/// Everything that stiffness and strengths need of an element; allocated once, for many.
class SolidEvaluator
{
public:
  SolidEvaluator();

  /// Elasticity matrix and points of an element. Fatal on one that has no volume or is turned
  /// inside out, and on a material that does not fit.
  void Evaluate(const Elem& elem, const Material& material);

  int PointCount() const { return points; }

  /// Stiffness between the nodes i and j (from 0), 3×3, global axes.
  void CalcStiffness(int i, int j, Matriu& K) const;

  /// The six stresses of every point, in the order of the strains, from the displacements of
  /// the nodes, three each; added to res(offset + 1, ...).
  void AddStrengths(const double* u, ReaVecV& res, int offset) const;

private:
  void EvaluateFourNodes(const Elem& elem);
  void EvaluateTenNodes(const Elem& elem);

  int nnode = 0;
  int points = 0;
  std::array<SolidPoint, 4> point;
  Matriu D;
};
