#pragma once

#include <cstddef>
#include <string_view>

#include "base/digits.h"

// Numbers in the text of records, read as libc reads them, except that what is not
// finite ("inf", "nan", 1e400) or does not fit into an int is no number. Whatever the
// locale, the point is '.'.

/// Reads a number as scanf's "%lf" does: white space is skipped, then comes a decimal or
/// hexadecimal number. An exponent begun must be complete ("1e" is no number, "1x" is 1).
///
/// On success the text begins behind the number; else it and v stay.
bool ScanDouble(std::string_view& text, double& v);

/// Reads an integer as scanf's "%d" (base 10) or "%i" (base 0: "0x" begins a hexadecimal,
/// "0" an octal number) does. The number has at most maxDigits characters, sign and prefix
/// included; 0 sets no limit.
///
/// On success the text begins behind the number; else it and v stay.
bool ScanInt(std::string_view& text, int& v, int base, int maxDigits);

/// A number and the place behind it in the text; null when there is none.
template <class T>
struct Scanned
{
  const char* stop;
  T value;
};

/// Reads the numbers that most are, fast: "12", "-0.5", "1.25e-3". Exact, that is: what
/// ScanDouble gives, as far as a number has at most 19 digits that fit into 53 bits and a power
/// of ten up to 22 in size. The text up to `end` may begin with a number all the same when there
/// is none here.
Scanned<double> ScanPlainDouble(const char* text, const char* end);

/// Likewise for integers of at most nine decimal digits, with a sign or at the end of the text too.
Scanned<int> ScanSignedInt(const char* text, const char* end);

/// The same, in place for those that begin with a digit.
inline Scanned<int> ScanPlainInt(const char* text, const char* end)
{
  constexpr int kMostDigits = 9;
  if (end - text <= kMostDigits || !IsDigit(*text))
    return ScanSignedInt(text, end);
  unsigned number = 0;
  int digits = 0;
  for (; digits < kMostDigits && IsDigit(text[digits]); ++digits)
    number = 10 * number + static_cast<unsigned>(text[digits] - '0');
  if (IsDigit(text[digits]))
    return {nullptr, 0};
  return {text + digits, static_cast<int>(number)};
}

/// The number the text begins with, as atof finds it ("1e" is 1); 0 when there is none.
double ToDouble(std::string_view text);
