#include "base/number_text.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <string_view>

namespace morlen {

namespace {

// Whether one of these letters stands at p.
bool IsAt(const char* p, const char* end, std::string_view letters)
{
  return p != end && std::any_of(letters.begin(), letters.end(), [p](char c) { return c == *p; });
}

bool HasHexPrefix(const char* p, const char* end)
{
  return end - p >= 2 && p[0] == '0' && (p[1] == 'x' || p[1] == 'X');
}

// Behind all characters from p on that are among these.
const char* SkipAmong(const char* p, const char* end, std::string_view characters)
{
  return std::find_if(p, end, [&](char c) { return characters.find(c) == characters.npos; });
}

// Whether a number that from_chars finds out of range is too small, not too large: by the
// place of its first digit that counts, with the exponent.
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

// The longest number that the text begins with.
Scanned<double> ParseDouble(const char* text, const char* textEnd)
{
  constexpr Scanned<double> kNone = {nullptr, 0.0};
  const char* p = text;
  const bool negative = IsAt(p, textEnd, "-");
  if (IsAt(p, textEnd, "+-"))
    ++p;
  const bool hex = HasHexPrefix(p, textEnd);
  if (hex)
    p += 2;
  else if (!IsAt(p, textEnd, "0123456789."))  // from_chars knows "inf", "nan" and "-"
    return kNone;
  const char* end = SkipAmong(p, textEnd, hex ? "0123456789abcdefABCDEF.pP+-" : "0123456789.eE+-");
  if (p == end || *p == '+' || *p == '-')
    return kNone;

  double value = 0.0;
  const auto format = hex ? std::chars_format::hex : std::chars_format::general;
  const auto [stop, fault] = std::from_chars(p, end, value, format);
  if (fault == std::errc::invalid_argument)
    return kNone;
  if (fault == std::errc::result_out_of_range) {
    if (!IsTiny({p, stop}, hex))
      return kNone;
    value = 0.0;
  }
  if (!std::isfinite(value))
    return kNone;
  return {stop, negative ? -value : value};
}

// The same with eight at a time as long as there are so many.
DigitRun ScanManyDigits(const char* text, const char* end, std::uint64_t number)
{
  static constexpr std::uint64_t kPowers[] = {1,      10,      100,      1000,     10000,
                                              100000, 1000000, 10000000, 100000000};
  while (kScansGroups && end - text >= 8) {
    const DigitGroup group = ScanGroup(text);
    number = kPowers[group.count] * number + group.number;
    text += group.count;
    if (group.count < 8)
      return {text, number};
  }
  return ScanDigits(text, end, number);
}

// "e" with its digits, if p stands there. None when they are not complete or more than three.
Scanned<int> ScanPlainExponent(const char* p, const char* end)
{
  if (!IsAt(p, end, "eE"))
    return {p, 0};
  ++p;
  const bool negative = IsAt(p, end, "-");
  if (IsAt(p, end, "+-"))
    ++p;
  const DigitRun run = ScanDigits(p, end);
  if (run.stop == p || run.stop - p > 3)
    return {nullptr, 0};
  return {run.stop, negative ? -static_cast<int>(run.number) : static_cast<int>(run.number)};
}

// Whether an exponent without digits follows the number that ends at stop.
bool HasBareExponent(const char* number, const char* stop, const char* end)
{
  if (!IsAt(stop, end, "eEpP"))
    return false;
  const std::string_view text(number, stop);
  const bool hex = text.find_first_of("xX") != std::string_view::npos;
  const std::string_view letters = hex ? "pP" : "eE";
  return IsAt(stop, end, letters) && text.find_first_of(letters) == std::string_view::npos;
}

// Digits of a number in some base, and its base.
struct Notation
{
  const char* digits;
  int base;
};

Notation IntNotation(const char* p, const char* end, int base)
{
  if (base != 0)
    return {p, base};
  if (HasHexPrefix(p, end))
    return {p + 2, 16};
  return {p, IsAt(p, end, "0") ? 8 : 10};
}

}  // namespace

// Mantissa and power of ten are exact doubles, so that the one operation on them rounds once:
// W. D. Clinger, How to read floating point numbers accurately, PLDI 1990.
Scanned<double> ScanPlainFraction(const char* text, DigitRun whole, const char* end)
{
  static constexpr double kPowers[] = {1e0,  1e1,  1e2,  1e3,  1e4,  1e5,  1e6,  1e7,
                                       1e8,  1e9,  1e10, 1e11, 1e12, 1e13, 1e14, 1e15,
                                       1e16, 1e17, 1e18, 1e19, 1e20, 1e21, 1e22};
  constexpr int kLargest = 22;
  constexpr std::ptrdiff_t kMostDigits = 19;
  constexpr std::uint64_t kMantissaEnd = std::uint64_t{1} << 53;
  const bool hasPoint = whole.stop != end && *whole.stop == '.';
  const char* const decimals = whole.stop + (hasPoint ? 1 : 0);
  const DigitRun all = hasPoint ? ScanManyDigits(decimals, end, whole.number) : whole;
  const std::ptrdiff_t digits = (whole.stop - text) + (all.stop - decimals);
  const char* stop = all.stop;
  int power = static_cast<int>(decimals - stop);
  if (stop != end && *stop > ' ') {
    const Scanned<int> exponent = ScanPlainExponent(stop, end);
    if (!exponent.stop || IsAt(exponent.stop, end, "eExX"))  // would go on for another reader
      return {nullptr, 0.0};
    stop = exponent.stop;
    power += exponent.value;
  }
  if (digits == 0 || digits > kMostDigits || all.number > kMantissaEnd || power > kLargest ||
      power < -kLargest)
    return {nullptr, 0.0};
  const auto mantissa = static_cast<double>(static_cast<std::int64_t>(all.number));
  return {stop, power < 0 ? mantissa / kPowers[-power] : mantissa * kPowers[power]};
}

Scanned<int> ScanPlainInt(const char* text, const char* end)
{
  constexpr std::ptrdiff_t kMostDigits = 9;
  const bool negative = IsAt(text, end, "-");
  const char* const first = text + (negative ? 1 : 0);
  const DigitRun run = ScanDigits(first, end);
  if (run.stop == first || run.stop - first > kMostDigits)
    return {nullptr, 0};
  return {run.stop, negative ? -static_cast<int>(run.number) : static_cast<int>(run.number)};
}

bool ScanAnyDouble(std::string_view& text, double& v)
{
  const char* const end = text.data() + text.size();
  const char* const number = SkipWhite(text.data(), end);
  if (number == end)
    return false;
  Scanned<double> scanned = ScanPlainDouble(number, end);
  if (!scanned.stop) {
    scanned = ParseDouble(number, end);
    if (!scanned.stop || HasBareExponent(number, scanned.stop, end))
      return false;
  }
  text = {scanned.stop, end};
  v = scanned.value;
  return true;
}

bool ScanInt(std::string_view& text, int& v, int base, int maxDigits)
{
  const char* const textEnd = text.data() + text.size();
  const char* number = SkipWhite(text.data(), textEnd);
  const char* end = SkipAmong(number, textEnd, "+-0123456789xXabcdefABCDEF");
  if (maxDigits > 0)
    end = number + std::min<std::ptrdiff_t>(maxDigits, end - number);
  const bool negative = IsAt(number, end, "-");
  if (IsAt(number, end, "+-"))
    ++number;
  const Notation notation = IntNotation(number, end, base);
  std::uint32_t value = 0;
  const auto [stop, fault] = std::from_chars(notation.digits, end, value, notation.base);
  const std::uint32_t limit = std::numeric_limits<std::int32_t>::max() + (negative ? 1u : 0u);
  if (fault != std::errc() || value > limit)
    return false;
  text = {stop, textEnd};
  v = static_cast<int>(negative ? 0u - value : value);
  return true;
}

double ToDouble(std::string_view text)
{
  const char* const end = text.data() + text.size();
  return ParseDouble(SkipWhite(text.data(), end), end).value;
}

}  // namespace morlen
