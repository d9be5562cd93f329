#include "base/stprintf.h"

#include <cstdarg>
#include <string_view>

#include "base/errorwriter.h"
#include "base/interruption.h"

namespace morlen {

namespace {

void PrintTo(std::FILE* out, const char* format, std::va_list args)
{
  if (!out)
    return;
  std::vfprintf(out, format, args);
  std::fflush(out);
}

}  // namespace

void stprintf(std::ostream& out, const char* format, ...)
{
  char text[512];
  std::va_list args;
  va_start(args, format);
  std::vsnprintf(text, sizeof text, format, args);
  va_end(args);
  out << text;
}

void Progress(std::FILE* info, const char* format, ...)
{
  std::va_list args;
  va_start(args, format);
  PrintTo(info, format, args);
  va_end(args);
  CheckInterruption();
}

void Warn(std::FILE* info, const char* format, ...)
{
  constexpr std::string_view kBeginning = "warning: ";
  char text[512];
  std::va_list args;
  va_start(args, format);
  std::vsnprintf(text, sizeof text, format, args);
  va_end(args);
  std::string_view warning = text;
  if (warning.starts_with(kBeginning))
    warning.remove_prefix(kBeginning.size());
  if (warning.ends_with('\n'))
    warning.remove_suffix(1);
  errorwriter.WriteWarning(warning);
  Progress(info, "%s", text);
}

}  // namespace morlen
