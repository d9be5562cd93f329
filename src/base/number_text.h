#pragma once

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

/// Reads the numbers that most are, fast: "12", "-0.5", "1.25e-3". Exact, that is: what
/// ScanDouble gives, as far as a number has at most 19 digits that fit into 53 bits and a power
/// of ten up to 22 in size.
///
/// On success p stands behind the number; else p and v stay: the text up to `end` begins with
/// something else, which may be a number all the same.
bool ScanPlainDouble(const char*& p, const char* end, double& v);

/// Likewise for integers of at most nine decimal digits; any of them, at the end of the text too.
bool ScanAnyPlainInt(const char*& p, const char* end, int& v);

/// The same, in place for short numbers that do not end the text.
inline bool ScanPlainInt(const char*& p, const char* end, int& v)
{
  if (end - p <= 8)
    return ScanAnyPlainInt(p, end, v);
  const bool negative = *p == '-';
  const char* const first = p + (negative ? 1 : 0);
  const DigitRun run = LeadingDigits(first);
  if (run.count == 0 || run.count == 8)
    return ScanAnyPlainInt(p, end, v);
  p = first + run.count;
  v = negative ? -static_cast<int>(run.number) : static_cast<int>(run.number);
  return true;
}

/// The number the text begins with, as atof finds it ("1e" is 1); 0 when there is none.
double ToDouble(std::string_view text);
