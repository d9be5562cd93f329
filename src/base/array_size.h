#pragma once

namespace morlen {

/// Returns the length of an array of `count` groups of `each` values. Fatal ("Not space available
/// on heap") when one of the two is negative, or when an int cannot hold the length.
int ArrayLength(long long count, int each);

/// Ends the run because an int cannot count the items ("Not space available on heap"). The hint
/// says so. what: the items, "entries of the matrix".
[[noreturn]] void TooManyToCount(const char* what);

}  // namespace morlen
