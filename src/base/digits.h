#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>

namespace morlen {

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

/// Whether the first of eight bytes in a word is its lowest, as ScanGroup has it.
inline constexpr bool kScansGroups = std::endian::native == std::endian::little;

/// The digits that eight characters begin with, and the number that they make. All at once, as
/// bytes of one word: which are digits, then their value by pairs, fours and eights.
struct DigitGroup
{
  std::size_t count;
  unsigned number;
};

inline DigitGroup ScanGroup(const char* text)
{
  constexpr std::uint64_t kZeros = 0x3030303030303030;
  constexpr std::uint64_t kToHighBit = 0x7676767676767676;  // behind 9
  constexpr std::uint64_t kHighBits = 0x8080808080808080;
  constexpr std::uint64_t kPairs = 0x00ff00ff00ff00ff;
  constexpr std::uint64_t kFours = 0x0000ffff0000ffff;
  std::uint64_t bytes = 0;
  std::memcpy(&bytes, text, 8);
  bytes ^= kZeros;
  // A carry comes from a byte that is no digit, and only spoils bytes behind it.
  const std::uint64_t others = (bytes | (bytes + kToHighBit)) & kHighBits;
  const int bits = std::countr_zero(others) & ~7;
  if (bits == 0)
    return {0, 0};
  bytes <<= 64 - bits;
  bytes = (bytes * (1 + (10 << 8))) >> 8 & kPairs;
  bytes = (bytes * (1 + (100 << 16))) >> 16 & kFours;
  bytes = (bytes * (1 + (std::uint64_t{10000} << 32))) >> 32;
  return {static_cast<std::size_t>(bits) / 8, static_cast<unsigned>(bytes)};
}

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

}  // namespace morlen
