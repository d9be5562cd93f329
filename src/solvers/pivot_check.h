#pragma once

/// Whether a pivot of a factorisation can be divided by. A pivot below 1e-15 is 0, and one not
/// larger than 1e-14 of the entry that stood on the diagonal before is a rounding error; so is one
/// that is not a number. Structures that can move may pass: see Refinement.
bool AcceptsPivot(double pivot, double diagonal);
