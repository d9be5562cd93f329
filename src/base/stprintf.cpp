#include "base/stprintf.h"

#include <cstdarg>

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
}

void Warn(std::FILE* info, const char* format, ...)
{
  for (std::FILE* out : {stderr, info}) {
    std::va_list args;
    va_start(args, format);
    PrintTo(out, format, args);
    va_end(args);
  }
}

}  // namespace morlen
