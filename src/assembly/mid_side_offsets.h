#pragma once

namespace morlen {

class Elem;
class Matriu;

/// The mid-side nodes of a six-node shell that are off the plane of its corners.
///
/// The element lies in that plane. A node at the distance z from it is connected to its place in
/// the plane by a rigid link: the element works on the displacements A u, those of the ends of the
/// links. It has the stiffness Aᵀ K A and the forces Aᵀ f, so that rigid motions stay without
/// forces, the forces of an element are in equilibrium, and neighbours have the same displacements
/// along their edge. Without offsets A is the unit matrix.
class MidSideOffsets
{
public:
  /// x, y: coordinates of the nodes in the axes T of the element.
  void Set(const Elem& elem, const Matriu& T, const double* x, const double* y);

  /// False when all nodes are in the plane, but for rounding errors of their coordinates.
  bool Any() const { return any; }

  /// K becomes Aᵀ K A. K: 36×36, six components of each node in the axes of the element.
  void TransformStiffness(double (&K)[36][36]) const;
  /// f becomes Aᵀ f. f: 36 forces in the axes of the element.
  void TransformForces(double* f) const;
  /// u becomes A u. u: 36 displacements in the axes of the element.
  void TransformDisplacements(double* u) const;

private:
  template <class Visit>
  void ForEachEntry(Visit visit) const;

  bool any = false;
  double z[3];  ///< of the mid-side nodes, along the normal
};

}  // namespace morlen
