#include "base/stprintf.h"

#include <cstdarg>

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
  if (!info)
    return;
  std::va_list args;
  va_start(args, format);
  std::vfprintf(info, format, args);
  va_end(args);
  std::fflush(info);
}
