#pragma once

#include "model/elem.h"

namespace morlen {

class Matriu;

// Quadratic shape functions on the six-node triangle and the ten-node tetrahedron, in
// natural coordinates (0 at the first corner, 1 at the corner of the coordinate). Nodes run
// from 1, the corners first. Source: O. C. Zienkiewicz, R. L. Taylor, The Finite Element
// Method, vol. 1, Butterworth-Heinemann, Oxford, 5th ed. 2000, chapter 8.

/// Shape function of a node, and its derivative by ξ (direction 1) or η (2); 0 for any other
/// node or direction. Nodes 4, 5, 6 lie on the edges 1-2, 2-3, 3-1.
double GiveN6nod(int node, double xi, double eta);
double GiveDerN6nod(int node, double xi, double eta, int direction);

/// Points of integration of a shell (1 or 3) or a solid (1 or 4) with so many nodes; 0 for other
/// types.
constexpr int GaussPointCount(ElemType type, int nnode)
{
  if (type == Triangle)
    return nnode == 3 ? 1 : 3;
  if (type == Tetrahedra)
    return nnode == 4 ? 1 : 4;
  return 0;
}

/// A point of a quadrature rule and its weight, over the reference triangle of area 1/2.
struct TrianglePoint
{
  double xi, eta, weight;
};

/// Rule of three points, the middles of the edges; exact for quadratic integrands. Source: P. C.
/// Hammer, A. H. Stroud, Numerical integration over simplexes, MTAC 10 (1956).
constexpr TrianglePoint kMidEdgePoints[] = {
    {0.5, 0.0, 1.0 / 6.0}, {0.5, 0.5, 1.0 / 6.0}, {0.0, 0.5, 1.0 / 6.0}};

/// The six shape functions at one point: values, and derivatives by ξ and by η.
struct SixNodeFunctions
{
  double N[6];
  double slopes[2][6];
};

SixNodeFunctions FunctionsAt(const TrianglePoint& at);

/// Jacobian of a six-node triangle whose node i (from 0) is at x[i], y[i]: derivatives of x and y
/// by ξ (first row) and by η (second row). Returns the determinant.
double CalcJ6nod(const double* x, const double* y, const SixNodeFunctions& at, double J[2][2]);
double CalcJ6nod(const double* x, const double* y, double xi, double eta);

/// Coordinates of the nodes of a flat triangle along the first two axes of the frame T (3×3); the
/// origin is its first node.
void CalcLocalCoordinates(const Elem& elem, const Matriu& T, double* x, double* y);

/// Integrals of the shape functions over a triangle of three or six nodes at these local
/// coordinates: the area by which each node shares a uniform load.
void CalcNodeAreas(int nnode, const double* x, const double* y, double* areas);

/// Shape function of a node of the ten-node tetrahedron, and its derivative by ξ (direction 1),
/// η (2) or ζ (3); 0 for any other node or direction. Nodes 5 to 10 lie on the edges 1-2, 2-3,
/// 1-3, 1-4, 2-4, 3-4.
double GiveN10nod(int node, double xi, double eta, double zeta);
double GiveDerN10nod(int node, double xi, double eta, double zeta, int direction);

/// Corners (from 0) of the edge that node 5 + i of a ten-node tetrahedron lies on.
constexpr int kTetraEdges[6][2] = {{0, 1}, {1, 2}, {0, 2}, {0, 3}, {1, 3}, {2, 3}};

/// A point of a quadrature rule over the reference tetrahedron of volume 1/6; its weight is 1/24.
struct TetraPoint
{
  double xi, eta, zeta;
};

/// Rule of four points, exact for quadratic integrands to the seven digits of its coordinates.
/// Source: P. C. Hammer, A. H. Stroud, Numerical integration over simplexes, MTAC 10 (1956).
constexpr double kTetraFar = 0.5854102;
constexpr double kTetraNear = 0.1381966;
constexpr TetraPoint kTetraPoints[] = {{kTetraFar, kTetraNear, kTetraNear},
                                       {kTetraNear, kTetraFar, kTetraNear},
                                       {kTetraNear, kTetraNear, kTetraFar},
                                       {kTetraNear, kTetraNear, kTetraNear}};

/// The ten shape functions at one point: values, and derivatives by ξ, by η and by ζ.
struct TenNodeFunctions
{
  double N[10];
  double slopes[3][10];
};

TenNodeFunctions FunctionsAt(const TetraPoint& at);

/// Vectors from the first node of an element in space to its first `count` nodes.
void CalcPlacesFromFirst(const Elem& elem, int count, double (*d)[3]);

/// Jacobian of a ten-node tetrahedron whose node i is at d[i]: derivatives of x, y, z by ξ (first
/// row), η and ζ. Returns the determinant.
double CalcJ10nod(const double (*d)[3], const TenNodeFunctions& at, double J[3][3]);

/// Six times the volume of the tetrahedron of the first four nodes; negative when node 4 lies on
/// the side of the face 1-2-3 that its normal (by the right-hand rule) points away from.
double CalcTetraDeterminant(const Elem& elem);

}  // namespace morlen
