#include "base/record_hint.h"

#include <algorithm>

#include "base/digits.h"
#include "base/errorwriter.h"
#include "base/number_slip.h"
#include "base/text_parts.h"

namespace morlen {

namespace {

bool EndsValues(std::string_view word)
{
  return word.empty() || word[0] == '#';
}

// The number to write instead of a word that is none; empty when it is not known.
std::string Advice(std::string_view word, NumberKind kind)
{
  const auto [rule, meant] = FindNumberSlip(word, kind);
  const std::string advice = rule.empty() || meant.empty() ? rule : rule + ", ";
  return meant.empty() ? advice : advice + "write " + meant;
}

// The first fault of n values; the rest begins after the last value when there is none.
std::string FaultOfValues(std::string_view& rest, int n)
{
  for (int i = 0; i < n; ++i) {
    std::string_view tail = rest;
    const std::string_view word = ConsumeWord(tail);
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
      return Quoted(ConsumeWord(tail)) + " is no flag: " + FlagAdvice(n);
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
  std::string_view word = ConsumeWord(text);
  for (; !EndsValues(word); word = ConsumeWord(text))
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

// The flags of a record without the blanks before them. values: the text after the flags.
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
    const std::string_view face = ConsumeWord(rest);
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

}  // namespace

std::string LinePrefix(const TextScan& text, const char* place)
{
  return "line " + std::to_string(text.LineOf(place)) + ": ";
}

std::string LinePrefix(const RecordText& record)
{
  if (!record.scan || record.scan->OffsetOf(record.text.data()) < 0)
    return {};
  return LinePrefix(*record.scan, record.text.data());
}

std::string FaultOfNumber(std::string_view word, NumberKind kind)
{
  if (IsNumber(word, kind))
    return {};
  if (word.starts_with('#'))
    return "a comment begins before all numbers are there";
  const std::string advice = Advice(word, kind);
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

}  // namespace morlen
