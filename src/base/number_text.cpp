#include "base/number_text.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <string_view>

namespace {

const char* SkipWhite(const char* p, const char* end)
{
  while (p != end && (*p == ' ' || (*p >= '\t' && *p <= '\r')))
    ++p;
  return p;
}

// Whether one of these letters stands at p.
bool IsAt(const char* p, const char* end, std::string_view letters)
{
  return p != end && letters.find(*p) != std::string_view::npos;
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

// The longest number that the text begins with: its end and its value; null for none.
const char* ParseDouble(const char* text, const char* textEnd, double& v)
{
  const char* p = SkipWhite(text, textEnd);
  const bool negative = IsAt(p, textEnd, "-");
  if (IsAt(p, textEnd, "+-"))
    ++p;
  const bool hex = HasHexPrefix(p, textEnd);
  if (hex)
    p += 2;
  else if (!IsAt(p, textEnd, "0123456789."))  // from_chars knows "inf", "nan" and "-"
    return nullptr;
  const char* end = SkipAmong(p, textEnd, hex ? "0123456789abcdefABCDEF.pP+-" : "0123456789.eE+-");
  if (p == end || *p == '+' || *p == '-')
    return nullptr;

  double value = 0.0;
  const auto format = hex ? std::chars_format::hex : std::chars_format::general;
  const auto [stop, fault] = std::from_chars(p, end, value, format);
  if (fault == std::errc::invalid_argument)
    return nullptr;
  if (fault == std::errc::result_out_of_range) {
    if (!IsTiny({p, stop}, hex))
      return nullptr;
    value = 0.0;
  }
  if (!std::isfinite(value))
    return nullptr;
  v = negative ? -value : value;
  return stop;
}

// The digits from p on, which moves behind them, are appended to the number; more than 19 in
// all overflow.
void AppendDigits(const char*& p, const char* end, std::uint64_t& number)
{
  for (; p != end && IsDigit(*p); ++p)
    number = 10 * number + static_cast<std::uint64_t>(*p - '0');
}

// The same for as many as decimals often are.
void AppendManyDigits(const char*& p, const char* end, std::uint64_t& number)
{
  static constexpr std::uint64_t kPowers[] = {1,      10,      100,      1000,     10000,
                                              100000, 1000000, 10000000, 100000000};
  while (end - p >= 8) {
    const DigitRun run = LeadingDigits(p);
    number = kPowers[run.count] * number + run.number;
    p += run.count;
    if (run.count < 8)
      return;
  }
  AppendDigits(p, end, number);
}

// Digits with a point among them: the number that they are without it, how many there are, and
// how many of them stand behind it.
struct PlainMantissa
{
  std::uint64_t number;
  std::ptrdiff_t digits;
  std::ptrdiff_t decimals;
};

PlainMantissa ScanPlainMantissa(const char*& p, const char* end)
{
  const char* const first = p;
  std::uint64_t number = 0;
  AppendDigits(p, end, number);
  const std::ptrdiff_t digits = p - first;
  if (p == end || *p != '.')
    return {number, digits, 0};
  const char* const point = ++p;
  AppendManyDigits(p, end, number);
  return {number, digits + (p - point), p - point};
}

// Reads "e" with its digits, if p stands there, into an exponent. False for one that is not
// complete or has more than three digits.
bool ScanPlainExponent(const char*& p, const char* end, int& exponent)
{
  if (p == end || (*p != 'e' && *p != 'E'))
    return true;
  ++p;
  const bool negative = p != end && *p == '-';
  if (p != end && (*p == '-' || *p == '+'))
    ++p;
  const char* const first = p;
  std::uint64_t size = 0;
  AppendDigits(p, end, size);
  if (p == first || p - first > 3)
    return false;
  exponent = negative ? -static_cast<int>(size) : static_cast<int>(size);
  return true;
}

// Whether a number that ended at p would go on for another reader.
bool EndsAtLetterOfNumbers(const char* p, const char* end)
{
  return p != end && (*p == 'e' || *p == 'E' || *p == 'x' || *p == 'X');
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
bool ScanPlainDouble(const char*& p, const char* end, double& v)
{
  static constexpr double kPowers[] = {1e0,  1e1,  1e2,  1e3,  1e4,  1e5,  1e6,  1e7,
                                       1e8,  1e9,  1e10, 1e11, 1e12, 1e13, 1e14, 1e15,
                                       1e16, 1e17, 1e18, 1e19, 1e20, 1e21, 1e22};
  constexpr int kLargest = 22;
  constexpr std::ptrdiff_t kMostDigits = 19;
  constexpr std::uint64_t kMantissaEnd = std::uint64_t{1} << 53;
  const char* next = p;
  const bool negative = next != end && *next == '-';
  if (negative)
    ++next;
  const PlainMantissa mantissa = ScanPlainMantissa(next, end);
  int exponent = 0;
  if (mantissa.digits == 0 || mantissa.digits > kMostDigits ||
      !ScanPlainExponent(next, end, exponent) || EndsAtLetterOfNumbers(next, end))
    return false;
  const int power = exponent - static_cast<int>(mantissa.decimals);
  if (mantissa.number > kMantissaEnd || power > kLargest || power < -kLargest)
    return false;
  const double size = static_cast<double>(static_cast<std::int64_t>(mantissa.number));
  const double value = power < 0 ? size / kPowers[-power] : size * kPowers[power];
  p = next;
  v = negative ? -value : value;
  return true;
}

bool ScanAnyPlainInt(const char*& p, const char* end, int& v)
{
  constexpr std::ptrdiff_t kMostDigits = 9;
  const char* next = p;
  const bool negative = next != end && *next == '-';
  if (negative)
    ++next;
  const char* const first = next;
  std::uint64_t size = 0;
  AppendDigits(next, end, size);
  if (next == first || next - first > kMostDigits)
    return false;
  p = next;
  v = negative ? -static_cast<int>(size) : static_cast<int>(size);
  return true;
}

bool ScanDouble(std::string_view& text, double& v)
{
  const char* const end = text.data() + text.size();
  const char* stop = SkipWhite(text.data(), end);
  double value = 0.0;
  if (!ScanPlainDouble(stop, end, value)) {
    stop = ParseDouble(text.data(), end, value);
    if (!stop || HasBareExponent(text.data(), stop, end))
      return false;
  }
  text = {stop, end};
  v = value;
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
  double value = 0.0;
  ParseDouble(text.data(), text.data() + text.size(), value);
  return value;
}
