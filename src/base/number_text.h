#pragma once

#include <string_view>

#include "base/digits.h"

namespace morlen {

// Numbers in the text of records. There is one grammar for integers and one for floating-point
// numbers, both without white space in front; the point is '.' in every locale. "inf" and "nan"
// are no numbers.

/// The number that a text begins with.
template <class T>
struct Scanned
{
  const char* stop;  ///< the place after the number; null when the text begins with none
  T value;           ///< 0 when it is out of range
  bool fits = true;  ///< false when the number is too large for its type
};

/// Integer: a sign or none, then digits of the base. Base 0 takes "0x" for the beginning of a
/// hexadecimal and "0" for that of an octal number.
Scanned<int> ParseInt(const char* text, const char* end, int base);

/// Which floating-point numbers a text may hold.
enum class Radix
{
  Decimal,      ///< of "0x1p3" only the 0 is read
  DecimalOrHex  ///< "0x" begins a hexadecimal number
};

/// Floating-point number: a sign or none, digits with or without a point, and an exponent or
/// none. An exponent without digits is not part of the number. Too small a number is 0.
Scanned<double> ParseDouble(const char* text, const char* end, Radix radix);

/// Fast path of ParseInt for at most nine decimal digits after '-' or no sign; a null stop means
/// "not handled here".
inline Scanned<int> ScanPlainInt(const char* text, const char* end)
{
  constexpr int kMostDigits = 9;
  const bool negative = text != end && *text == '-';
  const char* const first = text + (negative ? 1 : 0);
  const DigitRun run = ScanDigits(first, end);
  if (run.stop == first || run.stop - first > kMostDigits)
    return {nullptr, 0};
  const int value = static_cast<int>(run.number);
  return {run.stop, negative ? -value : value};
}

/// Fast path of ParseDouble for plain decimals such as "12", "-0.5" and "1.25e-3": at most 19
/// digits whose number fits into 53 bits, and a power of ten of at most 22. A null stop means
/// "not handled here".
Scanned<double> ScanPlainDouble(const char* text, const char* end);

/// Reads an integer as scanf's "%d" (base 10) or "%i" (base 0) does, after white space. The
/// number has at most maxDigits characters, sign and prefix included; 0 sets no limit. A number
/// that does not fit into an int is none.
///
/// On success the text begins after the number; else it and v stay.
bool ScanInt(std::string_view& text, int& v, int base, int maxDigits);

/// Reads a decimal or hexadecimal number as scanf's "%lf" does, after white space. A number that
/// is not finite is none, and an exponent must be complete ("1e" is no number, "1x" is 1).
///
/// On success the text begins after the number; else it and v stay.
bool ScanDouble(std::string_view& text, double& v);

/// The number that the text begins with, as atof finds it ("1e" is 1); 0 when there is none or
/// it is not finite.
double ToDouble(std::string_view text);

}  // namespace morlen
