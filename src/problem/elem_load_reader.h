#pragma once

#include <string_view>

namespace morlen {

class TextScan;
struct Problem;

/// Reads a block of element loads whose keyword `word` has been read, to its end. Returns false,
/// and reads nothing, for any other word. Fatal on an unknown element and on an incomplete record.
bool ReadElemLoad(TextScan& text, std::string_view word, Problem& problem);

}  // namespace morlen
