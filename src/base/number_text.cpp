// Text to numbers. The library's std::from_chars converts; this file adds the signs, prefixes and
// limits of scanf. Most floating-point numbers never get there: ScanPlainDouble makes them from an
// integer and a power of ten that are both exact doubles, so that one operation rounds once, after
// W. D. Clinger, "How to read floating point numbers accurately", PLDI 1990.

#include "base/number_text.h"

#include <algorithm>
#include <bit>
#include <charconv>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <limits>

namespace morlen {

namespace {

// True when one of these characters is at p.
bool IsAt(const char* p, const char* end, std::string_view characters)
{
  return p != end &&
         std::any_of(characters.begin(), characters.end(), [=](char c) { return c == *p; });
}

const char* SkipSign(const char* p, const char* end)
{
  return p + (IsAt(p, end, "+-") ? 1 : 0);
}

bool IsHexDigit(char c)
{
  return IsDigit(c) || (c >= 'a' && c <= 'f') || (c >= 'A' && c <= 'F');
}

bool HasHexPrefix(const char* p, const char* end)
{
  return end - p >= 2 && p[0] == '0' && (p[1] == 'x' || p[1] == 'X');
}

// True when a number that from_chars finds out of range is too small, not too large: by the power
// of its first digit other than 0.
bool IsTiny(std::string_view digits, bool hex)
{
  const std::size_t exponentAt = std::min(digits.find_first_of(hex ? "pP" : "eE"), digits.size());
  const std::string_view mantissa = digits.substr(0, exponentAt);
  const std::size_t point = std::min(mantissa.find('.'), mantissa.size());
  const std::size_t leading = std::min(mantissa.find_first_not_of("0."), mantissa.size());
  const auto place = static_cast<std::int64_t>(point) - static_cast<std::int64_t>(leading);

  std::string_view exponentText = digits.substr(std::min(exponentAt + 1, digits.size()));
  if (exponentText.starts_with('+'))
    exponentText.remove_prefix(1);
  int exponent = 0;
  const char* end = exponentText.data() + exponentText.size();
  if (std::from_chars(exponentText.data(), end, exponent).ec == std::errc::result_out_of_range)
    return exponentText.starts_with('-');
  return place * (hex ? 4 : 1) + exponent < 0;
}

// The digits that eight characters begin with, and their number.
struct DigitGroup
{
  std::size_t count;
  unsigned number;
};

// Reads eight characters at once as the bytes of one word: finds the first that is no digit, then
// adds the digits up by pairs, fours and eights. The first character is the lowest byte, so the
// machine has to be little-endian. After D. Lemire, "Number parsing at a gigabyte per second",
// Software: Practice and Experience 51, 2021.
DigitGroup ScanGroup(const char* text)
{
  constexpr std::uint64_t kZeros = 0x3030303030303030;
  constexpr std::uint64_t kToHighBit = 0x7676767676767676;  // lifts a value above 9 to bit 7
  constexpr std::uint64_t kHighBits = 0x8080808080808080;
  constexpr std::uint64_t kPairs = 0x00ff00ff00ff00ff;
  constexpr std::uint64_t kFours = 0x0000ffff0000ffff;
  std::uint64_t bytes = 0;
  std::memcpy(&bytes, text, 8);
  bytes ^= kZeros;
  // A carry comes from a byte that is no digit, and only spoils the bytes after it.
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

// ScanDigits by groups of eight characters.
DigitRun ScanManyDigits(const char* text, const char* end, std::uint64_t number)
{
  static constexpr unsigned kPowers[] = {1,      10,      100,      1000,     10000,
                                         100000, 1000000, 10000000, 100000000};
  constexpr bool kHasGroups = std::endian::native == std::endian::little;
  while (kHasGroups && end - text >= 8) {
    const DigitGroup group = ScanGroup(text);
    number = kPowers[group.count] * number + group.number;
    text += group.count;
    if (group.count < 8)
      return {text, number};
  }
  return ScanDigits(text, end, number);
}

// An exponent of at most three digits; 0 when none begins at p, a null stop when it is longer or
// not complete.
Scanned<int> ScanPlainExponent(const char* p, const char* end)
{
  if (!IsAt(p, end, "eE"))
    return {p, 0};
  const bool negative = IsAt(++p, end, "-");
  p = SkipSign(p, end);
  const DigitRun run = ScanDigits(p, end);
  if (run.stop == p || run.stop - p > 3)
    return {nullptr, 0};
  return {run.stop, negative ? -static_cast<int>(run.number) : static_cast<int>(run.number)};
}

// True when an exponent without digits follows the number from `number` to `stop`.
bool HasBareExponent(const char* number, const char* stop, const char* end)
{
  const std::string_view text(number, stop);
  const std::string_view letters = text.find_first_of("xX") == text.npos ? "eE" : "pP";
  return IsAt(stop, end, letters) && text.find_first_of(letters) == text.npos;
}

// A scanned number as the result of a reader that consumes the text.
template <class T>
bool Consume(const Scanned<T>& number, std::string_view& text, T& v)
{
  text.remove_prefix(static_cast<std::size_t>(number.stop - text.data()));
  v = number.value;
  return true;
}

}  // namespace

Scanned<int> ParseInt(const char* text, const char* end, int base)
{
  const bool negative = IsAt(text, end, "-");
  const char* digits = SkipSign(text, end);
  if (base == 0) {
    const bool hex = HasHexPrefix(digits, end);
    base = hex ? 16 : IsAt(digits, end, "0") ? 8 : 10;
    digits += hex ? 2 : 0;
  }
  std::uint32_t size = 0;
  const auto [stop, fault] = std::from_chars(digits, end, size, base);
  if (fault == std::errc::invalid_argument)
    return {nullptr, 0};
  const std::uint32_t limit = std::numeric_limits<std::int32_t>::max() + (negative ? 1u : 0u);
  if (fault == std::errc::result_out_of_range || size > limit)
    return {stop, 0, false};
  return {stop, static_cast<int>(negative ? 0u - size : size)};
}

Scanned<double> ParseDouble(const char* text, const char* end, Radix radix)
{
  const bool negative = IsAt(text, end, "-");
  const char* digits = SkipSign(text, end);
  const bool hex = radix == Radix::DecimalOrHex && HasHexPrefix(digits, end);
  digits += hex ? 2 : 0;
  // from_chars also reads a second sign, "inf" and "nan".
  if (digits == end || !(*digits == '.' || (hex ? IsHexDigit(*digits) : IsDigit(*digits))))
    return {nullptr, 0.0};
  double size = 0.0;
  const auto format = hex ? std::chars_format::hex : std::chars_format::general;
  const auto [stop, fault] = std::from_chars(digits, end, size, format);
  if (fault == std::errc::invalid_argument)
    return {nullptr, 0.0};
  if (fault == std::errc::result_out_of_range) {
    if (!IsTiny({digits, stop}, hex))
      return {stop, 0.0, false};
    size = 0.0;
  }
  return {stop, negative ? -size : size};
}

Scanned<double> ScanPlainDouble(const char* text, const char* end)
{
  static constexpr double kPowers[] = {1e0,  1e1,  1e2,  1e3,  1e4,  1e5,  1e6,  1e7,
                                       1e8,  1e9,  1e10, 1e11, 1e12, 1e13, 1e14, 1e15,
                                       1e16, 1e17, 1e18, 1e19, 1e20, 1e21, 1e22};
  constexpr int kLargest = 22;
  constexpr std::ptrdiff_t kMostDigits = 19;
  constexpr std::uint64_t kMantissaEnd = std::uint64_t{1} << 53;
  const bool negative = text != end && *text == '-';
  const char* const first = text + (negative ? 1 : 0);
  DigitRun run = ScanDigits(first, end);
  std::ptrdiff_t digits = run.stop - first;
  std::ptrdiff_t power = 0;
  if (run.stop != end && *run.stop == '.') {
    const char* const decimals = run.stop + 1;
    run = ScanManyDigits(decimals, end, run.number);
    power = decimals - run.stop;
    digits -= power;
  }
  if (run.stop != end && *run.stop > ' ') {
    const Scanned<int> exponent = ScanPlainExponent(run.stop, end);
    if (!exponent.stop || IsAt(exponent.stop, end, "eExX"))  // the full grammar may read on
      return {nullptr, 0.0};
    run.stop = exponent.stop;
    power += exponent.value;
  }
  if (digits == 0 || digits > kMostDigits || run.number > kMantissaEnd ||
      std::abs(power) > kLargest)
    return {nullptr, 0.0};
  const auto mantissa = static_cast<double>(static_cast<std::int64_t>(run.number));
  const double size = power < 0 ? mantissa / kPowers[-power] : mantissa * kPowers[power];
  return {run.stop, negative ? -size : size};
}

bool ScanInt(std::string_view& text, int& v, int base, int maxDigits)
{
  const char* const end = text.data() + text.size();
  const char* const first = SkipWhite(text.data(), end);
  const bool isLimited = maxDigits > 0 && maxDigits < end - first;
  const Scanned<int> number = ParseInt(first, isLimited ? first + maxDigits : end, base);
  return number.stop && number.fits && Consume(number, text, v);
}

bool ScanDouble(std::string_view& text, double& v)
{
  const char* const end = text.data() + text.size();
  const char* const first = SkipWhite(text.data(), end);
  const Scanned<double> plain = ScanPlainDouble(first, end);
  if (plain.stop)
    return Consume(plain, text, v);
  const Scanned<double> number = ParseDouble(first, end, Radix::DecimalOrHex);
  return number.stop && number.fits && !HasBareExponent(first, number.stop, end) &&
         Consume(number, text, v);
}

double ToDouble(std::string_view text)
{
  const char* const end = text.data() + text.size();
  return ParseDouble(SkipWhite(text.data(), end), end, Radix::DecimalOrHex).value;
}

}  // namespace morlen
