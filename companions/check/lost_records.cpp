// Explains why records are not read. A list ends at the first word that is no number, and reading
// continues at the next word with "end" in it, which may close another block. The word that ended
// the list tells the cause: a keyword, a comment of another language, a misspelt word, a fault in a
// number.

#include "check/lost_records.h"

#include <algorithm>

#include "base/digits.h"
#include "base/text_parts.h"
#include "check/joined.h"
#include "check/words.h"

namespace morlen::check {
namespace {

struct Content
{
  int records = 0;           ///< lines that begin with a number
  std::string_view keyword;  ///< at the beginning of a line, the first; empty without one
};

Content ContentOf(std::string_view text)
{
  Content content;
  while (!text.empty()) {
    const std::string_view line = FirstLine(text);
    const std::string_view word = FirstWord(line);
    if (!word.empty() && IsDigit(word[0]))
      ++content.records;
    else if (content.keyword.empty() && IsKeyword(word))
      content.keyword = word;
    text.remove_prefix(std::min(line.size() + 1, text.size()));
  }
  return content;
}

// True for a line such as "x2 1.5 0" or "-3 0 0".
bool IsFaultyRecord(std::string_view line)
{
  const std::string_view word = FirstWord(line);
  return !word.empty() && !IsDigit(word[0]) && std::any_of(line.begin(), line.end(), IsDigit) &&
         !BeginsForeignComment(word) && !IsKeyword(word);
}

// The content of the text, in which the first line counts as a record when it looks like one with a
// fault.
Content ContentAfterFault(std::string_view text)
{
  Content content = ContentOf(text);
  content.records += IsFaultyRecord(FirstLine(text)) ? 1 : 0;
  return content;
}

// The sentence after a cause.
std::string NotRead(const std::string& cause, const Content& content, const SkippedText& skipped)
{
  const std::string records =
      content.records == 0 ? std::string("all")
                           : Joined(content.records, content.records == 1 ? " record" : " records");
  const std::string block =
      content.keyword.empty() ? std::string() : Joined(", with the block '", content.keyword, "',");
  return Joined(cause, cause.back() == '?' ? "" : ".", " Not read: ", records, block, " up to ",
                skipped.target, " in line ", skipped.targetLine);
}

// A remark on a word that should not be there; empty when nothing is known of it.
std::string Remark(std::string_view word)
{
  if (BeginsForeignComment(word))
    return ": comments begin with '#'";
  const std::string_view meant = IsKeyword(word) ? std::string_view() : NearestKeyword(word);
  return meant.empty() ? std::string() : Joined(": did you mean '", meant, "'?");
}

std::string CauseOf(const EndedList& list)
{
  const std::string_view line = FirstLine(list.skipped.text);
  const std::string_view word = FirstWord(line);
  const std::string name = Joined("'", list.name, "' (line ", list.line, ")");
  if (IsKeyword(word))
    return Joined("the block ", name, " has no 'end' in front of '", word, "'");
  const std::string ends = Joined("the list ", name, " ends at ", Quoted(line));
  if (list.broken)
    return list.reason.empty() ? ends + ", of which only the beginning can be read"
                               : Joined(ends, ": ", list.reason);
  const std::string remark = Remark(word);
  return ends + (remark.empty() ? ": a record begins with a number, a comment with '#'" : remark);
}

}  // namespace

bool HoldsRecords(std::string_view text)
{
  const Content content = ContentOf(text);
  return content.records > 0 || !content.keyword.empty();
}

bool HoldsBlocks(std::string_view text)
{
  return !ContentOf(text).keyword.empty();
}

bool HoldsRecords(const EndedList& list)
{
  return list.broken || HoldsRecords(list.skipped.text) ||
         IsFaultyRecord(FirstLine(list.skipped.text));
}

std::string AboutSkipped(const SkippedText& skipped)
{
  const std::string_view word = FirstWord(skipped.text);
  if (skipped.endLine > 0 && IsDigit(word[0]))
    return Joined("the record ", Quoted(skipped.text), " follows the 'end' of its list in line ",
                  skipped.endLine);
  return Joined("skipped in front of ", skipped.target, ": ", Quoted(skipped.text), Remark(word));
}

std::string AboutLost(const SkippedText& skipped)
{
  return NotRead(AboutSkipped(skipped), ContentOf(skipped.text), skipped);
}

std::string AboutEndedList(const EndedList& list)
{
  return NotRead(CauseOf(list), ContentAfterFault(list.skipped.text), list.skipped);
}

}  // namespace morlen::check
