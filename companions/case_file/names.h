#pragma once

#include <string>
#include <string_view>

namespace morlen::cases {

/// True for a text with '*' or '?'.
bool IsPattern(std::string_view text);

/// True when a name matches a pattern: '*' is any number of any characters, '?' one.
bool Matches(std::string_view pattern, std::string_view name);

/// The name as part of the name of a file: other characters than letters, digits, '.', '_' and '-'
/// become '_'.
std::string FileNameOf(std::string_view name);

}  // namespace morlen::cases
