#pragma once

#include <bit>
#include <cstdint>
#include <cstring>

constexpr bool IsDigit(char c)
{
  return c >= '0' && c <= '9';
}

/// The decimal digits that a text of eight characters begins with.
struct DigitRun
{
  std::uint64_t number;  ///< what they make; 0 without digits
  int count;             ///< up to 8
};

/// The same one by one, whatever the order of bytes in a word.
inline DigitRun DigitsOneByOne(const char* text)
{
  DigitRun run{0, 0};
  for (; run.count < 8 && IsDigit(text[run.count]); ++run.count)
    run.number = 10 * run.number + static_cast<std::uint64_t>(text[run.count] - '0');
  return run;
}

/// The number of eight digits, the first in the lowest byte: by pairs, fours and eights, with
/// few multiplications of all at once.
constexpr std::uint64_t NumberOfEightDigits(std::uint64_t bytes)
{
  constexpr std::uint64_t kPairs = 0x000000ff000000ff;  // every other one
  bytes = 10 * bytes + (bytes >> 8);
  const std::uint64_t first = (bytes & kPairs) * (100 + (std::uint64_t{1000000} << 32));
  const std::uint64_t second = (bytes >> 16 & kPairs) * (1 + (std::uint64_t{10000} << 32));
  return (first + second) >> 32;
}

/// All eight at once, without a branch that depends on how many digits there are.
inline DigitRun LeadingDigits(const char* text)
{
  if constexpr (std::endian::native != std::endian::little) {
    return DigitsOneByOne(text);
  } else {
    constexpr std::uint64_t kZeros = 0x3030303030303030;
    constexpr std::uint64_t kToHighBit = 0x7676767676767676;  // from 10 on
    constexpr std::uint64_t kHighBits = 0x8080808080808080;
    std::uint64_t bytes = 0;
    std::memcpy(&bytes, text, sizeof bytes);
    bytes ^= kZeros;
    // A carry can only come from the first byte that is no digit, and goes to those behind it.
    const std::uint64_t others = ((bytes + kToHighBit) | bytes) & kHighBits;
    const int count = std::countr_zero(others) / 8;
    if (count == 0)
      return {0, 0};
    // Zeros take the places in front.
    return {NumberOfEightDigits(bytes << (64 - 8 * count)), count};
  }
}
