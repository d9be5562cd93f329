#pragma once

#include <string>
#include <string_view>

#include "base/read_observer.h"

namespace morlen::check {

/// The fault of a word that is no number of the expected kind from end to end, the value that the
/// program reads from it, and the value that its author probably meant.
std::string AboutMisreadNumber(std::string_view word, NumberKind expected);

/// True for the words by which a material's values are found, as "A" or "Iy". Keys that begin with
/// one of them have its meaning.
bool IsMaterialKey(std::string_view rule);

/// True when a longer key means the same as the word for which it is read, as "Area" for "A".
bool MeansWhatItMatches(std::string_view key, std::string_view rule);

}  // namespace morlen::check
