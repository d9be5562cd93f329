#include "check/text_parts.h"

#include <algorithm>

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

}  // namespace morlen::check
