#include "model/material_keys.h"

#include <algorithm>
#include <iterator>

#include "base/nearest_word.h"
#include "base/record_hint.h"
#include "base/text_parts.h"
#include "base/textscan.h"

namespace morlen {

namespace {

constexpr std::string_view kKeys[] = {
    "E",  "Ex", "Ey", "nu",     "nuXY", "nuYX",   "G",      "Gxy",    "Gxz",    "Gyz",    "A",
    "Iy", "Iz", "J",  "Weight", "t",    "widthY", "widthZ", "Euler1", "Euler2", "Euler3", "units"};

struct Alias
{
  std::string_view beginning;
  std::string_view key;
};

// Words of other notations. The first beginning that fits counts.
constexpr Alias kAliases[] = {
    {"young", "E"},        {"elast", "E"},     {"modul", "E"},     {"emod", "E"},
    {"poisson", "nu"},     {"dens", "Weight"}, {"rho", "Weight"},  {"gamma", "Weight"},
    {"thick", "t"},        {"shear", "G"},     {"tors", "J"},      {"area", "A"},
    {"i_y", "Iy"},         {"iyy", "Iy"},      {"i22", "Iy"},      {"i_z", "Iz"},
    {"izz", "Iz"},         {"i33", "Iz"},      {"inertiay", "Iy"}, {"inertia_y", "Iy"},
    {"inertia", "Iz"},     {"i_t", "J"},       {"i_p", "J"},       {"i_x", "J"},
    {"ixx", "J"},          {"itor", "J"},      {"ij", "J"},        {"nu_xy", "nuXY"},
    {"nu_yx", "nuYX"},     {"nu12", "nuXY"},   {"nu21", "nuYX"},   {"width_y", "widthY"},
    {"width_z", "widthZ"},
};

// The same for whole words.
constexpr Alias kShortAliases[] = {{"It", "J"},  {"Ip", "J"}, {"Ix", "J"},
                                   {"Jx", "J"},  {"Jt", "J"}, {"v", "nu"},
                                   {"mu", "nu"}, {"I", "Iz"}, {"unit", "units"}};

bool IsUnit(std::string_view word)
{
  constexpr std::string_view kBeginnings[] = {"mm", "cm", "dm", "m2", "m3",  "m4",  "m^",
                                              "kN", "MN", "N/", "Pa", "kPa", "MPa", "GPa"};
  return EqualsNoCase(word, "m") || EqualsNoCase(word, "N") ||
         std::any_of(std::begin(kBeginnings), std::end(kBeginnings),
                     [&](std::string_view unit) { return HasPrefix(word, unit); });
}

bool BeginsLikeANumber(std::string_view word)
{
  return word.find_first_of("0123456789.+-") == 0;
}

}  // namespace

std::string_view MeantMaterialKey(std::string_view word)
{
  const auto* whole = std::find_if(std::begin(kShortAliases), std::end(kShortAliases),
                                   [&](const Alias& a) { return EqualsNoCase(word, a.beginning); });
  if (whole != std::end(kShortAliases))
    return whole->key;
  const auto* longer = std::find_if(std::begin(kAliases), std::end(kAliases),
                                    [&](const Alias& a) { return HasPrefix(word, a.beginning); });
  return longer != std::end(kAliases) ? longer->key : NearestWord(word, kKeys);
}

std::string FaultOfMaterialKey(const RecordText& word, std::string_view previous)
{
  // A number glued to the front of the first key is the number of the record.
  const NumberKind kind = previous.empty() ? NumberKind::kWhole : NumberKind::kReal;
  if (std::string fault = FaultBefore(word, kind); !fault.empty())
    return fault;
  const std::string quoted = Quoted(word.text);
  std::string noKey = quoted + " is no key of a material";
  if (const std::string_view meant = MeantMaterialKey(word.text); !meant.empty())
    return noKey + ": did you mean " + std::string(meant) + "?";
  if (word.text.find_first_of(",;") == 0)
    return "items are separated by blanks, not by " + quoted;
  if (BeginsForeignComment(word.text))
    return noKey + ": a comment begins with '#'";
  if (IsUnit(word.text))
    return noKey + ": units are not written after values, an item units=... names a unit system";
  if (!BeginsLikeANumber(word.text))
    return noKey;
  return "the number " + quoted + " is in the place of a key" +
         (previous.empty() ? std::string() : ": the item before it is " + Quoted(previous));
}

}  // namespace morlen
