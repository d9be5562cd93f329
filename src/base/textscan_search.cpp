// Searches for a word or a digit of the problem file.
//
// A search goes over the words once. It keeps the first match in a comment and ends at the first
// match outside comments, which it takes. After a match in a comment it also ends at the first
// word that begins another part of the file (the keyword of a block, or "end"): then only the
// comment has the word. Every search ends at or before the keyword of the next block, unless it
// fails, so that all searches of a file together read it at most twice.

#include <algorithm>
#include <array>
#include <string>
#include <vector>

#include "base/digits.h"
#include "base/errorwriter.h"
#include "base/read_observer.h"
#include "base/text_parts.h"
#include "base/textscan.h"

namespace morlen {

namespace {

constexpr std::array<std::string_view, 14> kBlockKeywords = {"mesh",
                                                             "coordinates",
                                                             "elements",
                                                             "units_names",
                                                             "materials",
                                                             "constraints",
                                                             "nodal_point_loads",
                                                             "rotules",
                                                             "elem_rotules",
                                                             "local_pressure_loads",
                                                             "global_pressure_loads",
                                                             "global_projected_pressure_loads",
                                                             "face_loads",
                                                             "temperature_loads"};

// Calls visit(word, inComment) for each word of the text, until it returns false. commentEnd: the
// end of a comment in which the text begins.
template <class Visit>
void ForEachWord(std::string_view text, const char* commentEnd, Visit visit)
{
  const char* const end = text.data() + text.size();
  for (const char* word = SkipWhite(text.data(), end); word != end;) {
    if (*word == '#' && word >= commentEnd)
      commentEnd = std::find(word, end, '\n');
    const char* const stop = std::find_if(word, end, IsWhite);
    if (!visit(std::string_view(word, stop), word < commentEnd))
      return;
    word = SkipWhite(stop, end);
  }
}

struct Match
{
  std::string_view word = {};   ///< of the text
  const char* place = nullptr;  ///< of the match in it; null without a match
  bool inComment = false;
};

bool BeginsAnotherPart(std::string_view word)
{
  return HasPrefix(word, "end") || IsBlockKeyword(word);
}

// find(word): the place of the match in a word, or null. ends(word): whether a match in a comment
// is taken when this word follows it.
template <class Find, class Ends>
Match Search(std::string_view text, const char* commentEnd, Find find, Ends ends)
{
  Match inside;
  Match outside;
  ForEachWord(text, commentEnd, [&](std::string_view word, bool inComment) {
    if (inside.place && (inComment || ends(word)))
      return inComment;
    if (const char* const place = find(word))
      (inComment ? inside : outside) = {word, place, inComment};
    return !outside.place;
  });
  return outside.place ? outside : inside;
}

// The place of a word (lower case) in a word of the text, whose characters beyond the limit do not
// count; null when it is not there.
const char* PlaceIn(std::string_view found, std::string_view word)
{
  found = found.substr(0, TextScan::kLimit);
  const auto place = std::search(found.begin(), found.end(), word.begin(), word.end(),
                                 [](char c, char lower) { return ToLower(c) == lower; });
  return place == found.end() ? nullptr : found.data() + (place - found.begin());
}

Match SearchFor(const TextScan& text, std::string_view word)
{
  const char* const end = text.WholeText().data() + text.WholeText().size();
  const auto find = [&](std::string_view found) {
    return found.data() + found.size() == end ? nullptr : PlaceIn(found, word);
  };
  return Search(text.TextAhead(), text.CommentEnd(), find,
                [&](std::string_view found) { return BeginsAnotherPart(found) && !find(found); });
}

// The word of a match, without a value that is glued to it.
std::string_view WithoutValue(const Match& match, std::size_t length, IsValue isValue)
{
  const char* const stop = match.place + length;
  const std::string_view rest(stop, match.word.data() + match.word.size());
  const std::size_t value = rest.find_first_not_of("=:");
  const bool glued = isValue && value != 0 && value != rest.npos && isValue(rest.substr(value));
  return glued ? std::string_view(match.word.data(), stop) : match.word;
}

// Text that a search has passed over, without blanks and comments.
struct Skipped
{
  std::string_view first;  ///< its first word; empty when nothing is skipped
  const char* last = nullptr;
  int lines = 0;                         ///< that have a word
  std::vector<std::string_view> blocks;  ///< keywords at the beginning of a line
};

Skipped Survey(std::string_view text)
{
  Skipped skipped;
  ForEachWord(text, text.data(), [&](std::string_view word, bool inComment) {
    if (inComment)
      return true;
    if (skipped.first.empty())
      skipped.first = word;
    const bool isFirst = !skipped.last || std::find(skipped.last, word.data(), '\n') != word.data();
    skipped.lines += isFirst ? 1 : 0;
    skipped.last = word.data();
    if (isFirst && IsBlockKeyword(word))
      skipped.blocks.push_back(word);
    return true;
  });
  return skipped;
}

std::string InLine(const TextScan& text, const char* place)
{
  return " in line " + std::to_string(text.LineOf(place));
}

// "in line 3" or "in lines 3 to 7".
std::string InLines(const TextScan& text, const Skipped& skipped)
{
  const int first = text.LineOf(skipped.first.data());
  const int last = text.LineOf(skipped.last);
  if (first == last)
    return "in line " + std::to_string(first);
  return "in lines " + std::to_string(first) + " to " + std::to_string(last);
}

std::string Lines(int count)
{
  return std::to_string(count) + (count == 1 ? " line" : " lines");
}

// ", with the blocks 'materials' (line 7) and ..."; empty without blocks.
std::string SwallowedBlocks(const TextScan& text, const Skipped& skipped)
{
  constexpr std::size_t kMost = 4;
  std::string list;
  for (std::size_t i = 0; i < std::min(kMost, skipped.blocks.size()); ++i) {
    const std::string_view keyword = skipped.blocks[i];
    list += (i == 0 ? "" : ", ") + Quoted(keyword) + " (line " +
            std::to_string(text.LineOf(keyword.data())) + ")";
  }
  if (skipped.blocks.size() > kMost)
    list += " and more";
  return list;
}

std::string NameOfBlock(const TextScan& text)
{
  const std::string_view keyword = text.LastBlock().keyword;
  if (keyword.empty())
    return "the list";
  return "the block " + Quoted(keyword) + InLine(text, keyword.data());
}

// "; the 'end' in line 9 is in a comment" when a comment of the block, between its keyword and
// `to`, begins with that word; else empty.
std::string CommentedEnd(const TextScan& text, const char* to)
{
  const std::string_view keyword = text.LastBlock().keyword;
  std::string about;
  bool isFirst = false;  // the next word is the first of a comment
  if (keyword.empty())
    return about;
  ForEachWord({keyword.data(), to}, keyword.data(), [&](std::string_view word, bool inComment) {
    const bool begins = inComment && word[0] == '#';
    if (begins)
      word.remove_prefix(std::min(word.find_first_not_of('#'), word.size()));
    if (inComment && (begins || isFirst) && EqualsNoCase(word, "end"))
      about = "; the 'end'" + InLine(text, word.data()) + " is in a comment";
    isFirst = begins && word.empty();
    return true;
  });
  return about;
}

// "the block 'coordinates' in line 3 ends at 'x' in line 5: 2 lines are not read, in lines 5 to 6"
void WarnOfListEnd(const TextScan& text, const Skipped& skipped, std::string_view endWord)
{
  std::string warning = NameOfBlock(text) + " ends at " + Quoted(skipped.first) +
                        InLine(text, skipped.first.data()) + ", which is no number: ";
  warning += Lines(skipped.lines) + (skipped.lines == 1 ? " is" : " are") + " not read, " +
             InLines(text, skipped);
  if (!skipped.blocks.empty())
    warning += ". It has no 'end': " + Quoted(endWord) + InLine(text, endWord.data()) +
               " is taken for it, and these blocks are lost: " + SwallowedBlocks(text, skipped) +
               CommentedEnd(text, skipped.first.data());
  errorwriter.WriteWarning(warning);
}

void WarnOfGap(const TextScan& text, const Skipped& skipped, std::string_view found)
{
  std::string warning = Lines(skipped.lines) + (skipped.lines == 1 ? " is" : " are") +
                        " not read before " + Quoted(found) + InLine(text, found.data()) + ", " +
                        InLines(text, skipped);
  if (!skipped.blocks.empty())
    warning += ". These blocks are lost: " + SwallowedBlocks(text, skipped);
  errorwriter.WriteWarning(warning);
}

// Reports what a search has passed over: lines of a block, and blocks. Other text may be between
// the words of a mesh, and between the end of a block and the end of its line.
void WarnOfSkipped(const TextScan& text, ReadEvent event, std::string_view passed,
                   std::string_view found)
{
  if (event == ReadEvent::SkippedAfterBlock)
    passed.remove_prefix(std::min(passed.find('\n'), passed.size()));
  const Skipped skipped = Survey(passed);
  if (skipped.first.empty())
    return;
  if (event == ReadEvent::SkippedToBlockEnd)
    WarnOfListEnd(text, skipped, found);
  else if (event == ReadEvent::SkippedAfterBlock ||
           (!skipped.blocks.empty() && !text.LastBlock().keyword.empty()))
    WarnOfGap(text, skipped, found);
}

// SearchWord with the event for skipped text.
std::string_view GoToWord(TextScan& text, std::string_view word, ReadEvent event, IsValue isValue)
{
  const char* const from = text.Here();
  const Match match = SearchFor(text, word);
  if (!match.place)
    return {};
  const std::string_view found = WithoutValue(match, word.size(), isValue);
  text.GoTo(found.data() + found.size(), match.inComment);
  const std::string_view passed(from, found.data());
  Note(event, passed, word);
  Note(ReadEvent::WordPart, found, word);
  if (match.inComment)
    Note(ReadEvent::WordInComment, found, word);
  if (!readObserver)
    WarnOfSkipped(text, event, passed, found);
  return found;
}

// Explains why a word is not found: the text has it only as its last word, or not at all.
void ExplainMissing(const TextScan& text, std::string_view word)
{
  const std::string_view rest = text.TextAhead();
  const std::size_t lastBlank = rest.find_last_of(" \t\n\v\f\r");
  const std::string_view last = lastBlank == rest.npos ? rest : rest.substr(lastBlank + 1);
  if (PlaceIn(last, word))
    return Explain("the file ends directly after ", Quoted(last), ": end the last line");
  const std::string_view block = text.LastBlock().keyword;
  if (block.empty())
    return Explain("line ", text.LineOf(text.Here()), " and those after it have no word '", word,
                   "'");
  const std::string where = Quoted(block) + ", which begins" + InLine(text, block.data());
  if (word == "end")
    Explain("the block ", where, ", has no 'end'", CommentedEnd(text, text.Here()));
  else
    Explain("the block ", where, ", has no '", word, "' after line ", text.LineOf(text.Here()));
}

std::string_view RequireWord(TextScan& text, const char* word, ReadEvent event,
                             IsValue isValue = nullptr)
{
  const std::string_view found = GoToWord(text, word, event, isValue);
  if (!found.empty())
    return found;
  ExplainMissing(text, word);
  FailSearch(text, word);
}

}  // namespace

std::span<const std::string_view> BlockKeywords()
{
  return kBlockKeywords;
}

bool IsBlockKeyword(std::string_view word)
{
  return std::any_of(kBlockKeywords.begin(), kBlockKeywords.end(),
                     [word](std::string_view keyword) { return EqualsNoCase(word, keyword); });
}

std::string_view SearchWord(TextScan& text, const char* word, IsValue isValue)
{
  return GoToWord(text, word, ReadEvent::SkippedText, isValue);
}

void FailSearch(TextScan& text, const char* word)
{
  const std::string_view searched = text.TextAhead();
  text.GoTo(searched.data() + searched.size());
  Note(ReadEvent::SearchFailed, searched, word);
  Fatal("can't find word ***", word, "*** in input file\n");
}

std::string_view FindThisWord(TextScan& text, const char* word, IsValue isValue)
{
  return RequireWord(text, word, ReadEvent::SkippedText, isValue);
}

void FindBlockEnd(TextScan& text)
{
  const std::string_view word = RequireWord(text, "end", ReadEvent::SkippedToBlockEnd);
  text.LeaveBlock(word.data());
}

std::string_view FindWordAfterBlock(TextScan& text, const char* word)
{
  return RequireWord(text, word, ReadEvent::SkippedAfterBlock);
}

void SkipBlockEnd(TextScan& text)
{
  FindBlockEnd(text);
  text.SkipLine();
}

bool FindDigit(TextScan& text)
{
  const auto find = [](std::string_view word) {
    const auto digit = std::find_if(word.begin(), word.end(), IsDigit);
    return digit == word.end() ? nullptr : word.data() + (digit - word.begin());
  };
  const auto ends = [](std::string_view word) {
    return BeginsAnotherPart(word) || PlaceIn(word, "dimension") || PlaceIn(word, "elemtype") ||
           PlaceIn(word, "nnode");
  };
  // The comment that has the word in front of the number may have the number too.
  const std::string_view ahead = text.TextAhead();
  const Match match = Search(ahead, ahead.data(), find, ends);
  if (!match.place)
    return false;
  Note(ReadEvent::SkippedToNumber, {ahead.data(), match.place});
  if (match.inComment)
    Note(ReadEvent::WordInComment, match.word, "a number");
  text.GoTo(match.place, match.inComment || match.place < text.CommentEnd());
  if (!readObserver)
    WarnOfSkipped(text, ReadEvent::SkippedText, {ahead.data(), match.place}, match.word);
  return true;
}

std::string_view ReadValue(TextScan& text, std::string_view glued)
{
  for (std::string_view rest = glued;; rest = text.ReadWord()) {
    const std::size_t start = rest.find_first_not_of(" =:");
    if (start != rest.npos)
      return rest.substr(start);
    if (text.AtEnd())
      return {};
  }
}

}  // namespace morlen
