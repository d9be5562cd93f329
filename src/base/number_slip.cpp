// A word that is no number is explained by trial: common slips are mended one by one, and the first
// mended word that is a number is the one that was probably meant.

#include "base/number_slip.h"

#include <algorithm>
#include <cmath>

#include "base/digits.h"
#include "base/number_text.h"
#include "base/text_parts.h"

namespace morlen {

namespace {

std::string Replaced(std::string_view word, std::string_view from, std::string_view to)
{
  std::string result;
  for (std::size_t at = word.find(from); at != word.npos; at = word.find(from)) {
    result.append(word.substr(0, at)).append(to);
    word.remove_prefix(at + from.size());
  }
  return result.append(word);
}

// A comma at the end of a word separates.
std::string WithDecimalPoint(const std::string& word)
{
  const bool isDecimal = std::count(word.begin(), word.end(), ',') == 1 && word.back() != ',';
  return isDecimal ? Replaced(word, ",", ".") : word;
}

// "2.1d8", "2.1*10^8" and the like.
std::string WithExponent(const std::string& word)
{
  std::string mended = word;
  for (const char* sign : {"*10^", "*10**", "x10^", "X10^", "d", "D"})
    mended = Replaced(mended, sign, "e");
  return mended;
}

std::string WithBoth(const std::string& word)
{
  return WithExponent(WithDecimalPoint(word));
}

std::string WithZeros(const std::string& word)
{
  return Replaced(Replaced(word, "O", "0"), "o", "0");
}

// The minus sign and the dash of word processors, in UTF-8.
std::string WithMinus(const std::string& word)
{
  return Replaced(Replaced(word, "\xE2\x88\x92", "-"), "\xE2\x80\x93", "-");
}

bool AreThreeDigits(std::string_view text)
{
  return std::min(text.find_first_not_of("0123456789"), text.size()) == 3;
}

// "1,000,000.5", "1'000" and "1_000".
std::string WithoutGroups(const std::string& word)
{
  constexpr std::string_view kSeparators = ",'_";
  std::string digits;
  for (std::size_t i = 0; i < word.size(); ++i) {
    const bool separates = kSeparators.find(word[i]) != kSeparators.npos &&
                           AreThreeDigits(std::string_view(word).substr(i + 1));
    if (!separates)
      digits += word[i];
  }
  return digits;
}

std::string WithBlanks(const std::string& word)
{
  const std::string text = Replaced(Replaced(word, ",", " "), ";", " ");
  std::string blanks;
  std::string_view rest = text;
  for (std::string_view part = ConsumeWord(rest); !part.empty(); part = ConsumeWord(rest))
    blanks.append(blanks.empty() ? "" : " ").append(part);
  return blanks;
}

bool AreNumbers(std::string_view text, NumberKind kind)
{
  std::string_view word = ConsumeWord(text);
  if (word.empty())
    return false;
  for (; !word.empty(); word = ConsumeWord(text)) {
    if (!IsNumber(word, kind))
      return false;
  }
  return true;
}

struct Slip
{
  std::string (*mend)(const std::string&);
  const char* rule;
  bool realOnly = false;  // a comma in whole numbers separates them
};

constexpr Slip kSlips[] = {
    {WithDecimalPoint, "the decimal sign is a point", true},
    {WithExponent, "an exponent begins with e"},
    {WithBoth, "the decimal sign is a point, and an exponent begins with e"},
    {WithZeros, "it has the letter O for a zero"},
    {WithMinus, "it has a dash for a minus sign"},
    {WithoutGroups, "digits are written without separators", true},
    {WithBlanks, "numbers are separated by blanks"},
};

// The whole number that a real number is; empty when it is none.
std::string AsWhole(std::string_view word)
{
  const double value = ToDouble(word);
  const bool isWhole = value == std::floor(value) && std::fabs(value) <= 2147483647.0;
  return isWhole ? std::to_string(static_cast<long>(value)) : "";
}

bool IsRange(std::string_view word)
{
  const std::size_t dash = word.find('-', 1);
  return dash != word.npos && IsNumber(word.substr(0, dash), NumberKind::kWhole) &&
         IsNumber(word.substr(dash + 1), NumberKind::kWhole);
}

}  // namespace

bool IsNumber(std::string_view word, NumberKind kind)
{
  if (word.empty() || IsWhite(word[0]))
    return false;
  int whole = 0;
  double real = 0.0;
  return (kind == NumberKind::kWhole ? ScanInt(word, whole, 10, 0) : ScanDouble(word, real)) &&
         word.empty();
}

bool BeginsWithNumber(std::string_view text)
{
  double number = 0.0;
  return ScanDouble(text, number);
}

NumberSlip FindNumberSlip(std::string_view word, NumberKind kind)
{
  if (BeginsForeignComment(word))
    return {"a comment begins with '#'", ""};
  if (kind == NumberKind::kWhole && IsNumber(word, NumberKind::kReal))
    return {"", AsWhole(word)};
  if (IsRange(word))
    return {"a range is not known, write every number, separated by blanks", ""};
  const std::string text(word);
  for (const Slip& slip : kSlips) {
    if (slip.realOnly && kind == NumberKind::kWhole)
      continue;
    std::string mended = slip.mend(text);
    if (mended != text && AreNumbers(mended, kind))
      return {slip.rule, std::move(mended)};
  }
  if (BeginsWithNumber(word))
    return {"nothing is written after a number without a blank", ""};
  return {};
}

}  // namespace morlen
