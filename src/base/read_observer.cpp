#include "base/read_observer.h"

#include <string>

#include "base/number_text.h"
#include "base/textscan.h"

ReadObserver* readObserver = nullptr;

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
  const std::string copy(value);
  const char* p = copy.c_str();
  double number = 0.0;
  if (!ScanDouble(p, number) || *p)
    Note(ReadEvent::NumberPart, value);
}
