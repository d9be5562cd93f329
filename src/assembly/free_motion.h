#pragma once

namespace morlen {

class ElementFamilies;
class ReaVecV;
struct Problem;

/// True when no element resists a motion by more than rounding errors. The test is relative to the
/// stiffness of each element, so that a soft part beside a stiff one counts as well: in a model
/// that is too rough, the solution of such a part looks like a motion without energy. motion: by
/// equation in global axes; false for 0 and for a motion that is not finite.
bool IsFreeMotion(const Problem& problem, const ElementFamilies& families, const ReaVecV& motion);

}  // namespace morlen
