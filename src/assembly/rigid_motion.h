#pragma once

#include <optional>

namespace morlen {

class ElementFamilies;
class ReaVecV;
struct Problem;

/// For a motion in which hinges take part: a motion as a rigid body of the whole part that moves
/// most, when the supports leave one free too. None otherwise. Missing supports are then the better
/// explanation. motion and result: by equation in global axes; in the result all nodes of the part
/// turn with it, also those whose beam ends are all hinged. The problem must be prepared.
std::optional<ReaVecV> FreeRigidMotion(const Problem& problem, const ElementFamilies& families,
                                       const ReaVecV& motion);

/// A motion as a rigid body of a connected part that moves in `motion`, when its supports leave one
/// free; hinges are not needed. The parts are tried from the one that moves most, eight at most.
std::optional<ReaVecV> FreeMotionOfAPart(const Problem& problem, const ElementFamilies& families,
                                         ReaVecV motion);

}  // namespace morlen
