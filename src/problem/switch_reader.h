#pragma once

#include <string_view>

namespace morlen {

class TextScan;

/// Reads the value of a switch, if the rest of its line begins with one: 1, yes, true, on, or 0,
/// no, false, off. Without a value the switch is on. word: the word of the text that begins with
/// the keyword `name`; a value may follow in the same word, after '=' or ':'.
bool ReadSwitch(TextScan& text, std::string_view word, std::string_view name);

}  // namespace morlen
