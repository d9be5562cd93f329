#include "base/textscan.h"

#include <strings.h>

#include <algorithm>
#include <cstring>
#include <functional>

#include "base/errorwriter.h"
#include "base/number_text.h"
#include "base/read_observer.h"
#include "base/record_hint.h"
#include "base/text_parts.h"

namespace morlen {

namespace {

constexpr std::string_view kKeyDelimiters = " \t\n\v\f\r:=";

// As much of a number as a message needs.
std::string_view FirstDigits(const char* first, const char* last)
{
  constexpr std::ptrdiff_t kMost = 30;
  return {first, static_cast<std::size_t>(std::min(last - first, kMost))};
}

constexpr bool IsBlank(char c)
{
  return c == ' ' || c == '\t';
}

}  // namespace

bool TextScan::ReadIntSlow(int& value)
{
  const Scanned<int> number = ParseInt(next, end, 10);
  if (!number.stop)
    return false;
  // A reader that took it for a word would end its block and lose all that follows.
  if (!number.fits) {
    Explain("line ", LineOf(next), ": whole numbers are at most 2147483647");
    Fatal("error: the number ", FirstDigits(next + (*next == '+' ? 1 : 0), number.stop),
          " is too large\n");
  }
  return Accept(number, value);
}

bool TextScan::ReadDoubleSlow(double& value)
{
  const Scanned<double> number = ParseDouble(next, end, Radix::Decimal);
  if (!number.stop)
    return false;
  next = number.stop;
  const bool hasBareExponent = next != end && (*next == 'e' || *next == 'E');
  if (!number.fits || hasBareExponent)
    return false;
  value = number.value;
  return true;
}

bool TextScan::ReadLastNumber(int& value)
{
  const char* const first = std::find_if_not(next, end, IsBlank);
  if (first == end || *first < '1' || *first > '9')
    return false;
  const Scanned<int> number = ScanPlainInt(first, end);
  if (!number.stop)
    return false;
  const char* const stop =
      std::find_if_not(number.stop, end, [](char c) { return IsBlank(c) || c == '\r'; });
  if ((stop != end && *stop != '\n') || stop - next > static_cast<std::ptrdiff_t>(kLimit))
    return false;
  next = stop == end ? end : stop + 1;
  value = number.value;
  return true;
}

std::string_view TextScan::ReadWord()
{
  next = SkipWhite(next, end);
  const char* word = next;
  while (next != end && !IsWhite(*next))
    ++next;
  return {word, std::min(static_cast<std::size_t>(next - word), kLimit)};
}

std::string_view TextScan::ReadRestOfLine()
{
  const char* start = next;
  SkipLine();
  const char* stop = (next != start && next[-1] == '\n') ? next - 1 : next;
  return {start, std::min(static_cast<std::size_t>(stop - start), kLimit)};
}

void TextScan::SkipRestOfLine()
{
  const void* newline = std::memchr(next, '\n', static_cast<std::size_t>(end - next));
  next = newline ? static_cast<const char*>(newline) + 1 : end;
}

int TextScan::TakeOutSpaces()
{
  while (next != end && (IsWhite(*next) || *next == ':' || *next == '='))
    ++next;
  if (next == end)
    return -1;
  if (*next != '#')
    return 0;
  ++next;
  return 1;
}

TextScan::Place TextScan::Where() const
{
  const char* start = next;
  while (start != begin && start[-1] != '\n')
    --start;
  return {LineOf(next), static_cast<int>(next - start) + 1};
}

std::string_view TextScan::WordAround(const char* place) const
{
  const char* start = place;
  while (start != begin && !IsWhite(start[-1]))
    --start;
  return {start, std::find_if(place, end, IsWhite)};
}

std::string_view TextScan::LineAhead() const
{
  return {next, std::find(next, end, '\n')};
}

std::ptrdiff_t TextScan::OffsetOf(const char* place) const
{
  const std::less_equal<> before;
  return before(begin, place) && before(place, end) ? place - begin : -1;
}

int TextScan::LineOf(const char* place) const
{
  const bool goesBack = place < lastPlace;
  const auto lines =
      goesBack ? std::count(place, lastPlace, '\n') : std::count(lastPlace, place, '\n');
  lastLine += static_cast<int>(goesBack ? -lines : lines);
  lastPlace = place;
  return lastLine;
}

void TextScan::GoTo(const char* place, bool inComment)
{
  next = place;
  commentEnd = inComment ? std::find(place, end, '\n') : begin;
}

bool HasPrefix(std::string_view text, std::string_view prefix)
{
  if (prefix.empty())
    return true;  // an empty text may have no characters to point at
  return text.size() >= prefix.size() &&
         strncasecmp(text.data(), prefix.data(), prefix.size()) == 0;
}

bool EqualsNoCase(std::string_view a, std::string_view b)
{
  return a.size() == b.size() && HasPrefix(a, b);
}

std::string_view ItemScanner::Key()
{
  SkipDelimiters();
  return rest.starts_with('#') ? std::string_view() : Cut(kKeyDelimiters);
}

std::string_view ItemScanner::Value()
{
  SkipDelimiters();
  return Cut(kWhiteSpace);
}

void ItemScanner::SkipDelimiters()
{
  rest.remove_prefix(std::min(rest.find_first_not_of(kKeyDelimiters), rest.size()));
}

std::string_view ItemScanner::Cut(std::string_view ending)
{
  const std::string_view token = rest.substr(0, rest.find_first_of(ending));
  rest.remove_prefix(token.size());
  return token;
}

std::string_view BeforeComment(std::string_view items)
{
  if (items.find('#') == std::string_view::npos)
    return items;
  ItemScanner scan(items);
  while (!scan.Key().empty())
    scan.Value();
  return items.substr(0, items.size() - scan.Rest().size());
}

double NumberOfItem(std::string_view value)
{
  NoteNumber(value);
  return ToDouble(value);
}

std::string_view UpToNull(std::string_view text)
{
  return text.substr(0, text.find('\0'));
}

int EulerIndex(const RecordText& key)
{
  if (!HasPrefix(key.text, "Euler"))
    return -1;
  const char digit = key.text.size() > 5 ? key.text[5] : '\0';
  if (digit < '1' || digit > '3') {
    Explain(LinePrefix(key), Quoted(key.text), " is given");
    Fatal("error: Euler angles must be: Euler1,Euler2 or Euler3\n");
  }
  return digit - '1';
}

}  // namespace morlen
