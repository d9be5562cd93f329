#include "problem/load_blocks.h"

#include <algorithm>

#include "base/errorwriter.h"
#include "base/read_observer.h"
#include "base/record_hint.h"
#include "base/text_parts.h"
#include "base/textscan.h"
#include "problem/elem_load_reader.h"
#include "problem/keyword_hint.h"
#include "problem/nodal_reader.h"
#include "problem/problem_reader.h"
#include "problem/top_level_word.h"

namespace morlen {

namespace {

constexpr std::string_view kSettlements = "constraints";
constexpr std::string_view kNodalLoads = "nodal_point_loads";

[[noreturn]] void RefuseWord(TextScan& text, std::string_view word, const TextScan::Block& before)
{
  const std::vector<std::string_view> known = Keywords();
  const bool ofProblem = std::any_of(known.begin(), known.end(), [&](std::string_view keyword) {
    return EqualsNoCase(word, keyword);
  });
  Note(ReadEvent::UnknownKeyword, word);
  if (ofProblem) {
    Explain(LinePrefix(text, word.data()), "a load case has blocks of loads and 'constraints'; '",
            word, "' belongs in the problem file");
    Fatal("error: '", word, "' is no load\n");
  }
  ExplainUnknownKey(text, word, before, LoadKeywords());
  Fatal("Unknown key name=", word, "\n");
}

void ReadNext(TextScan& text, Problem& problem)
{
  const auto [word, before] = ReadTopLevelWord(text);
  if (word.empty())
    return;
  if (EqualsNoCase(word, kSettlements)) {
    NoteTopic(ReadTopic::Supports);
    ReadSettlements(text, problem);
  } else if (EqualsNoCase(word, kNodalLoads)) {
    NoteTopic(ReadTopic::Other);
    ReadNodalLoads(text, problem);
  } else if (!ReadElemLoad(text, word, problem)) {
    RefuseWord(text, word, before);
  }
}

}  // namespace

std::vector<std::string_view> LoadKeywords()
{
  std::vector<std::string_view> keywords = ElemLoadKeywords();
  keywords.push_back(kNodalLoads);
  keywords.push_back(kSettlements);
  return keywords;
}

void ReadLoadBlocks(TextScan& text, Problem& problem)
{
  text.GoTo(WithoutByteOrderMark(text.TextAhead()).data());
  while (!text.AtEnd())
    Attempt(&text, [&] { ReadNext(text, problem); });
}

}  // namespace morlen
