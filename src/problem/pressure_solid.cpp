// Equivalent nodal loads of distributed loads on tetrahedra, over the volume or on a face: the
// integral of shape function times load, f_i = ∫ N_i q. A face is a triangle of three or six nodes
// and may be curved; its integral is summed over the three points of kMidEdgePoints.

#include <cmath>

#include "base/errorwriter.h"
#include "base/node_components.h"
#include "model/elem.h"
#include "model/euler.h"
#include "model/node.h"
#include "model/shape_functions.h"
#include "numeric/reavecv.h"
#include "problem/pressure_load.h"

namespace morlen {

namespace {

void AddToNode(const Node& node, const ReaVec& load, double share, ReaVecV& loads)
{
  for (int k = 1; k <= 3; ++k)
    loads(kSolidComponents.Equation(node.number, k)) += share * load(k);
}

// A face of a tetrahedron: a triangle of three or six nodes in space.
struct SolidFace
{
  SolidFace(const Elem& elem, int face) : nnode(elem.Nnode() == 4 ? 3 : 6)
  {
    for (int i = 0; i < 3; ++i) {
      const int corner = (face + i) % 4;
      nodes[i] = elem(corner);
      if (nnode == 6)
        nodes[i + 3] = elem(MiddleNode(corner, (face + (i + 1) % 3) % 4));
    }
    const ReaVec origin = *nodes[0];
    const ReaVec turn = VectorProd(*nodes[1] - origin, *nodes[2] - origin);
    outwards = turn * (*elem((face + 3) % 4) - origin) > 0.0 ? -1.0 : 1.0;
  }

  // Position (from 0) of the node between two corners of a ten-node element.
  static int MiddleNode(int a, int b)
  {
    for (int i = 0; i < 6; ++i) {
      const int* edge = kTetraEdges[i];
      if ((edge[0] == a && edge[1] == b) || (edge[0] == b && edge[1] == a))
        return 4 + i;
    }
    return -1;
  }

  double N(int i, const TrianglePoint& at) const
  {
    const double corners[] = {1.0 - at.xi - at.eta, at.xi, at.eta};
    return nnode == 3 ? corners[i] : GiveN6nod(i + 1, at.xi, at.eta);
  }

  double Derivative(int i, const TrianglePoint& at, int direction) const
  {
    if (nnode == 6)
      return GiveDerN6nod(i + 1, at.xi, at.eta, direction);
    return i == 0 ? -1.0 : i == direction ? 1.0 : 0.0;
  }

  // Outward normal at a point. Its length is the Jacobian: area per unit of natural coordinates.
  ReaVec Normal(const TrianglePoint& at) const
  {
    ReaVec tangents[2] = {ReaVec(3), ReaVec(3)};
    for (int i = 0; i < nnode; ++i) {
      for (int direction = 1; direction <= 2; ++direction)
        tangents[direction - 1] += *nodes[i] * Derivative(i, at, direction);
    }
    return VectorProd(tangents[0], tangents[1]) * outwards;
  }

  int nnode;
  const Node* nodes[6] = {};
  double outwards;  // 1, or -1 when the normal by the order of the corners points inwards
};

}  // namespace

void PreassureLT::AddToLoadVectorTetra(const Elem& elem, ReaVecV& loads) const
{
  if (face != -1)
    return AddToLoadVectorFaceTetra(elem, loads);
  const ReaVec load(values[0], values[1], values[2]);
  if (elem.Nnode() == 4) {
    const double share = CalcTetraDeterminant(elem) / 24.0;
    for (int i = 0; i < 4; ++i)
      AddToNode(*elem(i), load, share, loads);
    return;
  }
  double d[10][3];
  CalcPlacesFromFirst(elem, 10, d);
  for (const TetraPoint& at : kTetraPoints) {
    const TenNodeFunctions functions = FunctionsAt(at);
    double J[3][3];
    const double volume = CalcJ10nod(d, functions, J) / 24.0;
    for (int i = 0; i < 10; ++i)
      AddToNode(*elem(i), load, functions.N[i] * volume, loads);
  }
}

void PreassureLT::AddToLoadVectorFaceTetra(const Elem& elem, ReaVecV& loads) const
{
  if (face < 0 || face > 3) {
    Explain("element ", elem.Num(), " has a load with the index ", face,
            ": a tetrahedron has the faces 0, 1, 2 and 3");
    Fatal("error in PreassureLT::AddToLoadVectorFaceTriangle\n");
  }
  const SolidFace triangle(elem, face);
  for (const TrianglePoint& at : kMidEdgePoints) {
    const ReaVec normal = triangle.Normal(at);
    const double area = normal.modul();
    if (area == 0.0)
      continue;
    const ReaVec load = OnSurface(normal / area);
    for (int i = 0; i < triangle.nnode; ++i)
      AddToNode(*triangle.nodes[i], load, triangle.N(i, at) * area * at.weight, loads);
  }
}

ReaVec PreassureLT::OnSurface(const ReaVec& normal) const
{
  const ReaVec load(values[0], values[1], values[2]);
  if (type == PreassureLT_type::Local) {
    const Axes axes = AxesGivenZ(normal);
    return axes.x * load(1) + axes.y * load(2) + axes.z * load(3);
  }
  const double size = load.modul();
  if (type == PreassureLT_type::GlobalProjected && size > 0.0)
    return load * (std::fabs(normal * load) / size);
  return load;
}

}  // namespace morlen
