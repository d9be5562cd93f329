#include "base/textscan.h"

#include <strings.h>

#include <algorithm>
#include <cstring>
#include <functional>

#include "base/errorwriter.h"
#include "base/number_text.h"
#include "base/read_observer.h"

namespace morlen {

namespace {

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

// FindThisWord with the event for skipped text.
void FindWord(TextScan& text, const char* word, ReadEvent skipped)
{
  const char* const from = text.Here();
  for (;;) {
    const std::string_view found = text.ReadWord();
    if (text.AtEnd()) {
      Note(ReadEvent::SearchFailed, {from, text.Here()}, word);
      Fatal("can't find word ***", word, "*** in input file\n");
    }
    std::string lower(found);
    std::transform(lower.begin(), lower.end(), lower.begin(),
                   [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c; });
    if (lower.find(word) == std::string::npos)
      continue;
    Note(skipped, {from, found.data()}, word);
    Note(ReadEvent::WordPart, found, word);
    return;
  }
}

}  // namespace

bool TextScan::ReadIntSlow(int& value)
{
  const Scanned<int> number = ParseInt(next, end, 10);
  if (!number.stop)
    return false;
  // A reader that took it for a word would end its block and lose all that follows.
  if (!number.fits)
    Fatal("error: the number ", FirstDigits(next + (*next == '+' ? 1 : 0), number.stop),
          " is too large\n");
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

bool TextScan::FindDigit()
{
  next = std::find_if(next, end, IsDigit);
  return next != end;
}

int TextScan::TakeOutSpaces()
{
  while (next != end &&
         (*next == '\n' || *next == '\r' || *next == ' ' || *next == ':' || *next == '='))
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
  const char* start = begin;
  int lines = 1;
  while (const void* newline = std::memchr(start, '\n', static_cast<std::size_t>(next - start))) {
    start = static_cast<const char*>(newline) + 1;
    ++lines;
  }
  return {lines, static_cast<int>(next - start) + 1};
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

void FindThisWord(TextScan& text, const char* word)
{
  FindWord(text, word, ReadEvent::SkippedText);
}

void FindBlockEnd(TextScan& text)
{
  FindWord(text, "end", ReadEvent::SkippedToBlockEnd);
}

void FindWordAfterBlock(TextScan& text, const char* word)
{
  FindWord(text, word, ReadEvent::SkippedAfterBlock);
}

void SkipBlockEnd(TextScan& text)
{
  FindBlockEnd(text);
  text.SkipLine();
}

bool HasPrefix(std::string_view text, std::string_view prefix)
{
  return text.size() >= prefix.size() &&
         strncasecmp(text.data(), prefix.data(), prefix.size()) == 0;
}

bool EqualsNoCase(std::string_view a, std::string_view b)
{
  return a.size() == b.size() && HasPrefix(a, b);
}

std::string_view ItemScanner::Token(std::string_view skipped, std::string_view ending)
{
  const std::size_t start = rest.find_first_not_of(skipped);
  if (start == std::string_view::npos) {
    rest = {};
    return {};
  }
  const std::size_t stop = std::min(rest.find_first_of(ending, start), rest.size());
  const std::string_view token = rest.substr(start, stop - start);
  rest.remove_prefix(stop);
  return token;
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

int EulerIndex(std::string_view key)
{
  if (!HasPrefix(key, "Euler"))
    return -1;
  const char digit = key.size() > 5 ? key[5] : '\0';
  if (digit < '1' || digit > '3')
    Fatal("error: Euler angles must be: Euler1,Euler2 or Euler3\n");
  return digit - '1';
}

}  // namespace morlen
