#include "base/read_observer.h"

#include <algorithm>
#include <utility>

#include "base/digits.h"
#include "base/number_slip.h"
#include "base/record_hint.h"
#include "base/textscan.h"

namespace morlen {

constinit thread_local ReadObserver* readObserver = nullptr;

ObserverScope::ObserverScope(ReadObserver& observer)
    : previous(std::exchange(readObserver, &observer))
{
}

ObserverScope::~ObserverScope()
{
  readObserver = previous;
}

void NoteNumberEnd(const char* stop, const TextScan& text)
{
  if (!readObserver)
    return;
  const std::string_view word = text.WordAround(stop);
  if (stop != word.data() + word.size() && *stop != ':' && *stop != '=')
    Note(ReadEvent::NumberPart, word);
}

void NoteValues(const char* from, const TextScan& text, NumberKind kind)
{
  if (!readObserver)
    return;
  NoteNumberEnd(from, text);
  const std::string_view values(from, text.Here());
  if (values.find('\n') != std::string_view::npos)
    Note(ReadEvent::LineBreak, values);
  NoteNumbers(values, text.LineAhead(), kind);
}

void NoteRecordEnd(const char* from, const TextScan& text)
{
  if (!readObserver)
    return;
  NoteValues(from, text, NumberKind::kReal);
  std::string_view tail = text.LineAhead();
  if (!tail.starts_with('#'))  // the rest of the last word is noted with it
    tail.remove_prefix(std::min(tail.find_first_of(" \t\r\v\f"), tail.size()));
  Note(ReadEvent::LineTail, tail);
}

void NoteBrokenRecord(const char* from, const TextScan& text, NumberKind kind, int count)
{
  if (!readObserver)
    return;
  const std::string_view values(from, text.Here());
  const std::string_view line = values.substr(0, values.find('\n'));
  const std::string_view word = text.WordAround(text.Here());
  if (word.data() > from)  // else the number that ends at `from` is in the word
    NoteNumberEnd(from, text);
  if (text.AtEnd() || line.size() < values.size()) {
    NoteNumbers(line, {line.data() + line.size(), std::size_t{0}}, kind);
    return Note(ReadEvent::BrokenRecord, line, CountFault(line, count));
  }
  if (word.data() > from)
    NoteNumbers({from, word.data()}, {word.data(), std::size_t{0}}, kind);
  Note(ReadEvent::BrokenRecord, word, FaultOfNumber(word, kind));
}

void ItemsSeen::Add(std::string_view item, std::string_view name)
{
  if (!readObserver)
    return;
  const std::string_view key = item.substr(0, name.size());
  const auto known = std::find_if(keys.begin(), keys.end(),
                                  [&](std::string_view seen) { return EqualsNoCase(seen, key); });
  if (known != keys.end())
    Note(ReadEvent::RepeatedItem, item, *known);
  else
    keys.push_back(key);
}

void NoteNumber(std::string_view value, NumberKind kind)
{
  if (readObserver && !IsNumber(UpToNull(value), kind))
    Note(ReadEvent::NumberPart, value);
}

void NoteNumbers(std::string_view text, std::string_view after, NumberKind kind)
{
  if (!readObserver)
    return;
  const char* const end = after.data() + after.size();
  const char* const last = text.data() + text.size();
  for (const char* word = SkipWhite(text.data(), end); word < last;) {
    const char* stop = std::find_if(word, end, IsWhite);
    if (kind == NumberKind::kWhole && last < stop && (*last == ':' || *last == '='))
      stop = last;
    NoteNumber({word, stop}, kind);
    word = SkipWhite(stop, end);
  }
}

}  // namespace morlen
