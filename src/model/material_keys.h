#pragma once

#include <string>
#include <string_view>

#include "base/textscan.h"

namespace morlen {

/// The key of a material that a word is probably meant to be, such as "E" for "young" and "J" for
/// "It"; empty when the word says nothing. "Area" gives "A", and a key gives itself.
std::string_view MeantMaterialKey(std::string_view word);

/// The hint for a word that is no key: the key that is meant, or the fault of the word. previous:
/// the item before it, empty at the beginning of a record.
std::string FaultOfMaterialKey(const RecordText& word, std::string_view previous);

}  // namespace morlen
