#include "common/result_lines.h"

#include <algorithm>
#include <cctype>
#include <charconv>
#include <cmath>
#include <fstream>

namespace morlen::results {

void NumberLine::SkipBlanks()
{
  rest.remove_prefix(std::min(rest.find_first_not_of(" \t\r"), rest.size()));
}

template <class Number>
bool NumberLine::ReadNumber(Number& value)
{
  SkipBlanks();
  const char* end = rest.data() + rest.size();
  const auto [stop, error] = std::from_chars(rest.data(), end, value);
  if (error != std::errc() || (stop != end && *stop != ' ' && *stop != '\r'))
    return false;
  rest.remove_prefix(stop - rest.data());
  return true;
}

bool NumberLine::Read(int& value)
{
  return ReadNumber(value);
}

bool NumberLine::Read(double& value)
{
  return ReadNumber(value) && std::isfinite(value);
}

bool NumberLine::AtEnd()
{
  SkipBlanks();
  return rest.empty();
}

ResultLines::ResultLines(const std::filesystem::path& file) : name(file.string())
{
  std::ifstream in(file, std::ios::binary);
  if (!in)
    Fatal("can't open file ", name, "\n");
  char block[1 << 16];
  while (in.read(block, sizeof block), in.gcount() > 0)
    text.append(block, static_cast<std::size_t>(in.gcount()));
  if (!text.ends_with('\n'))
    Fatal(name, ": error: the file ends in the middle of a line\n");
}

bool ResultLines::Next()
{
  if (next >= text.size())
    return false;
  line = Following();
  next += line.size() + 1;
  ++number;
  return true;
}

std::string_view ResultLines::Following() const
{
  if (next >= text.size())
    return {};
  const std::size_t end = text.find('\n', next);
  return std::string_view(text).substr(next, end == std::string::npos ? end : end - next);
}

bool IsValueLine(std::string_view line)
{
  const std::size_t first = line.find_first_not_of(' ');
  return first != std::string_view::npos &&
         (line[first] == '-' || std::isdigit(static_cast<unsigned char>(line[first])));
}

}  // namespace morlen::results
