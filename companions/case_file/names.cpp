#include "case_file/names.h"

namespace morlen::cases {

bool IsPattern(std::string_view text)
{
  return text.find_first_of("*?") != text.npos;
}

namespace {

/// The place after the character (UTF-8) that begins at a place.
std::size_t AfterCharacter(std::string_view text, std::size_t place)
{
  const auto continues = [](char c) { return (static_cast<unsigned char>(c) & 0xC0U) == 0x80U; };
  for (++place; place < text.size() && continues(text[place]);)
    ++place;
  return place;
}

}  // namespace

// After a mismatch the last '*' takes one character more.
bool Matches(std::string_view pattern, std::string_view name)
{
  std::size_t p = 0;
  std::size_t n = 0;
  std::size_t star = pattern.npos;
  std::size_t taken = 0;
  while (n < name.size()) {
    if (p < pattern.size() && pattern[p] == '*') {
      star = p++;
      taken = n;
    } else if (p < pattern.size() && pattern[p] == '?') {
      ++p;
      n = AfterCharacter(name, n);
    } else if (p < pattern.size() && pattern[p] == name[n]) {
      ++p;
      ++n;
    } else if (star != pattern.npos) {
      p = star + 1;
      n = taken = AfterCharacter(name, taken);
    } else {
      return false;
    }
  }
  return pattern.find_first_not_of('*', p) == pattern.npos;
}

std::string FileNameOf(std::string_view name)
{
  constexpr std::string_view kKept =
      "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789._-";
  std::string file(name);
  for (char& c : file) {
    if (kKept.find(c) == kKept.npos)
      c = '_';
  }
  return file;
}

}  // namespace morlen::cases
