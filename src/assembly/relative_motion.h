#pragma once

#include <array>

#include "model/hinge_code.h"
#include "numeric/split_vector.h"

namespace morlen {

class Elem;
class Matriu;

// Displacements of the nodes of an element without its rigid motion.
//
// A rigid motion strains no element, but its displacements may be 1e10 times those that do. In
// K·u its forces cancel up to rounding errors, and these can be larger than all forces of the
// element. Here a rigid motion close to that of the element is subtracted before a stiffness
// comes in. The motion is taken from the first parts of the displacements; the rest is added
// last, so that no digit of it is lost. See N. J. Higham, Accuracy and Stability of Numerical
// Algorithms, 2nd ed., SIAM, Philadelphia 2002, chapter 12, for the refinement that needs this.
//
// u: by equation, global axes. Each function writes all components of all nodes.

/// Of a beam, in its local axes T: the motion is the first node's translation, and the rotation
/// of the first end that is not hinged. Without such an end it is the rotation of the chord, and
/// the rotations of the nodes are relative to that of the first.
void CalcRelativeBeam(const Elem& beam, HingeCode hingeCode, int components, const Matriu& T,
                      const SplitView& u, double* local);

/// Of a shell, six components a node in its local axes T, its nodes at x, y: the motion is the
/// first node's translation, the tilt of the plane through the corners and the turn of the first
/// edge about the normal. The last leaves the rotation about the normal of a node alone unless
/// it is folded: a node in a plane is held against it by the ground.
void CalcRelativeShell(const Elem& shell, const Matriu& T, const double* x, const double* y,
                       const std::array<bool, 6>& folded, const SplitView& u, double* local);

/// Of a solid, three components a node, in global axes: the motion is the first node's
/// translation and half the curl of the displacements of the corners.
void CalcRelativeSolid(const Elem& solid, const SplitView& u, double* relative);

}  // namespace morlen
