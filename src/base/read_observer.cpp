#include "base/read_observer.h"

#include <algorithm>
#include <utility>

#include "base/number_text.h"
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

void NoteRecordEnd(const char* from, const TextScan& text)
{
  if (!readObserver)
    return;
  const std::string_view values(from, text.Here());
  if (values.find('\n') != std::string_view::npos)
    Note(ReadEvent::LineBreak, values);
  NoteNumbers(values, text.LineAhead());
  Note(ReadEvent::LineTail, text.LineAhead());
}

void NoteNumber(std::string_view value)
{
  if (!readObserver)
    return;
  std::string_view rest = UpToNull(value);
  double number = 0.0;
  if (!ScanDouble(rest, number) || !rest.empty())
    Note(ReadEvent::NumberPart, value);
}

void NoteNumbers(std::string_view text, std::string_view after)
{
  if (!readObserver)
    return;
  const char* const end = after.data() + after.size();
  for (const char* word = SkipWhite(text.data(), end); word < text.data() + text.size();) {
    const char* const stop = std::find_if(word, end, IsWhite);
    NoteNumber({word, stop});
    word = SkipWhite(stop, end);
  }
}

}  // namespace morlen
