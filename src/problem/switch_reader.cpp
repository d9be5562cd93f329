#include "problem/switch_reader.h"

#include <algorithm>
#include <iterator>
#include <optional>

#include "base/read_observer.h"
#include "base/textscan.h"

namespace morlen {

namespace {

// True for the words that turn a switch on, false for those that turn it off, else nothing.
std::optional<bool> SwitchValue(std::string_view word)
{
  constexpr std::string_view kOff[] = {"0", "no", "false", "off"};
  constexpr std::string_view kOn[] = {"1", "yes", "true", "on"};
  const auto isWord = [word](std::string_view known) { return EqualsNoCase(word, known); };
  if (std::any_of(std::begin(kOff), std::end(kOff), isWord))
    return false;
  if (std::any_of(std::begin(kOn), std::end(kOn), isWord))
    return true;
  return {};
}

}  // namespace

bool ReadSwitch(TextScan& text, std::string_view word, std::string_view name)
{
  const std::string_view glued = word.substr(name.size());
  const bool isGlued = glued.find_first_not_of("=:") != glued.npos;
  const std::string_view line = isGlued ? glued : text.LineAhead();
  const std::size_t start = line.find_first_not_of(" \t\v\f\r=:");
  if (start == line.npos)
    return true;
  const std::string_view rest = line.substr(start);
  const std::string_view value = rest.substr(0, rest.find_first_of(" \t\v\f\r#"));
  const std::optional<bool> on = SwitchValue(value);
  if (on)
    text.GoTo(value.data() + value.size());
  else if (isGlued)
    Note(ReadEvent::Prefix, word, name);
  return on.value_or(true);
}

}  // namespace morlen
