#include "common/utf8.h"

#include <algorithm>

namespace morlen {

namespace {

// Bytes of the first character of the text; 0 when it begins with none. Source: The Unicode
// Standard, version 15.0, table 3-7 (well-formed UTF-8 byte sequences).
std::size_t CharacterLength(std::string_view text)
{
  struct Sequence
  {
    unsigned char firstLow, firstHigh, secondLow, secondHigh;
    std::size_t length;
  };
  constexpr Sequence kSequences[] = {{0xC2, 0xDF, 0x80, 0xBF, 2}, {0xE0, 0xE0, 0xA0, 0xBF, 3},
                                     {0xE1, 0xEC, 0x80, 0xBF, 3}, {0xED, 0xED, 0x80, 0x9F, 3},
                                     {0xEE, 0xEF, 0x80, 0xBF, 3}, {0xF0, 0xF0, 0x90, 0xBF, 4},
                                     {0xF1, 0xF3, 0x80, 0xBF, 4}, {0xF4, 0xF4, 0x80, 0x8F, 4}};
  const auto byte = [&](std::size_t i) { return static_cast<unsigned char>(text[i]); };
  if (byte(0) < 0x80)
    return 1;
  for (const Sequence& s : kSequences) {
    if (byte(0) < s.firstLow || byte(0) > s.firstHigh)
      continue;
    if (text.size() < s.length || byte(1) < s.secondLow || byte(1) > s.secondHigh)
      return 0;
    const std::string_view rest = text.substr(2, s.length - 2);
    const bool follows =
        std::all_of(rest.begin(), rest.end(), [](char c) { return (c & 0xC0) == 0x80; });
    return follows ? s.length : 0;
  }
  return 0;
}

bool IsControl(char c)
{
  const auto byte = static_cast<unsigned char>(c);
  return byte < 0x20 || byte == 0x7F;
}

}  // namespace

bool IsUtf8(std::string_view text)
{
  while (!text.empty()) {
    const std::size_t length = CharacterLength(text);
    if (length == 0)
      return false;
    text.remove_prefix(length);
  }
  return true;
}

std::size_t CharacterCount(std::string_view text)
{
  return static_cast<std::size_t>(std::count_if(text.begin(), text.end(), [](char c) {
    return (static_cast<unsigned char>(c) & 0xC0U) != 0x80U;
  }));
}

std::string ToUtf8(std::string_view text)
{
  std::string result;
  while (!text.empty()) {
    const std::size_t length = CharacterLength(text);
    if (length > 0 && !IsControl(text[0]))
      result += text.substr(0, length);
    else
      result += '?';
    text.remove_prefix(std::max<std::size_t>(length, 1));
  }
  return result;
}

}  // namespace morlen
