#include "check/reader_facts.h"

#include <algorithm>
#include <iterator>

namespace morlen::check {
namespace {

constexpr ReaderFact kFacts[] = {
    {ReadEvent::NoValue, Severity::Error, Code::KeyWithoutValue, "the key ",
     " has no value and is not read. Write its value, or leave it out"},
    {ReadEvent::LoneWidth, Severity::Error, Code::LoneWidth, "",
     " gives no section without the other width. Write widthY and widthZ"},
    {ReadEvent::FreeValue, Severity::Error, Code::ValueAtFreeComponent, "the value ",
     " has no effect, as the flag of its component is 0 (free). Flag 1 prescribes a displacement, "
     "2 is a spring"},
    {ReadEvent::FaceMissing, Severity::Error, Code::FaceMissing, "the record has no face: ",
     " is read as a load over the volume. Write the face and three numbers"},
    {ReadEvent::UnitsNotFound, Severity::Error, Code::KeyLost, "the unit system of ",
     " is not found by this key. Write units"},
    {ReadEvent::WordInComment, Severity::Warning, Code::WordInComment, "",
     " is taken from a comment, as it is nowhere else"},
    {ReadEvent::GluedValue, Severity::Warning, Code::ValueGlued, "",
     " is read as flags and a value. Write a blank between them"},
};

}  // namespace

const ReaderFact* FindFact(ReadEvent event)
{
  const auto* fact = std::find_if(std::begin(kFacts), std::end(kFacts),
                                  [event](const ReaderFact& f) { return f.event == event; });
  return fact == std::end(kFacts) ? nullptr : fact;
}

}  // namespace morlen::check
