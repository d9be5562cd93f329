#pragma once

namespace morlen {

struct Problem;

/// Explains typical faults of the supports in the stream of the error writer: none, only one, or
/// two about whose line the model can turn.
void CheckTypicalConstraintsErrors(const Problem& problem);

}  // namespace morlen
