#include "base/number_text.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>
#include <string_view>

namespace {

const char* SkipWhite(const char* p)
{
  return p + std::strspn(p, " \t\n\v\f\r");
}

bool IsDigit(char c)
{
  return c >= '0' && c <= '9';
}

bool HasHexPrefix(const char* p)
{
  return p[0] == '0' && (p[1] == 'x' || p[1] == 'X');
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
const char* ParseDouble(const char* text, double& v)
{
  const char* p = SkipWhite(text);
  const bool negative = *p == '-';
  if (*p == '-' || *p == '+')
    ++p;
  const bool hex = HasHexPrefix(p);
  if (hex)
    p += 2;
  else if (!IsDigit(*p) && *p != '.')  // from_chars knows "inf", "nan" and "-"
    return nullptr;
  const char* end = p + std::strspn(p, hex ? "0123456789abcdefABCDEF.pP+-" : "0123456789.eE+-");
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

// Whether an exponent without digits follows the number that ends at stop.
bool HasBareExponent(const char* number, const char* stop)
{
  if (*stop == '\0' || !std::strchr("eEpP", *stop))
    return false;
  const std::string_view text(number, stop);
  const bool hex = text.find_first_of("xX") != std::string_view::npos;
  const char* letters = hex ? "pP" : "eE";
  return std::strchr(letters, *stop) && text.find_first_of(letters) == std::string_view::npos;
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
  if (end - p >= 2 && HasHexPrefix(p))
    return {p + 2, 16};
  return {p, *p == '0' ? 8 : 10};
}

}  // namespace

bool ScanDouble(const char*& p, double& v)
{
  double value = 0.0;
  const char* stop = ParseDouble(p, value);
  if (!stop || HasBareExponent(p, stop))
    return false;
  p = stop;
  v = value;
  return true;
}

bool ScanInt(const char*& p, int& v, int base, int maxDigits)
{
  const char* number = SkipWhite(p);
  const std::size_t length = std::strspn(number, "+-0123456789xXabcdefABCDEF");
  const char* end = number + (maxDigits > 0 ? std::min<std::size_t>(length, maxDigits) : length);
  const bool negative = number != end && *number == '-';
  if (number != end && (*number == '-' || *number == '+'))
    ++number;
  const Notation notation = IntNotation(number, end, base);
  std::uint32_t value = 0;
  const auto [stop, fault] = std::from_chars(notation.digits, end, value, notation.base);
  const std::uint32_t limit = std::numeric_limits<std::int32_t>::max() + (negative ? 1u : 0u);
  if (fault != std::errc() || value > limit)
    return false;
  p = stop;
  v = static_cast<int>(negative ? 0u - value : value);
  return true;
}

double ToDouble(const char* text)
{
  double value = 0.0;
  ParseDouble(text, value);
  return value;
}
