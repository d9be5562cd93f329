// The five blocks of element loads: records "element values items".

#include "problem/elem_load_reader.h"

#include <memory>
#include <string>

#include "base/errorwriter.h"
#include "base/textscan.h"
#include "numeric/plex_range.h"
#include "problem/elem_loads.h"
#include "problem/pressure_load.h"
#include "problem/problem.h"
#include "problem/record_items.h"

namespace morlen {

namespace {

template <PreassureLT_type type>
std::unique_ptr<BaseElemLoads> MakePressure()
{
  return std::make_unique<PreassureLT>(type);
}

std::unique_ptr<BaseElemLoads> MakeTemperature()
{
  return std::make_unique<TemperatureLT>();
}

using MakeLoad = std::unique_ptr<BaseElemLoads> (*)();

struct LoadTypeName
{
  const char* keyword;
  MakeLoad make;
};

template <PreassureLT_type type>
constexpr LoadTypeName PressureBlock()
{
  return {KeywordOf(type), MakePressure<type>};
}

constexpr LoadTypeName LoadTypeNames[] = {
    PressureBlock<PreassureLT_type::Global>(), PressureBlock<PreassureLT_type::GlobalProjected>(),
    PressureBlock<PreassureLT_type::Local>(),  PressureBlock<PreassureLT_type::Face>(),
    {"temperature_loads", MakeTemperature},
};

MakeLoad FindLoadType(std::string_view word)
{
  for (const LoadTypeName& name : LoadTypeNames) {
    if (EqualsNoCase(word, name.keyword))
      return name.make;
  }
  return nullptr;
}

void Attach(VoidPlex& elemLoads, int number, std::unique_ptr<BaseElemLoads> load)
{
  if (BaseElemLoads* chain = Find<BaseElemLoads>(elemLoads, number))
    chain->Append(std::move(load));
  else
    Store(elemLoads, number, std::move(load));
}

void ReadOneLoad(TextScan& text, int number, std::unique_ptr<BaseElemLoads> load, Problem& problem)
{
  const Elem& elem =
      RequireElem(problem, number, text, "error: trying to assign load to element number ");
  load->ReadYourLoad(number, problem.problemType, {UpToNull(text.ReadRestOfLine()), &text},
                     problem.units, elem.ElemType());
  Attach(problem.elemLoads, number, std::move(load));
  NoteStored(ReadItem::ElementLoad, number);
}

}  // namespace

std::vector<std::string_view> ElemLoadKeywords()
{
  std::vector<std::string_view> keywords;
  for (const LoadTypeName& name : LoadTypeNames)
    keywords.push_back(name.keyword);
  return keywords;
}

bool ReadElemLoad(TextScan& text, std::string_view word, Problem& problem)
{
  const MakeLoad make = FindLoadType(word);
  if (!make)
    return false;
  ReadRecords(text, [&](int number) { ReadOneLoad(text, number, make(), problem); });
  return true;
}

}  // namespace morlen
