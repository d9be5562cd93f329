#pragma once

#include <array>
#include <cstdint>

namespace morlen {

// Powers of ten as binary floating-point numbers of 64 bits: 10^p = mantissa · 2^exponent with
// 2^63 <= mantissa < 2^64, truncated. The table is computed at compile time, by steps of times ten
// and over ten in 128 bits.

inline constexpr int kLargestPower = 320;  ///< the table holds the powers from -320 to 320

/// Binary exponent of 10^p, and decimal exponent of 2^b.
constexpr int FloorLog2OfPower(int p)
{
  return (p * 217706) >> 16;  // log2(10)·2^16, exact enough for |p| < 400
}
constexpr int FloorLog10OfPower(int b)
{
  return (b * 78913) >> 18;  // log10(2)·2^18, exact enough for |b| < 1200
}

/// A number of 128 bits, the highest of which is set.
struct WideMantissa
{
  std::uint64_t high;
  std::uint64_t low;
};

/// Mantissa of ten times the number: m·10 = (m + m/4)·8.
constexpr WideMantissa TimesTen(WideMantissa m)
{
  const std::uint64_t low = m.low + (m.low >> 2 | m.high << 62);
  const std::uint64_t high = m.high + (m.high >> 2) + (low < m.low ? 1 : 0);
  if (high >= m.high)
    return {high, low};
  return {high >> 1 | std::uint64_t{1} << 63, low >> 1 | high << 63};
}

/// Mantissa of a tenth of the number, from its fifth by long division.
constexpr WideMantissa OverTen(WideMantissa m)
{
  std::uint64_t words[4] = {m.high >> 32, m.high & 0xffffffff, m.low >> 32, m.low & 0xffffffff};
  std::uint64_t rest = 0;
  for (std::uint64_t& word : words) {
    rest = rest << 32 | word;
    word = rest / 5;
    rest %= 5;
  }
  WideMantissa fifth = {words[0] << 32 | words[1], words[2] << 32 | words[3]};
  while (fifth.high >> 63 == 0)
    fifth = {fifth.high << 1 | fifth.low >> 63, fifth.low << 1};
  return fifth;
}

/// Mantissas of the powers -kLargestPower to kLargestPower, exact from 0 to 27, else less than
/// 2 units too small: each step of the wide ones loses less than 2^-124 of the value.
constexpr std::array<std::uint64_t, 2 * kLargestPower + 1> MantissasOfPowers()
{
  std::array<std::uint64_t, 2 * kLargestPower + 1> mantissas{};
  constexpr WideMantissa kOne = {std::uint64_t{1} << 63, 0};
  WideMantissa large = kOne;
  WideMantissa small = kOne;
  for (int p = 0; p <= kLargestPower; ++p) {
    mantissas[static_cast<std::size_t>(kLargestPower + p)] = large.high;
    mantissas[static_cast<std::size_t>(kLargestPower - p)] = small.high;
    large = TimesTen(large);
    small = OverTen(small);
  }
  return mantissas;
}

inline constexpr std::array<std::uint64_t, 2 * kLargestPower + 1> kMantissasOfPowers =
    MantissasOfPowers();

struct PowerOfTen
{
  std::uint64_t mantissa;
  int exponent;
};

constexpr PowerOfTen GivePowerOfTen(int p)
{
  return {kMantissasOfPowers[static_cast<std::size_t>(p + kLargestPower)],
          FloorLog2OfPower(p) - 63};
}

}  // namespace morlen
