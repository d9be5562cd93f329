#pragma once

#include "base/read_observer.h"
#include "check/findings.h"

namespace morlen::check {

/// The finding for an event of the readers that is always judged in the same way. The message is
/// the text of the event's place, in quotes, between two other texts.
struct ReaderFact
{
  ReadEvent event;
  Severity severity;
  Code code;
  const char* before;
  const char* after;
};

/// The finding for an event; null for events that need more.
const ReaderFact* FindFact(ReadEvent event);

}  // namespace morlen::check
