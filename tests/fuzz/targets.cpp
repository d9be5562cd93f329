#include "fuzz/targets.h"

#include <sstream>
#include <string>

#include "support/text_run.h"

namespace morlen {

namespace {

// True when the text has a word that printf writes for a number that is not finite.
bool HasNoNumber(const std::string& text)
{
  std::istringstream in(text);
  for (std::string word; in >> word;) {
    for (const char* wrong : {"nan", "-nan", "inf", "-inf"}) {
      if (word == wrong)
        return true;
    }
  }
  return false;
}

// Names of units may be any word; these texts are not searched.
bool NamesNoNumber(std::string_view text)
{
  return text.find("nan") != text.npos || text.find("inf") != text.npos;
}

}  // namespace

Outcome ReadText(std::string_view text)
{
  return {RunReading(text).message};
}

Outcome AnalyseText(std::string_view text)
{
  const TextRun run = RunText(text);
  const bool finite = !HasNoNumber(run.results) && !HasNoNumber(run.postResults);
  return {run.message, finite || NamesNoNumber(text)};
}

}  // namespace morlen
