// Explains numbers and keys that the readers take for others. A reader stops at the first
// character that cannot belong to a number, and finds a material's value by the beginning of its
// key. The guesses here undo the habits of other notations and programs; a guess is shown only
// when it is a number from end to end.

#include "check/misread.h"

#include <algorithm>
#include <cmath>
#include <iterator>

#include "base/number_text.h"
#include "base/textscan.h"
#include "check/joined.h"
#include "common/shortest.h"

namespace morlen::check {
namespace {

constexpr const char* kSeparators = ",;-";

bool IsNumber(std::string_view text, double& value)
{
  return ScanDouble(text, value) && text.empty();
}

std::string Shown(double number)
{
  std::string text;
  AppendNumber(text, number);
  return text;
}

void Erase(std::string& text, char dropped)
{
  text.erase(std::remove(text.begin(), text.end(), dropped), text.end());
}

// "2.1*10^8" and "2.1x10^8" become "2.1e8"; so does Fortran's "2.1d8".
void MendExponent(std::string& text)
{
  for (const char* power : {"*10^", "x10^", "X10^", "*10**"}) {
    if (const std::size_t at = text.find(power); at != text.npos)
      text.replace(at, std::string_view(power).size(), "e");
  }
  const std::size_t letter = text.find_first_of("dD");
  if (letter != text.npos && letter > 0)
    text[letter] = 'e';
}

// A comma is the decimal point, unless a point or a second comma shows that it groups digits.
void MendComma(std::string& text)
{
  const bool groups = text.find('.') != text.npos || std::count(text.begin(), text.end(), ',') > 1;
  if (groups)
    Erase(text, ',');
  else
    std::replace(text.begin(), text.end(), ',', '.');
}

// The number that the word was probably meant for; empty when none is found.
std::string LikelyNumber(std::string_view word)
{
  std::string text(word.substr(0, word.find_last_not_of(",;") + 1));
  Erase(text, '\'');
  Erase(text, '_');
  MendExponent(text);
  MendComma(text);
  double value = 0.0;
  return IsNumber(text, value) ? text : std::string();
}

std::string AboutWholeNumber(std::string_view word)
{
  double value = 0.0;
  int number = 0;
  std::string_view rest = word;
  ScanInt(rest, number, 10, 0);
  std::string read = Joined("'", word, "' is no whole number: read as ", number);
  if (IsNumber(word, value))
    return value == std::floor(value) ? Joined(read, "; did you mean ", Shown(value), "?") : read;
  if (word.find_first_not_of("0123456789,;-") != word.npos)
    return read;
  std::string apart(word.substr(0, word.find_last_not_of(kSeparators) + 1));
  for (char& c : apart)
    c = std::string_view(kSeparators).find(c) == std::string_view::npos ? c : ' ';
  return word.find('-') == word.npos
             ? Joined(read, "; numbers are separated by blanks: write ", apart)
             : Joined(read, "; a range is not read: write every number, separated by blanks");
}

}  // namespace

std::string AboutMisreadNumber(std::string_view word, Expected expected)
{
  double value = 0.0;
  if (expected == Expected::WholeNumber || IsNumber(word, value))
    return AboutWholeNumber(word);
  const std::string likely = LikelyNumber(word);
  return Joined("'", word, "' is no number as a whole: read as ", Shown(ToDouble(word)),
                likely.empty() ? "" : "; did you mean ", likely, likely.empty() ? "" : "?");
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

std::string_view LikelyKey(std::string_view key)
{
  static constexpr struct
  {
    std::string_view beginning, key;
  } kMeant[] = {{"It", "J"},       {"I_t", "J"},      {"Ip", "J"},      {"I_p", "J"},
                {"Itor", "J"},     {"IJ", "J"},       {"I_x", "J"},     {"I_y", "Iy"},
                {"nu_xy", "nuXY"}, {"nu_yx", "nuYX"}, {"nu12", "nuXY"}, {"nu21", "nuYX"}};
  const auto* found = std::find_if(std::begin(kMeant), std::end(kMeant), [key](const auto& meant) {
    return HasPrefix(key, meant.beginning);
  });
  return found == std::end(kMeant) ? std::string_view() : found->key;
}

}  // namespace morlen::check
