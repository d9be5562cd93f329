#pragma once

#include <string_view>

#include "base/textscan.h"

namespace morlen {

/// A word of the top level, which is a keyword where the file has no error.
struct TopLevelWord
{
  std::string_view word;   ///< of the text; empty after a comment and at the end
  TextScan::Block before;  ///< the block read last
};

/// Consumes the next word, or a comment, and tells the observer of the keyword. A word that begins
/// a block becomes the block of the text.
TopLevelWord ReadTopLevelWord(TextScan& text);

}  // namespace morlen
