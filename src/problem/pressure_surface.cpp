// Equivalent nodal loads of distributed loads on shell triangles, over the area or along an edge:
// the integral of shape function times load, f_i = ∫ N_i q.

#include <cmath>

#include "base/errorwriter.h"
#include "base/node_components.h"
#include "model/elem.h"
#include "model/node.h"
#include "model/shape_functions.h"
#include "numeric/block_rotation.h"
#include "numeric/matriu.h"
#include "numeric/reavecv.h"
#include "problem/pressure_load.h"

namespace morlen {

namespace {

constexpr NodeComponents kComponents = ComponentsOf(kSpace);

void AddToNode(const Node& node, const double* load, double share, ReaVecV& loads)
{
  for (int k = 1; k <= kComponents.count; ++k)
    loads(kComponents.Equation(node.number, k)) += share * load[k - 1];
}

// The length of an edge that each of its nodes carries (first, last, middle): the integral of the
// node's shape function along the edge. The middle node of a six-node triangle may lie off the
// chord; the edge is then a parabola, integrated with three Gauss points.
void CalcEdgeLengths(const Node& first, const Node* middle, const Node& last, double lengths[3])
{
  // Gauss-Legendre rule of three points on (-1, 1).
  static const double points[] = {-std::sqrt(0.6), 0.0, std::sqrt(0.6)};
  constexpr double weights[] = {5.0 / 9.0, 8.0 / 9.0, 5.0 / 9.0};
  const double chord = std::sqrt(dist2(&first, &last));
  lengths[0] = lengths[1] = chord / 2.0;
  lengths[2] = 0.0;
  if (!middle)
    return;
  lengths[0] = lengths[1] = 0.0;
  for (int g = 0; g < 3; ++g) {
    const double s = points[g];
    double squares = 0.0;
    for (int k = 1; k <= 3; ++k) {
      const double d = (s - 0.5) * first(k) + (s + 0.5) * last(k) - 2.0 * s * (*middle)(k);
      squares += d * d;
    }
    const double weight = weights[g] * std::sqrt(squares);
    lengths[0] += weight * s * (s - 1.0) / 2.0;
    lengths[1] += weight * s * (s + 1.0) / 2.0;
    lengths[2] += weight * (1.0 - s * s);
  }
}

}  // namespace

void PreassureLT::AddToLoadVectorTriangle(const Elem& elem, const Matriu& T, ReaVecV& loads) const
{
  if (face != -1)
    return AddToLoadVectorFaceTriangle(elem, loads);
  double load[kMaxComponents];
  std::copy_n(values, kComponents.count, load);
  double factor = 1.0;
  if (type == PreassureLT_type::Local) {
    TurnVector(T, Turn::ToGlobal, kComponents.count, load);
  } else if (type == PreassureLT_type::GlobalProjected) {
    const double size = std::hypot(load[0], load[1], load[2]);
    if (size > 0.0)
      factor = std::fabs(T(1, 3) * load[0] + T(2, 3) * load[1] + T(3, 3) * load[2]) / size;
  }
  double x[6], y[6], areas[6];
  CalcLocalCoordinates(elem, T, x, y);
  CalcNodeAreas(elem.Nnode(), x, y, areas);
  for (int i = 0; i < elem.Nnode(); ++i)
    AddToNode(*elem(i), load, factor * areas[i], loads);
}

void PreassureLT::AddToLoadVectorFaceTriangle(const Elem& elem, ReaVecV& loads) const
{
  if (face < 0 || face > 2) {
    Explain("element ", elem.Num(), " has a load with the index ", face,
            ": a triangle has the edges 0, 1 and 2");
    Fatal("error in PreassureLT::AddToLoadVectorFaceTriangle\n");
  }
  const Node& first = *elem(face);
  const Node& second = *elem((face + 1) % 3);
  const Node* middle = elem.Nnode() == 6 ? elem(face + 3) : nullptr;
  double lengths[3];
  CalcEdgeLengths(first, middle, second, lengths);
  AddToNode(first, values, lengths[0], loads);
  AddToNode(second, values, lengths[1], loads);
  if (middle)
    AddToNode(*middle, values, lengths[2], loads);
}

}  // namespace morlen
