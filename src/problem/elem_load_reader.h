#pragma once

#include <string_view>

namespace morlen {

class TextScan;
struct Problem;

/// Reads the block of element loads that this word begins, to its end. Returns false when the word
/// begins none. Fatal on an unknown element and on a record that is not complete.
bool ReadElemLoad(TextScan& text, std::string_view word, Problem& problem);

}  // namespace morlen
