#include "base/text_parts.h"

#include <algorithm>

#include "base/digits.h"

namespace morlen {

std::string_view FirstLine(std::string_view text)
{
  return text.substr(0, text.find('\n'));
}

std::string_view FirstWord(std::string_view text)
{
  return ConsumeWord(text);
}

std::string_view ConsumeWord(std::string_view& text)
{
  const char* const end = text.data() + text.size();
  const char* const word = SkipWhite(text.data(), end);
  const char* const stop = std::find_if(word, end, IsWhite);
  text = {stop, end};
  return {word, stop};
}

std::string Quoted(std::string_view text)
{
  constexpr std::size_t kLongest = 40;
  text = FirstLine(text);
  text.remove_prefix(std::min(text.find_first_not_of(kWhiteSpace), text.size()));
  text = text.substr(0, text.find_last_not_of(kWhiteSpace) + 1);
  std::string quoted = "'";
  quoted += text.substr(0, kLongest);
  std::replace(quoted.begin(), quoted.end(), '\t', ' ');
  std::replace_if(
      quoted.begin(), quoted.end(), [](char c) { return c >= '\0' && c < ' '; }, '?');
  return quoted += text.size() > kLongest ? "...'" : "'";
}

bool BeginsForeignComment(std::string_view word)
{
  if (word.starts_with("//") || word.starts_with("--") || word.starts_with("/*"))
    return true;
  return word.find_first_of("!;%$*'\"") == 0;
}

std::string_view WithoutByteOrderMark(std::string_view text)
{
  constexpr std::string_view kMark = "\xef\xbb\xbf";
  return text.substr(text.starts_with(kMark) ? kMark.size() : 0);
}

}  // namespace morlen
