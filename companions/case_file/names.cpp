#include "case_file/names.h"

namespace morlen::cases {

bool IsPattern(std::string_view text)
{
  return text.find_first_of("*?") != text.npos;
}

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
    } else if (p < pattern.size() && (pattern[p] == '?' || pattern[p] == name[n])) {
      ++p;
      ++n;
    } else if (star != pattern.npos) {
      p = star + 1;
      n = ++taken;
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
