#pragma once

#include <span>
#include <string_view>

#include "base/textscan.h"

namespace morlen {

/// Explains (see Explain) why a word is no keyword of the top level. word: of the text. before:
/// the block read last. keywords: all that are known.
void ExplainUnknownKey(const TextScan& text, std::string_view word, const TextScan::Block& before,
                       std::span<const std::string_view> keywords);

}  // namespace morlen
