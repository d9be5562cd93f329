#pragma once

#include <cstddef>

namespace morlen {

// Numbers as text, as printf writes them in the "C" locale. Each function writes into room for
// kLongestNumber characters and returns the end of the number. No null follows, and the rest of the
// room may be overwritten.

inline constexpr std::size_t kLongestNumber = 32;

/// As "%d".
char* FormatInt(char* to, int number);
/// As "%g": six significant digits, without zeros at the end.
char* FormatGeneral(char* to, double number);
/// As "%.6e": seven significant digits and an exponent.
char* FormatScientific(char* to, double number);

}  // namespace morlen
