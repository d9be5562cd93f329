#include "problem/problem_file.h"

#include <algorithm>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <system_error>

#include "base/digits.h"
#include "base/text_parts.h"
#include "base/textscan.h"

namespace morlen {

namespace fs = std::filesystem;

namespace {

// Skips white space and comments, which begin with '#' and end with the line.
void SkipToWord(std::string_view& text)
{
  for (;;) {
    text.remove_prefix(std::min(text.find_first_not_of(kWhiteSpace), text.size()));
    if (!text.starts_with('#'))
      return;
    text.remove_prefix(std::min(text.find_first_of("\r\n"), text.size()));
  }
}

// Consumes a word that ends at white space, ':' or '='.
std::string_view ConsumeName(std::string_view& text)
{
  SkipToWord(text);
  const std::size_t length = std::min(text.find_first_of(" \t\r\n\v\f:="), text.size());
  const std::string_view word = text.substr(0, length);
  text.remove_prefix(length);
  return word;
}

// Consumes the signs ':' and '=' before the next word. True when there are some.
bool ConsumeDelimiters(std::string_view& text)
{
  bool any = false;
  for (SkipToWord(text); text.starts_with(':') || text.starts_with('='); SkipToWord(text)) {
    text.remove_prefix(1);
    any = true;
  }
  return any;
}

}  // namespace

bool BeginsLikeProblem(std::string_view text)
{
  text = WithoutByteOrderMark(text);
  if (!EqualsNoCase(ConsumeName(text), "problem"))
    return false;
  const bool mayHaveValue = ConsumeDelimiters(text);
  if (EqualsNoCase(ConsumeName(text), "type"))
    return true;
  return mayHaveValue && EqualsNoCase(ConsumeName(text), "type");
}

bool IsProblemFile(const std::string& name)
{
  constexpr std::uintmax_t kLongestStart = 1 << 20;
  std::error_code error;
  if (!fs::is_regular_file(name, error))
    return false;
  const std::uintmax_t size = fs::file_size(name, error);
  if (error)
    return false;
  std::string start(std::min(size, kLongestStart), '\0');
  std::ifstream file(name, std::ios::binary);
  file.read(start.data(), static_cast<std::streamsize>(start.size()));
  start.resize(static_cast<std::size_t>(file.gcount()));
  return BeginsLikeProblem(start);
}

bool IsCaseFile(std::string_view name)
{
  return name.ends_with(".cases");
}

const char* KindOfSource(const std::string& name)
{
  // The opening of a pipe, to look for a problem file, would wait for its writer.
  std::error_code absent;
  const fs::path present = fs::canonical(name, absent);
  if (absent || !fs::is_regular_file(present, absent))
    return nullptr;
  if (IsProblemFile(present))
    return "a problem file";
  return IsCaseFile(name) || IsCaseFile(present.native()) ? "a file of load cases" : nullptr;
}

}  // namespace morlen
