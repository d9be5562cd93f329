#include "base/read_observer.h"

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

}  // namespace morlen
