// A word that is no number is explained by trial: common slips are mended, and the first mended
// word that is a number is what to write.

#include "base/record_hint.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdlib>
#include <limits>
#include <optional>

#include "base/digits.h"
#include "base/errorwriter.h"
#include "base/number_text.h"

namespace morlen {

namespace {

std::string_view NextWord(std::string_view& text)
{
  const char* const end = text.data() + text.size();
  const char* const word = SkipWhite(text.data(), end);
  const char* const stop = std::find_if(word, end, IsWhite);
  text = {stop, end};
  return {word, stop};
}

bool EndsValues(std::string_view word)
{
  return word.empty() || word[0] == '#';
}

std::string Replaced(std::string_view word, std::string_view from, std::string_view to)
{
  std::string result;
  for (std::size_t at = word.find(from); at != word.npos; at = word.find(from)) {
    result.append(word.substr(0, at)).append(to);
    word.remove_prefix(at + from.size());
  }
  return result.append(word);
}

// A comma at the end of a word separates.
std::string WithDecimalPoint(const std::string& word)
{
  const bool isDecimal = std::count(word.begin(), word.end(), ',') == 1 && word.back() != ',';
  return isDecimal ? Replaced(word, ",", ".") : word;
}

std::string WithExponent(const std::string& word)
{
  return Replaced(Replaced(word, "d", "e"), "D", "e");
}

std::string WithZeros(const std::string& word)
{
  return Replaced(Replaced(word, "O", "0"), "o", "0");
}

// The minus sign and the dash of word processors, in UTF-8.
std::string WithMinus(const std::string& word)
{
  return Replaced(Replaced(word, "\xE2\x88\x92", "-"), "\xE2\x80\x93", "-");
}

std::string WithBlanks(const std::string& word)
{
  const std::string text = Replaced(Replaced(word, ",", " "), ";", " ");
  std::string blanks;
  std::string_view rest = text;
  for (std::string_view part = NextWord(rest); !part.empty(); part = NextWord(rest))
    blanks.append(blanks.empty() ? "" : " ").append(part);
  return blanks;
}

bool AreNumbers(std::string_view text, NumberKind kind)
{
  std::string_view word = NextWord(text);
  if (word.empty())
    return false;
  for (; !word.empty(); word = NextWord(text)) {
    if (!IsNumber(word, kind))
      return false;
  }
  return true;
}

struct Slip
{
  std::string (*mend)(const std::string&);
  const char* rule;
};

constexpr Slip kDecimalComma = {WithDecimalPoint, "the decimal sign is a point"};
constexpr Slip kOtherSlips[] = {
    {WithExponent, "an exponent begins with e"},
    {[](const std::string& word) { return WithExponent(WithDecimalPoint(word)); },
     "the decimal sign is a point, and an exponent begins with e"},
    {WithZeros, "it has the letter O for a zero"},
    {WithMinus, "it has a dash for a minus sign"},
    {WithBlanks, "numbers are separated by blanks"},
};

std::string Mended(const std::string& word, const Slip& slip, NumberKind kind)
{
  const std::string mended = slip.mend(word);
  if (mended == word || !AreNumbers(mended, kind))
    return {};
  return std::string(slip.rule) + ", write " + mended;
}

// The advice for a real number in the place of a whole one.
std::string WholeAdvice(const std::string& word)
{
  const double value = ToDouble(word);
  const bool isWhole = value == std::floor(value) && std::fabs(value) <= 2147483647.0;
  return isWhole ? "write " + std::to_string(static_cast<long>(value)) : "";
}

bool IsRange(std::string_view word)
{
  const std::size_t dash = word.find('-', 1);
  return dash != word.npos && IsNumber(word.substr(0, dash), NumberKind::kWhole) &&
         IsNumber(word.substr(dash + 1), NumberKind::kWhole);
}

std::string Advice(const std::string& word, NumberKind kind)
{
  if (BeginsLikeAComment(word))
    return "a comment begins with '#'";
  if (kind == NumberKind::kWhole && IsNumber(word, NumberKind::kReal))
    return WholeAdvice(word);
  if (IsRange(word))
    return "a range is not known, write every number, separated by blanks";
  if (kind == NumberKind::kReal) {
    if (std::string advice = Mended(word, kDecimalComma, kind); !advice.empty())
      return advice;
  }
  for (const Slip& slip : kOtherSlips) {
    if (std::string advice = Mended(word, slip, kind); !advice.empty())
      return advice;
  }
  std::string_view rest = word;
  double number = 0.0;
  if (ScanDouble(rest, number))
    return "nothing is written after a number without a blank";
  return {};
}

// The first fault of n values; the rest begins after the last value when there is none.
std::string FaultOfValues(std::string_view& rest, int n)
{
  for (int i = 0; i < n; ++i) {
    std::string_view tail = rest;
    const std::string_view word = NextWord(tail);
    if (EndsValues(word))
      return {};
    if (!IsNumber(word, NumberKind::kReal))
      return FaultOfNumber(word);
    rest = tail;
  }
  return {};
}

std::string FlagAdvice(int n)
{
  return std::to_string(n) +
         " flags of one digit are expected: 0 free, 1 prescribed, 2 spring, such as " +
         std::string(static_cast<std::size_t>(n), '1');
}

// The fault of n flags; the rest begins after the last flag.
std::string FaultOfFlags(std::string_view& rest, int n)
{
  for (int i = 0; i < n; ++i) {
    rest.remove_prefix(std::min(rest.find_first_not_of(" \t\r\v\f"), rest.size()));
    if (EndsValues(rest))
      return FlagAdvice(n) + ", and then " + std::to_string(n) + " values";
    if (rest[0] < '0' || rest[0] > '2') {
      std::string_view tail = rest;
      return Quoted(NextWord(tail)) + " is no flag: " + FlagAdvice(n);
    }
    rest.remove_prefix(1);
  }
  return {};
}

std::string Content(const RecordForm& form)
{
  if (form.content)
    return form.content;
  const std::string values = std::to_string(form.values) + " values";
  if (form.flags > 0)
    return std::to_string(form.flags) + " flags and " + values;
  return form.withFace ? "the index of a face and " + values : values;
}

struct WordCount
{
  int words = 0;
  bool commented = false;  // a comment ends the count
};

WordCount CountWords(std::string_view text)
{
  WordCount count;
  std::string_view word = NextWord(text);
  for (; !EndsValues(word); word = NextWord(text))
    ++count.words;
  count.commented = !word.empty();
  return count;
}

// thing: in the singular.
std::string HowMany(std::string_view text, const std::string& thing)
{
  const auto [count, commented] = CountWords(text);
  const std::string things = count == 1 ? "only 1 " + thing + " is there"
                                        : std::to_string(count) + " " + thing + "s are there";
  return commented ? things + " before the comment" : things;
}

// The flags of a record without the blanks before them. values: what follows the flags.
std::string_view Flags(std::string_view record, std::string_view values)
{
  record.remove_prefix(record.find_first_not_of(" \t\r\v\f"));
  return record.substr(0, static_cast<std::size_t>(values.data() - record.data()));
}

std::string FaultOfRecord(const RecordText& record, const RecordForm& form)
{
  std::string_view rest = record.text;
  if (record.scan && !rest.empty() && !IsWhite(rest[0]))
    return FaultOfNumber(record.scan->WordAround(rest.data()), NumberKind::kWhole);
  if (form.flags > 0) {
    std::string fault = FaultOfFlags(rest, form.flags);
    if (!fault.empty())
      return fault;
  }
  const std::string_view values = rest;
  if (form.withFace) {
    const std::string_view face = NextWord(rest);
    if (!EndsValues(face) && !IsNumber(face, NumberKind::kWhole))
      return FaultOfNumber(face, NumberKind::kWhole) + " (the index of a face)";
  }
  std::string fault = FaultOfValues(rest, form.values);
  if (!fault.empty())
    return fault;
  const std::string count =
      Content(form) + " are expected, " + HowMany(values, form.withFace ? "number" : "value");
  return form.flags == 0 ? count : count + " after the flags " + Quoted(Flags(record.text, values));
}

char Lower(char c)
{
  return c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c;
}

// True when one inserted, left out, replaced or exchanged character makes b of a.
bool DifferByOne(std::string_view a, std::string_view b)
{
  const auto equal = [](char x, char y) { return Lower(x) == Lower(y); };
  const auto first = std::mismatch(a.begin(), a.end(), b.begin(), b.end(), equal);
  const std::string_view x(first.first, a.end());
  const std::string_view y(first.second, b.end());
  const auto same = [](std::string_view s, std::string_view t) { return EqualsNoCase(s, t); };
  if (x.empty() || y.empty())
    return x.size() + y.size() <= 1;
  if (same(x.substr(1), y.substr(1)) || same(x.substr(1), y) || same(x, y.substr(1)))
    return true;
  return x.size() > 1 && y.size() > 1 && equal(x[0], y[1]) && equal(x[1], y[0]) &&
         same(x.substr(2), y.substr(2));
}

}  // namespace

std::string LinePrefix(const RecordText& record)
{
  if (!record.scan || record.scan->OffsetOf(record.text.data()) < 0)
    return {};
  return "line " + std::to_string(record.scan->LineOf(record.text.data())) + ": ";
}

std::string Quoted(std::string_view text)
{
  constexpr std::size_t kLongest = 40;
  std::string quoted = "'";
  return quoted.append(text.substr(0, kLongest)).append(text.size() > kLongest ? "...'" : "'");
}

bool BeginsLikeAComment(std::string_view word)
{
  return word.starts_with("//") || word.find_first_of("!%$") == 0;
}

bool IsNumber(std::string_view word, NumberKind kind)
{
  if (word.empty() || IsWhite(word[0]))
    return false;
  int whole = 0;
  double real = 0.0;
  return (kind == NumberKind::kWhole ? ScanInt(word, whole, 10, 0) : ScanDouble(word, real)) &&
         word.empty();
}

std::string FaultOfNumber(std::string_view word, NumberKind kind)
{
  if (IsNumber(word, kind))
    return {};
  if (word.starts_with('#'))
    return "a comment begins before all numbers are there";
  const std::string advice = Advice(std::string(word), kind);
  return Quoted(word) +
         (kind == NumberKind::kWhole ? " is not a whole number" : " is not a number") +
         (advice.empty() ? "" : ": " + advice);
}

std::string CountFault(std::string_view text, int expected)
{
  return std::to_string(expected) + " numbers are expected, " + HowMany(text, "number");
}

void ExplainNumbers(const RecordText& record, const RecordForm& form)
{
  Explain(LinePrefix(record), FaultOfRecord(record, form));
}

std::string FaultBefore(const RecordText& key, NumberKind kind)
{
  if (!key.scan || key.scan->OffsetOf(key.text.data()) < 0)
    return {};
  const std::string_view word = key.scan->WordAround(key.text.data());
  const std::string_view before(word.data(), key.text.data());
  return IsNumber(before, NumberKind::kReal) ? FaultOfNumber(word, kind) : std::string();
}

void ExplainNoValue(const RecordText& key)
{
  std::string fault = FaultBefore(key);
  if (fault.empty())
    fault = IsNumber(key.text, NumberKind::kReal)
                ? "the number " + Quoted(key.text) + " is one too many"
                : "the key " + Quoted(key.text) + " has no value";
  Explain(LinePrefix(key), fault);
}

void ExplainIndex(const TextScan& text, const char* stop)
{
  const std::string_view word = text.WordAround(stop);
  const std::string fault = FaultOfNumber(word, NumberKind::kWhole);
  Explain(LinePrefix({word, &text}), fault.empty() ? "numbers begin with 1" : fault);
}

std::string_view NearestName(std::string_view word, std::span<const std::string_view> names)
{
  const auto nearest = std::find_if(names.begin(), names.end(), [&](std::string_view name) {
    return EqualsNoCase(word, name) || (name.size() > 2 && DifferByOne(word, name));
  });
  return nearest == names.end() ? std::string_view() : *nearest;
}

}  // namespace morlen
