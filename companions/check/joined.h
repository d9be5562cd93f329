#pragma once

#include <concepts>
#include <cstdio>
#include <string>
#include <string_view>

namespace morlen::check {

inline void AppendPart(std::string& text, std::string_view part)
{
  text += part;
}

template <std::integral Number>
void AppendPart(std::string& text, Number part)
{
  text += std::to_string(part);
}

/// The parts, texts and integers, one after the other.
template <class... Parts>
std::string Joined(const Parts&... parts)
{
  std::string text;
  (AppendPart(text, parts), ...);
  return text;
}

/// A number with at most this many significant digits.
inline std::string Rounded(double value, int digits)
{
  char text[32];
  std::snprintf(text, sizeof text, "%.*g", digits, value);
  return text;
}

}  // namespace morlen::check
