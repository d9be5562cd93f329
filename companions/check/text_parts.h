#pragma once

#include <string>
#include <string_view>

namespace morlen::check {

/// The text without these characters at its ends.
std::string_view Trim(std::string_view text, const char* dropped = " \t\r\n\v\f:=");

/// The text without its leading blanks and comment lines.
std::string_view WithoutComments(std::string_view text);

std::string_view FirstLine(std::string_view text);

/// The first word of the text, up to white space; empty without one.
std::string_view FirstWord(std::string_view text);

/// The beginning of the text's first line, in quotes.
std::string Quote(std::string_view text);

}  // namespace morlen::check
