#pragma once

#include <concepts>
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

/// The parts, texts and whole numbers, one behind the other.
template <class... Parts>
std::string Joined(const Parts&... parts)
{
  std::string text;
  (AppendPart(text, parts), ...);
  return text;
}

}  // namespace morlen::check
