#pragma once

namespace morlen {

/// The part of its diagonal entry up to which a pivot counts as a rounding error.
constexpr double kLostPart = 1e-14;

/// Whether a factorisation may divide by this pivot. Refused are pivots below 1e-15, those not
/// larger than lostPart times the original diagonal entry (they are rounding error), and those
/// that are not a number. With a lostPart of 0, every number except 0 is accepted. A structure
/// that can move may pass this check: see Refinement.
bool AcceptsPivot(double pivot, double diagonal, double lostPart = kLostPart);

}  // namespace morlen
