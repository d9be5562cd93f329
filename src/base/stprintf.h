#pragma once

#include <cstdio>
#include <ostream>

namespace morlen {

/// Writes printf-style formatted text to the stream (at most 511 characters).
[[gnu::format(printf, 2, 3)]] void stprintf(std::ostream& out, const char* format, ...);

/// Writes a warning as WriteWarning does, and as progress. The text begins with "warning: " and
/// ends with a newline.
[[gnu::format(printf, 2, 3)]] void Warn(std::FILE* info, const char* format, ...);

/// Writes a progress message and flushes; nothing is written without a stream. May be the end of
/// the run: see CheckInterruption.
[[gnu::format(printf, 2, 3)]] void Progress(std::FILE* info, const char* format, ...);

}  // namespace morlen
