#include "base/textscan.h"

#include <strings.h>

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdlib>
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

// The slow way for what from_chars calls out of range: strtod tells the tiny
// numbers, which count as 0 or denormal, from the infinite ones.
bool TinyNumber(const char* first, const char* last, double& value)
{
  value = std::strtod(std::string(first, last).c_str(), nullptr);
  return std::isfinite(value);
}

}  // namespace

template <class T>
bool TextScan::Read(T& value, Scanned<T> (*scanPlain)(const char*, const char*),
                    bool (TextScan::*readOther)(T&))
{
  next = SkipWhite(next, end);
  return Take(scanPlain(next, end), value) || (this->*readOther)(value);
}

bool TextScan::ReadAnyInt(int& value)
{
  return Read(value, ScanPlainInt, &TextScan::ReadOtherInt);
}

bool TextScan::ReadAnyDouble(double& value)
{
  return Read(value, ScanPlainDouble, &TextScan::ReadOtherDouble);
}

bool TextScan::ReadOtherInt(int& value)
{
  const char* digits = next;
  if (digits != end && *digits == '+')
    ++digits;
  const bool plus = digits != next;
  if (plus && (digits == end || !IsDigit(*digits)))
    return false;
  const auto [stop, fault] = std::from_chars(digits, end, value);
  // Not read as the end of a block, which would lose all that follows.
  if (fault == std::errc::result_out_of_range)
    Fatal("error: the number ", FirstDigits(digits, stop), " is too large\n");
  next = stop;
  return fault == std::errc();
}

bool TextScan::ReadOtherDouble(double& value)
{
  const char* first = next;
  if (first != end && *first == '+')
    ++first;
  const char* digits = first;
  if (digits == next && digits != end && *digits == '-')
    ++digits;
  if (digits == end || !(IsDigit(*digits) || *digits == '.'))  // not "inf", "nan"
    return false;
  const auto [stop, fault] = std::from_chars(first, end, value);
  if (fault == std::errc::invalid_argument)
    return false;
  next = stop;
  if (next != end && (*next == 'e' || *next == 'E'))  // an exponent without digits
    return false;
  return fault == std::errc() || TinyNumber(first, stop, value);
}

bool TextScan::ReadOtherLastNumber(int& value)
{
  const char* p = next;
  while (p != end && (*p == ' ' || *p == '\t'))
    ++p;
  if (p == end || *p < '1' || *p > '9')
    return false;
  const Scanned<int> number = ScanPlainInt(p, end);
  if (!number.stop)
    return false;
  p = number.stop;
  while (p != end && (*p == ' ' || *p == '\t' || *p == '\r'))
    ++p;
  if ((p != end && *p != '\n') || p - next > static_cast<std::ptrdiff_t>(kLimit))
    return false;
  next = p == end ? end : p + 1;
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
    Note(ReadEvent::SkippedText, {from, found.data()}, word);
    Note(ReadEvent::WordPart, found, word);
    return;
  }
}

void SkipBlockEnd(TextScan& text)
{
  FindThisWord(text, "end");
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
