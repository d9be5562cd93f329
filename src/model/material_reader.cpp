#include <algorithm>
#include <iterator>
#include <string>
#include <string_view>

#include "base/errorwriter.h"
#include "base/read_observer.h"
#include "base/record_hint.h"
#include "base/textscan.h"
#include "model/material.h"
#include "model/material_keys.h"
#include "model/units.h"

namespace morlen {

namespace {

// Widths of a rectangular section; negative when not given.
struct Widths
{
  double y = -1.0;
  double z = -1.0;
  bool zGiven = false;
  std::string_view key = {};  // the last that gave a width
};

enum class Match
{
  kBeginning,      // the key begins with the rule's word, in any case
  kWhole,          // the key is the rule's word, in any case
  kExactBeginning  // the key begins with the rule's word, in the same case
};

// The meaning of a key: the fields or the width that its value is stored in and the powers of
// the units that the value has, or the message that refuses the key.
struct KeyRule
{
  Match match;
  std::string_view key;
  double Material::*fields[3] = {};
  int forcePower = 0;
  int lengthPower = 0;
  double Widths::*width = nullptr;
  const char* refusal = nullptr;
};

using M = Material;
using enum Match;

constexpr const char* kNoYoung = "error in materials. Young Modulus can only be E, Ex or Ey\n";
constexpr const char* kNoInertia = "error in materials. Inertia modules cannot be for X axe\n";
constexpr const char* kNoShear = "error in materials. G can be: G Gxy Gxz or Gyz\n";

// The first rule that matches applies. The value of "units" is found before the items are read.
constexpr KeyRule kRules[] = {
    {kBeginning, "units"},
    {kBeginning, "widthY", {}, 0, 1, &Widths::y},
    {kBeginning, "widthZ", {}, 0, 1, &Widths::z},
    {kBeginning, "Weight", {&M::Weight}, 1, -3},
    {kBeginning, "nuXY", {&M::nuXY}},
    {kBeginning, "nuYX", {&M::nuYX}},
    {kBeginning, "nu", {&M::nuXY, &M::nuYX}},
    {kExactBeginning, "t", {&M::t}, 0, 1},
    {kWhole, "E", {&M::E1, &M::E2}, 1, -2},
    {kExactBeginning, "Ex", {&M::E1}, 1, -2},
    {kExactBeginning, "ex", {&M::E1}, 1, -2},
    {kExactBeginning, "Ey", {&M::E2}, 1, -2},
    {kExactBeginning, "ey", {&M::E2}, 1, -2},
    {kBeginning, "E", {}, 0, 0, nullptr, kNoYoung},
    {kBeginning, "Iy", {&M::Iy}, 0, 4},
    {kBeginning, "Ix", {}, 0, 0, nullptr, kNoInertia},
    {kWhole, "Iz", {&M::Iz}, 0, 4},
    {kBeginning, "I", {&M::Iz}, 0, 4},
    {kBeginning, "Gxy", {&M::Gxy}, 1, -2},
    {kBeginning, "Gxz", {&M::Gxz}, 1, -2},
    {kBeginning, "Gyz", {&M::Gyz}, 1, -2},
    {kWhole, "G", {&M::Gxy, &M::Gxz, &M::Gyz}, 1, -2},
    {kBeginning, "G", {}, 0, 0, nullptr, kNoShear},
    {kBeginning, "J", {&M::J}, 0, 4},
    {kBeginning, "A", {&M::A}, 0, 2},
};

bool Matches(const KeyRule& rule, std::string_view key)
{
  switch (rule.match) {
    case kBeginning:
      return HasPrefix(key, rule.key);
    case kWhole:
      return EqualsNoCase(key, rule.key);
    case kExactBeginning:
      return key.starts_with(rule.key);
  }
  return false;
}

// previous: the item before the key, for the hint.
const KeyRule& RequireRule(const RecordText& word, std::string_view previous)
{
  const std::string_view key = word.text;
  const KeyRule* rule = std::find_if(std::begin(kRules), std::end(kRules),
                                     [key](const KeyRule& r) { return Matches(r, key); });
  if (rule == std::end(kRules) || rule->refusal)
    Explain(LinePrefix(word), FaultOfMaterialKey(word, previous));
  if (rule == std::end(kRules))
    Fatal("Input of materials not correct. Unknown char: '", key, "'\n");
  if (rule->refusal)
    Fatal(rule->refusal);
  if (key.size() > rule->key.size())
    Note(ReadEvent::Prefix, key, rule->key);
  return *rule;
}

Units::Ratios RatiosOfRecord(const UnitsBase* given, const Units* units)
{
  if (!units)
    return {};
  return given ? units->RatiosOf(*given) : units->DefaultRatios();
}

void SetItem(const KeyRule& rule, double value, Material& material, Widths& widths)
{
  for (double Material::*field : rule.fields) {
    if (field)
      material.Enter(field, value);
  }
  if (rule.width)
    widths.*rule.width = value;
}

}  // namespace

int Material::ReadFromAscii(TextScan& stream, const Units* units)
{
  if (!stream.ReadInt(number))
    return 0;
  NoteNumberEnd(stream.Here(), stream);
  if (number < 1)
    ExplainIndex(stream, stream.Here());
  ReadFromAsciiNoNum({stream.ReadRestOfLine(), &stream}, units);
  return 1;
}

int Material::ReadFromAsciiNoNum(const RecordText& record, const Units* units)
{
  const UnitsBase* const system = units ? units->GiveUnitsBaseFromLine(record.text) : nullptr;
  const Units::Ratios ratios = RatiosOfRecord(system, units);
  Widths widths;
  ItemsSeen seen;
  ItemScanner items(record.text);
  std::string_view previous;
  int result = -1;
  for (std::string_view key = items.Key(); !key.empty(); key = items.Key()) {
    const std::string_view valueText = items.Value();
    result = valueText.empty() ? 0 : 1;
    if (result == 0) {
      Note(ReadEvent::NoValue, key);
      break;
    }
    const std::string_view item(key.data(), valueText.data() + valueText.size());
    const bool isUnits = HasPrefix(key, "units");
    if (isUnits && units && !system)
      Note(ReadEvent::UnitsNotFound, item);
    const double value = isUnits ? 0.0 : NumberOfItem(valueText);
    if (const int angle = EulerIndex(record.Part(key)); angle >= 0) {
      eulerGiven = 1;
      Euler[angle] = value;
      seen.Add(item, key);
      continue;
    }
    const KeyRule& rule = RequireRule(record.Part(key), previous);
    previous = item;
    seen.Add(item, rule.key);
    if (rule.width)
      widths.key = key;
    widths.zGiven = widths.zGiven || rule.width == &Widths::z;
    SetItem(rule, value * ratios.Of(rule.forcePower, rule.lengthPower), *this, widths);
  }
  if ((widths.y < 0.0) != (widths.z < 0.0))
    Note(ReadEvent::LoneWidth, widths.key);
  if (widths.y > 0.0)
    CalcOtherParametersForRecSec(widths.y, widths.z);
  if (widths.y > 0.0 && !widths.zGiven)
    ForgetSection();
  return result;
}

}  // namespace morlen
