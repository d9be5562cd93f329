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

}  // namespace morlen
