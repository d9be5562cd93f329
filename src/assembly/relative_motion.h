#pragma once

#include <array>

#include "model/hinge_code.h"
#include "numeric/split_vector.h"

namespace morlen {

class Elem;
class Matriu;

// Displacements of the nodes of an element without its rigid motion.
//
// A rigid motion does not strain an element, but its displacements may be 1e10 times those that do.
// In K·u its forces cancel up to rounding errors, which can be larger than all forces of the
// element. The functions here therefore subtract a rigid motion close to that of the element before
// a stiffness is applied. The motion is computed from the values of the displacements. Their rests
// are added last, so that no digit of them is lost. See N. J. Higham, Accuracy and Stability of
// Numerical Algorithms, 2nd ed., SIAM, Philadelphia 2002, chapter 12, for the refinement that needs
// this.
//
// u: by equation, global axes. Each function writes all components of all nodes.

/// Relative displacements of a beam in its local axes T. The motion is the translation of the first
/// node and the rotation of the first end that is not hinged. When both ends are hinged, it is the
/// rotation of the chord, and rotations of the nodes are relative to that of the first.
void CalcRelativeBeam(const Elem& beam, HingeCode hingeCode, int components, const Matriu& T,
                      const SplitView& u, double* local);

/// Relative displacements of a shell in its local axes T, six at each node. x, y: local coordinates
/// of the nodes. The motion is the translation of the first node, the tilt of the plane through the
/// corners and the rotation of the first edge about the normal. A node that is not folded keeps its
/// whole rotation about the normal, because the ground resists that rotation.
void CalcRelativeShell(const Elem& shell, const Matriu& T, const double* x, const double* y,
                       const std::array<bool, 6>& folded, const SplitView& u, double* local);

/// Relative displacements of a solid in global axes, three at each node. The motion is the
/// translation of the first node and half the curl of the displacements of the corners.
void CalcRelativeSolid(const Elem& solid, const SplitView& u, double* relative);

}  // namespace morlen
