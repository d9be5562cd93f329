#pragma once

#include <cstdint>
#include <string_view>

namespace morlen {

constexpr bool IsDigit(char c)
{
  return c >= '0' && c <= '9';
}

/// A run of decimal digits: the place after it, and its number (wrong beyond 19 digits).
struct DigitRun
{
  const char* stop;
  std::uint64_t number;
};

/// Reads the digits that a text begins with, perhaps none, and appends them to those of a number.
inline DigitRun ScanDigits(const char* text, const char* end, std::uint64_t number = 0)
{
  for (; text != end && IsDigit(*text); ++text)
    number = 10 * number + static_cast<std::uint64_t>(*text - '0');
  return {text, number};
}

/// White space of the C locale.
inline constexpr std::string_view kWhiteSpace = " \t\n\v\f\r";

/// True for one of its characters.
constexpr bool IsWhite(char c)
{
  return c <= ' ' && (c == ' ' || (c >= '\t' && c <= '\r'));  // most characters are above ' '
}

/// The lower case of an ASCII letter; other characters are returned unchanged.
constexpr char ToLower(char c)
{
  return c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c;
}

inline const char* SkipWhite(const char* text, const char* end)
{
  while (text != end && IsWhite(*text))
    ++text;
  return text;
}

}  // namespace morlen
