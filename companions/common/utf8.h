#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace morlen {

/// True for well-formed UTF-8, control characters included.
bool IsUtf8(std::string_view text);

/// The characters of a UTF-8 text: its bytes less those that continue a character.
std::size_t CharacterCount(std::string_view text);

/// The text as UTF-8 that is allowed in XML, JSON and HTML: '?' replaces every byte that is no part
/// of a character (a problem file may have any encoding) and every control character.
std::string ToUtf8(std::string_view text);

}  // namespace morlen
