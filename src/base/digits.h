#pragma once

#include <cstdint>

constexpr bool IsDigit(char c)
{
  return c >= '0' && c <= '9';
}

/// Decimal digits at the beginning of a text: the place behind them and the number that they
/// make, which more than 19 overflow.
struct DigitRun
{
  const char* stop;
  std::uint64_t number;
};

/// The digits are appended to those of a number.
inline DigitRun ScanDigits(const char* text, const char* end, std::uint64_t number = 0)
{
  for (; text != end && IsDigit(*text); ++text)
    number = 10 * number + static_cast<std::uint64_t>(*text - '0');
  return {text, number};
}

/// White space of the C locale.
constexpr bool IsWhite(char c)
{
  return c <= ' ' && (c == ' ' || (c >= '\t' && c <= '\r'));  // most characters are above it
}

inline const char* SkipWhite(const char* text, const char* end)
{
  while (text != end && IsWhite(*text))
    ++text;
  return text;
}
