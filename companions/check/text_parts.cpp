#include "check/text_parts.h"

#include <algorithm>

#include "check/joined.h"

namespace morlen::check {

std::string_view Trim(std::string_view text, const char* dropped)
{
  const std::size_t first = text.find_first_not_of(dropped);
  if (first == std::string_view::npos)
    return {};
  return text.substr(first, text.find_last_not_of(dropped) - first + 1);
}

std::string_view WithoutComments(std::string_view text)
{
  for (text = Trim(text); !text.empty() && text[0] == '#';)
    text = Trim(text.substr(std::min(text.find('\n'), text.size())));
  return text;
}

std::string_view FirstLine(std::string_view text)
{
  return text.substr(0, text.find('\n'));
}

std::string_view FirstWord(std::string_view text)
{
  constexpr const char* kWhite = " \t\r\n\v\f";
  text.remove_prefix(std::min(text.find_first_not_of(kWhite), text.size()));
  return text.substr(0, text.find_first_of(kWhite));
}

std::string Quote(std::string_view text)
{
  constexpr std::size_t kLongest = 40;
  text = Trim(FirstLine(text), " \t\r");
  const bool cut = text.size() > kLongest;
  return Joined("'", text.substr(0, kLongest), cut ? "...'" : "'");
}

}  // namespace morlen::check
