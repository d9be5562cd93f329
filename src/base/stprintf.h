#pragma once

#include <cstdio>
#include <ostream>

namespace morlen {

/// Writes printf-style formatted text to the stream (at most 511 characters).
[[gnu::format(printf, 2, 3)]] void stprintf(std::ostream& out, const char* format, ...);

/// Writes a message to standard error, and as progress.
[[gnu::format(printf, 2, 3)]] void Warn(std::FILE* info, const char* format, ...);

/// Writes a progress message and flushes; does nothing without a stream.
[[gnu::format(printf, 2, 3)]] void Progress(std::FILE* info, const char* format, ...);

}  // namespace morlen
