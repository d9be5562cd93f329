// Explains numbers and keys that the readers take for others. A reader stops at the first
// character that cannot belong to a number, and finds a material's value by the beginning of its
// key.

#include "check/misread.h"

#include <algorithm>
#include <iterator>

#include "base/digits.h"
#include "base/number_slip.h"
#include "base/number_text.h"
#include "base/textscan.h"
#include "check/joined.h"
#include "common/shortest.h"

namespace morlen::check {
namespace {

// The number that a reader takes from the word.
std::string NumberRead(std::string_view word, NumberKind kind)
{
  int whole = 0;
  std::string text;
  if (kind == NumberKind::kReal) {
    AppendNumber(text, ToDouble(word));
    return text;
  }
  ScanInt(word, whole, 10, 0);
  return std::to_string(whole);
}

// The number without its comma when that may separate thousands as well, as in "8,000".
std::string WithoutThousands(std::string_view word)
{
  const std::size_t comma = word.find(',');
  if (comma == word.npos || comma == 0 || comma > 3 || word[0] == '0' || word.size() != comma + 4)
    return {};
  std::string digits(word);
  digits.erase(comma, 1);
  return std::all_of(digits.begin(), digits.end(), IsDigit) ? digits : std::string();
}

}  // namespace

std::string AboutMisreadNumber(std::string_view word, NumberKind expected)
{
  const NumberKind kind = IsNumber(word, NumberKind::kReal) ? NumberKind::kWhole : expected;
  const auto [rule, meant] = FindNumberSlip(word, kind);
  const std::string read =
      Joined("'", word,
             kind == NumberKind::kWhole ? "' is no whole number: read as "
                                        : "' is no number as a whole: read as ",
             NumberRead(word, kind));
  const std::string whole = kind == NumberKind::kReal ? WithoutThousands(word) : std::string();
  if (!meant.empty())
    return Joined(read, "; did you mean ", meant, whole.empty() ? "" : " or ", whole, "?");
  return rule.empty() ? read : Joined(read, "; ", rule);
}

bool IsMaterialKey(std::string_view rule)
{
  static constexpr std::string_view kKeys[] = {
      "units", "widthY", "widthZ", "Weight", "nuXY", "nuYX", "nu",  "t", "Ex", "ex",
      "Ey",    "ey",     "Iy",     "I",      "Gxy",  "Gxz",  "Gyz", "J", "A"};
  return std::find(std::begin(kKeys), std::end(kKeys), rule) != std::end(kKeys);
}

bool MeansWhatItMatches(std::string_view key, std::string_view rule)
{
  static constexpr struct
  {
    std::string_view rule, key;
  } kSame[] = {{"A", "Area"},
               {"I", "Izz"},
               {"I", "I_z"},
               {"I", "I_zz"},
               {"I", "Inertia"},
               {"Iy", "Iyy"},
               {"J", "Jx"},
               {"J", "Jxx"},
               {"J", "Jt"},
               {"J", "J_t"},
               {"J", "J_x"},
               {"t", "thick"},
               {"t", "thickness"},
               {"Weight", "WeightDensity"},
               {"Weight", "Weight_density"},
               {"Ex", "Exx"},
               {"Ey", "Eyy"}};
  return std::any_of(std::begin(kSame), std::end(kSame), [&](const auto& same) {
    return same.rule == rule && EqualsNoCase(same.key, key);
  });
}

}  // namespace morlen::check
