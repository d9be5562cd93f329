#pragma once

namespace morlen {

/// The part of its diagonal entry up to which a pivot counts as a rounding error.
constexpr double kLostPart = 1e-14;

/// Whether a pivot of a factorisation can be divided by. A pivot below 1e-15 is 0, and one not
/// larger than this part of the entry that was on the diagonal before is a rounding error; so is
/// one that is not a number. Structures that can move may pass: see Refinement. With a lostPart of
/// 0 every pivot that is a number but 0 is accepted.
bool AcceptsPivot(double pivot, double diagonal, double lostPart = kLostPart);

}  // namespace morlen
