#pragma once

#include <string>
#include <string_view>

namespace morlen {

/// The text as UTF-8 that XML, JSON and HTML can hold: '?' for every byte that is no part of a
/// character (a problem file may be in any encoding) and for control characters.
std::string ToUtf8(std::string_view text);

}  // namespace morlen
