#pragma once

#include <string_view>
#include <vector>

namespace morlen {

class TextScan;
struct Problem;

/// Reads a block of element loads whose keyword `word` has been read, to its end. Returns false,
/// and reads nothing, for any other word. Fatal on an unknown element and on an incomplete record.
bool ReadElemLoad(TextScan& text, std::string_view word, Problem& problem);

/// The keywords of the blocks of element loads.
std::vector<std::string_view> ElemLoadKeywords();

}  // namespace morlen
