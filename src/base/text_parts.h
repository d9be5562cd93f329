#pragma once

#include <string>
#include <string_view>

namespace morlen {

/// The text up to its first newline.
std::string_view FirstLine(std::string_view text);

/// The first word of the text, up to white space; empty without one.
std::string_view FirstWord(std::string_view text);

/// The same; the text then begins after the word.
std::string_view ConsumeWord(std::string_view& text);

/// The beginning of the text's first line, without blanks at its ends, in quotes. Control
/// characters are replaced: the file may not be text.
std::string Quoted(std::string_view text);

/// True for a word that begins like a comment of another language, such as "//" or "!".
bool BeginsForeignComment(std::string_view word);

/// The text without the mark (UTF-8) that some editors put before its first character.
std::string_view WithoutByteOrderMark(std::string_view text);

}  // namespace morlen
