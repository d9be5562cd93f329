#pragma once

// Numbers in the text of records, read as libc reads them, except that what is not
// finite ("inf", "nan", 1e400) or does not fit into an int is no number. Whatever the
// locale, the point is '.'.

/// Reads a number as scanf's "%lf" does: white space is skipped, then comes a decimal or
/// hexadecimal number. An exponent begun must be complete ("1e" is no number, "1x" is 1).
///
/// On success p stands behind the number; else p and v stay.
bool ScanDouble(const char*& p, double& v);

/// Reads an integer as scanf's "%d" (base 10) or "%i" (base 0: "0x" begins a hexadecimal,
/// "0" an octal number) does. The number has at most maxDigits characters, sign and prefix
/// included; 0 sets no limit.
///
/// On success p stands behind the number; else p and v stay.
bool ScanInt(const char*& p, int& v, int base, int maxDigits);

/// Reads the numbers that most are, fast: "12", "-0.5", "1.25e-3". Exact, that is: what
/// ScanDouble gives, as far as a number has at most 19 digits that fit into 53 bits and a power
/// of ten up to 22 in size. The text ends at `end`, or at a null when that is null.
///
/// On success p stands behind the number; else p and v stay: the text begins with something
/// else, which may be a number all the same.
bool ScanPlainDouble(const char*& p, const char* end, double& v);

/// Likewise for integers of at most nine decimal digits.
bool ScanPlainInt(const char*& p, const char* end, int& v);

/// The number the text begins with, as atof finds it ("1e" is 1); 0 when there is none.
double ToDouble(const char* text);
