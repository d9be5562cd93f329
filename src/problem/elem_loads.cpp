#include "problem/elem_loads.h"

#include <utility>

#include "base/errorwriter.h"
#include "base/number_text.h"
#include "base/read_observer.h"
#include "base/record_hint.h"
#include "problem/beam_span.h"

namespace morlen {

// The loop destroys the loads one by one: nested destructors of a long chain would overflow the
// stack.
BaseElemLoads::~BaseElemLoads()
{
  while (next)
    next = std::exchange(next->next, nullptr);
}

void BaseElemLoads::Append(std::unique_ptr<BaseElemLoads> load)
{
  BaseElemLoads* added = load.get();
  last->next = std::move(load);
  last = added;
}

void TemperatureLT::ReadYourLoad(int elemNumber, PROBLEMTYPE, const RecordText& record,
                                 const Units&, ElemType)
{
  std::string_view text = record.text;
  if (!ScanDouble(text, values[0]) || !ScanDouble(text, values[1])) {
    ExplainNumbers(record, {.values = 2});
    Fatal("Not reading correctly temperature_loads. ElemNum=", elemNumber, "\n");
  }
  NoteNumbers({record.text.data(), text.data()}, text);
  Note(ReadEvent::LineTail, text);
}

void TemperatureLT::AddToSpanLoad(const BeamSpan&, SpanLoad& load) const
{
  load.strain += values[0] * values[1];
}

void TemperatureLT::AddToLoadVectorTriangle(const Elem&, const Matriu&, ReaVecV&) const
{
  Fatal("temperature for triangles not implemented yet\n");
}

void TemperatureLT::AddToLoadVectorTetra(const Elem&, ReaVecV&) const
{
  Fatal("temperature for 3D solids not implemented yet\n");
}

std::unique_ptr<BaseElemLoads> TemperatureLT::Copy() const
{
  return std::make_unique<TemperatureLT>(*this);
}

ElemLoadRecord TemperatureLT::Describe() const
{
  return {"temperature_loads", std::nullopt, {values[0], values[1]}, -1};
}

}  // namespace morlen
