// Numbers to text. A number is multiplied by a power of ten from a table, in integers of 64 bits,
// so that the whole part of the product holds the digits to print. The fraction decides the
// rounding. When it is too near to one half for the precision of the product, and for numbers that
// are denormal or not finite, the library's std::to_chars converts exactly. After F. Loitsch,
// "Printing floating-point numbers quickly and accurately with integers", PLDI 2010.

#include "base/number_format.h"

#include <bit>
#include <charconv>
#include <cstdint>
#include <cstdlib>
#include <cstring>

#include "base/powers_of_ten.h"

namespace morlen {

namespace {

constexpr std::uint64_t kSignBit = std::uint64_t{1} << 63;
constexpr int kFractionBits = 52;  // of a double
constexpr int kExponentMask = 0x7ff;
constexpr int kBias = 1023;

// Eight decimal digits as bytes, the first in the lowest byte.
std::uint64_t EightDigits(std::uint32_t number)
{
  const std::uint64_t fours = number / 10000 | std::uint64_t{number % 10000} << 32;
  const std::uint64_t hundreds = ((fours * 10486) >> 20) & 0x0000007f0000007f;
  const std::uint64_t twos = hundreds | (fours - 100 * hundreds) << 16;
  const std::uint64_t tens = ((twos * 103) >> 10) & 0x000f000f000f000f;
  return tens | (twos - 10 * tens) << 8;
}

constexpr std::uint64_t kZeros = 0x3030303030303030;  // "00000000"

// Stores the lowest byte first.
void StoreEight(char* to, std::uint64_t bytes)
{
  if constexpr (std::endian::native == std::endian::little) {
    std::memcpy(to, &bytes, 8);
  } else {
    for (int i = 0; i < 8; ++i)
      to[i] = static_cast<char>(bytes >> 8 * i);
  }
}

// The upper half of the product, at most 3 too small.
std::uint64_t UpperProduct(std::uint64_t a, std::uint64_t b)
{
  const std::uint64_t aHigh = a >> 32;
  const std::uint64_t bHigh = b >> 32;
  return aHigh * bHigh + (aHigh * (b & 0xffffffff) >> 32) + ((a & 0xffffffff) * bHigh >> 32);
}

// A positive number rounded to n significant digits: 0.d1d2...d8 · 10^(exponent + 1); the digits
// after the n-th are zero.
struct Decimal
{
  std::uint64_t digits;  // as of EightDigits
  int exponent;

  int Significant() const { return (71 - std::countl_zero(digits | 1)) >> 3; }
};

// Rounds the number with these bits, which hold no sign. False when the exact conversion is needed.
template <int n>
bool Round(std::uint64_t bits, Decimal& decimal)
{
  constexpr std::uint32_t kUnit[] = {1, 10, 100, 1000, 10000, 100000, 1000000, 10000000, 100000000};
  constexpr std::uint64_t kSlack = 5;  // error of the product: 3 by its computation, 2 by the power
  const int biased = static_cast<int>(bits >> kFractionBits);
  if (biased == 0 || biased == kExponentMask)
    return false;
  const std::uint64_t mantissa = kSignBit | bits << (63 - kFractionBits);
  const int binary = biased - kBias;
  int exponent = FloorLog10OfPower(binary);
  const PowerOfTen next = GivePowerOfTen(exponent + 1);
  exponent += ((binary == next.exponent + 63) & (mantissa >= next.mantissa)) ? 1 : 0;

  const PowerOfTen scale = GivePowerOfTen(n - 1 - exponent);
  const std::uint64_t product = UpperProduct(mantissa, scale.mantissa);
  const int point = -(binary + 1 + scale.exponent);  // bits of the product after the point
  const std::uint64_t half = std::uint64_t{1} << (point - 1);
  const std::uint64_t rest = product & (2 * half - 1);
  if (half - rest <= kSlack)
    return false;
  auto rounded = static_cast<std::uint32_t>((product + half) >> point);
  if (rounded == kUnit[n]) {
    rounded = kUnit[n - 1];
    ++exponent;
  }
  decimal = {EightDigits(rounded * kUnit[8 - n]), exponent};
  return true;
}

// Writes the digits with a point after the given number of them, without zeros at the end.
char* WriteWithPoint(char* to, const Decimal& decimal, int before)
{
  const std::uint64_t text = decimal.digits | kZeros;
  const int significant = decimal.Significant();
  StoreEight(to, text);
  StoreEight(to + before + 1, text >> 8 * before);
  to[before] = '.';
  return to + (significant <= before ? before : significant + 1);
}

char* WriteExponent(char* to, int exponent)
{
  const int size = std::abs(exponent);
  *to++ = 'e';
  *to++ = exponent < 0 ? '-' : '+';
  if (size >= 100)
    *to++ = static_cast<char>('0' + size / 100);
  *to++ = static_cast<char>('0' + size / 10 % 10);
  *to++ = static_cast<char>('0' + size % 10);
  return to;
}

char* WriteSign(char* to, std::uint64_t bits)
{
  *to = '-';
  return to + (bits >> 63);
}

char* Exactly(char* to, double number, std::chars_format format)
{
  return std::to_chars(to, to + kLongestNumber, number, format, 6).ptr;
}

}  // namespace

char* FormatInt(char* to, int number)
{
  const auto size = static_cast<std::uint32_t>(number < 0 ? -std::int64_t{number} : number);
  if (size >= 100000000)
    return std::to_chars(to, to + kLongestNumber, number).ptr;
  *to = '-';
  to += number < 0;
  const std::uint64_t digits = EightDigits(size);
  const int skipped = std::countr_zero(digits | std::uint64_t{1} << 56) / 8;
  StoreEight(to, (digits | kZeros) >> 8 * skipped);
  return to + 8 - skipped;
}

char* FormatGeneral(char* to, double number)
{
  constexpr int kDigits = 6;
  constexpr int kLowestFixed = -4;
  const auto bits = std::bit_cast<std::uint64_t>(number);
  const std::uint64_t size = bits & ~kSignBit;
  char* const first = WriteSign(to, bits);
  if (size == 0) {
    *first = '0';
    return first + 1;
  }
  Decimal decimal;
  if (!Round<kDigits>(size, decimal))
    return Exactly(to, number, std::chars_format::general);
  if (decimal.exponent < kLowestFixed || decimal.exponent >= kDigits)
    return WriteExponent(WriteWithPoint(first, decimal, 1), decimal.exponent);
  if (decimal.exponent >= 0)
    return WriteWithPoint(first, decimal, decimal.exponent + 1);
  StoreEight(first, kZeros);
  first[1] = '.';
  char* const digits = first + 1 - decimal.exponent;
  StoreEight(digits, decimal.digits | kZeros);
  return digits + decimal.Significant();
}

char* FormatScientific(char* to, double number)
{
  constexpr int kDigits = 7;
  const auto bits = std::bit_cast<std::uint64_t>(number);
  Decimal decimal;
  if (!Round<kDigits>(bits & ~kSignBit, decimal))
    return Exactly(to, number, std::chars_format::scientific);
  char* const first = WriteSign(to, bits);
  WriteWithPoint(first, decimal, 1);
  return WriteExponent(first + kDigits + 1, decimal.exponent);
}

}  // namespace morlen
