#pragma once

#include <string_view>

namespace morlen::check {

/// The text without these characters at its ends.
std::string_view Trim(std::string_view text, const char* dropped = " \t\r\n\v\f:=");

/// The text without its leading blanks and comment lines.
std::string_view WithoutComments(std::string_view text);

}  // namespace morlen::check
