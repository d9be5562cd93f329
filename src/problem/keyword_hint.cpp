#include "problem/keyword_hint.h"

#include <algorithm>
#include <string>

#include "base/errorwriter.h"
#include "base/nearest_word.h"
#include "base/number_slip.h"
#include "base/record_hint.h"
#include "base/text_parts.h"

namespace morlen {

namespace {

// Words that other programs use, and the keyword with that meaning.
constexpr struct
{
  std::string_view word;
  std::string_view keyword;
} kOtherWords[] = {
    {"nodes", "mesh"},
    {"supports", "constraints"},
    {"restraints", "constraints"},
    {"fixities", "constraints"},
    {"boundary", "constraints"},
    {"sections", "materials"},
    {"properties", "materials"},
    {"loads", "nodal_point_loads"},
    {"nodal_loads", "nodal_point_loads"},
    {"point_loads", "nodal_point_loads"},
    {"forces", "nodal_point_loads"},
    {"hinges", "rotules"},
    {"releases", "elem_rotules"},
    {"distributed_loads", "global_pressure_loads"},
    {"beam_loads", "global_pressure_loads"},
    {"pressure_loads", "local_pressure_loads"},
    {"units", "units_names"},
    {"gravity", "GravityDirection"},
    {"divisions", "NumOfDivisions"},
};

std::string_view KeywordMeant(std::string_view word, std::span<const std::string_view> keywords)
{
  const auto* other = std::find_if(std::begin(kOtherWords), std::end(kOtherWords),
                                   [&](const auto& row) { return EqualsNoCase(word, row.word); });
  return other != std::end(kOtherWords) ? other->keyword : NearestWord(word, keywords);
}

// "; the block 'materials' in line 4 ended in line 7"; empty without a block.
std::string EndOfBlock(const TextScan& text, const TextScan::Block& block)
{
  if (block.keyword.empty() || !block.endWord)
    return {};
  return "; the block '" + std::string(block.keyword) + "' in line " +
         std::to_string(text.LineOf(block.keyword.data())) + " ended in line " +
         std::to_string(text.LineOf(block.endWord));
}

// The keyword that a word and those after it on its line are, joined by '_'; empty for none.
std::string JoinedKeyword(const TextScan& text, std::string_view word,
                          std::span<const std::string_view> keywords)
{
  std::string_view rest = text.LineAhead();
  std::string joined(word);
  for (int i = 0; i < 3; ++i) {
    joined.append("_").append(ConsumeWord(rest));
    for (const std::string_view keyword : keywords) {
      if (EqualsNoCase(joined, keyword))
        return std::string(keyword);
    }
  }
  return {};
}

}  // namespace

void ExplainUnknownKey(const TextScan& text, std::string_view word, const TextScan::Block& before,
                       std::span<const std::string_view> keywords)
{
  const std::string line = LinePrefix(text, word.data());
  const std::string_view bare = word.substr(0, word.find_first_of("=:"));
  if (BeginsForeignComment(word))
    Explain(line, "comments begin with '#'");
  else if (BeginsWithNumber(word))
    Explain(line, "a record outside of a block", EndOfBlock(text, before));
  else if (HasPrefix(word, "end"))
    Explain(line, "no block is open here", EndOfBlock(text, before));
  else if (bare.empty())
    Explain(line, "no keyword takes a value here");
  else if (bare.size() < word.size() && IsBlockKeyword(bare))
    Explain(line, "write '", bare, "' without '", word.substr(bare.size()), "'");
  else if (IsBlockKeyword(word))
    Explain(line, "'", word, "' belongs into a mesh: 'mesh dimension = ...' comes first",
            EndOfBlock(text, before));
  else if (const std::string joined = JoinedKeyword(text, bare, keywords); !joined.empty())
    Explain(line, "did you mean '", joined, "'?");
  else if (const std::string_view meant = KeywordMeant(bare, keywords); !meant.empty())
    Explain(line, "did you mean '", meant, "'?");
  else
    Explain(line, "this is no keyword; comments begin with '#'", EndOfBlock(text, before));
}

}  // namespace morlen
