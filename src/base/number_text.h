#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

#include "base/digits.h"

namespace morlen {

// Numbers in the text of records, read as libc reads them, except that what is not
// finite ("inf", "nan", 1e400) or does not fit into an int is no number. Whatever the
// locale, the point is '.'.

/// A number and the place behind it in the text; null when there is none.
template <class T>
struct Scanned
{
  const char* stop;
  T value;
};

/// Reads an integer as scanf's "%d" (base 10) or "%i" (base 0: "0x" begins a hexadecimal,
/// "0" an octal number) does. The number has at most maxDigits characters, sign and prefix
/// included; 0 sets no limit.
///
/// On success the text begins behind the number; else it and v stay.
bool ScanInt(std::string_view& text, int& v, int base, int maxDigits);

/// What ScanPlainDouble gives for a number without a sign that begins with these digits; there
/// may be none.
Scanned<double> ScanPlainFraction(const char* text, DigitRun whole, const char* end);

/// Reads the numbers that most are, fast: "12", "-0.5", "1.25e-3". Exact, that is: what
/// ScanDouble gives, as far as a number has at most 19 digits that fit into 53 bits and a power
/// of ten up to 22 in size. The text up to `end` may begin with a number all the same when there
/// is none here.
inline Scanned<double> ScanPlainDouble(const char* text, const char* end)
{
  constexpr std::ptrdiff_t kExactDigits = 15;
  const bool negative = text != end && *text == '-';
  const char* const first = text + (negative ? 1 : 0);
  const DigitRun whole = ScanDigits(first, end);
  Scanned<double> number = {whole.stop,
                            static_cast<double>(static_cast<std::int64_t>(whole.number))};
  if (whole.stop == end || *whole.stop > ' ' || whole.stop == first ||
      whole.stop - first > kExactDigits)
    number = ScanPlainFraction(first, whole, end);
  return {number.stop, negative ? -number.value : number.value};
}

/// Likewise for integers of at most nine decimal digits, with a sign too.
Scanned<int> ScanPlainInt(const char* text, const char* end);

/// Integers of less than eight digits, behind a blank perhaps, when some character follows; no
/// other, and no sign.
inline Scanned<int> ScanShortInt(const char* text, const char* end)
{
  constexpr std::ptrdiff_t kBlankAndGroup = 9;
  if (!kScansGroups || end - text < kBlankAndGroup)
    return {nullptr, 0};
  text += *text == ' ' ? 1 : 0;
  const DigitGroup group = ScanGroup(text);
  if (group.count == 0 || group.count == 8)
    return {nullptr, 0};
  return {text + group.count, static_cast<int>(group.number)};
}

/// A single digit behind a blank, and behind it another, a control character, one beyond ASCII
/// or the end: what most numbers of loads are.
inline Scanned<double> ScanDigitBetweenBlanks(const char* text, const char* end)
{
  const std::ptrdiff_t length = end - text;
  if (length < 2 || text[0] != ' ' || !IsDigit(text[1]) || (length > 2 && text[2] > ' '))
    return {nullptr, 0.0};
  return {text + 2, static_cast<double>(text[1] - '0')};
}

/// ScanDouble for all that ScanDigitBetweenBlanks does not read.
bool ScanAnyDouble(std::string_view& text, double& v);

/// Reads a number as scanf's "%lf" does: white space is skipped, then comes a decimal or
/// hexadecimal number. An exponent begun must be complete ("1e" is no number, "1x" is 1).
///
/// On success the text begins behind the number; else it and v stay.
inline bool ScanDouble(std::string_view& text, double& v)
{
  const char* const end = text.data() + text.size();
  const Scanned<double> number = ScanDigitBetweenBlanks(text.data(), end);
  if (!number.stop)
    return ScanAnyDouble(text, v);
  text = {number.stop, end};
  v = number.value;
  return true;
}

/// The number the text begins with, as atof finds it ("1e" is 1); 0 when there is none.
double ToDouble(std::string_view text);

}  // namespace morlen
