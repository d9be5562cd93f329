// The findings of a Recorder for the events of the readers.

#include <algorithm>
#include <utility>

#include "base/number_text.h"
#include "base/text_parts.h"
#include "check/lost_records.h"
#include "check/misread.h"
#include "check/reader_facts.h"
#include "check/recorder.h"
#include "check/text_parts.h"
#include "model/material_keys.h"

namespace morlen::check {
namespace {

// The value of an octal, hexadecimal or decimal number.
int ValueInItsBase(std::string_view item)
{
  int number = 0;
  ScanInt(item, number, 0, 0);
  return number;
}

}  // namespace

void Recorder::Judge(ReadEvent event, std::string_view place, std::string_view detail)
{
  const std::ptrdiff_t at = OffsetIn(place);
  switch (event) {
    case ReadEvent::SkippedText:
      return JudgeSkipped(place, Joined("'", detail, "'"));
    case ReadEvent::SkippedAfterBlock:  // the rest of the line belongs to the "end"
      place.remove_prefix(std::min(place.find('\n'), place.size()));
      return JudgeSkipped(place, Joined("'", detail, "'"), LineNumber(at));
    case ReadEvent::SkippedToNumber:
      return JudgeSkipped(place, "the number");
    case ReadEvent::SkippedToBlockEnd:
      return JudgeListEnd(place);
    case ReadEvent::WordPart:
      return JudgeWordPart(place, detail);
    case ReadEvent::Prefix:
      return JudgePrefix(place, detail);
    case ReadEvent::LineTail:
      return JudgeTail(place);
    case ReadEvent::LineBreak:
      return Warn(Code::RecordContinued, start,
                  "values are missing in this line: they are taken from the next one");
    case ReadEvent::NumberPart:
      return JudgeNumber(place);
    case ReadEvent::UnitsRepeated:
      return Warn(Code::DefinedTwice, at, "the unit system '", detail,
                  "' is defined again, with the same contents");
    case ReadEvent::NotDecimal:
      return Warn(Code::NotDecimal, at, "the material number ", Quoted(place),
                  " is not decimal: read as ", ValueInItsBase(place));
    default:
      return JudgeFact(event, place);
  }
}

void Recorder::JudgeFact(ReadEvent event, std::string_view place)
{
  const ReaderFact* const fact = FindFact(event);
  if (!fact || (fact->code == Code::KeyWithoutValue && misread.contains(start)))
    return;
  const std::string message = Joined(fact->before, Quoted(place), fact->after);
  if (fact->severity == Severity::Error)
    Error(fact->code, OffsetIn(place), message);
  else
    Warn(fact->code, OffsetIn(place), message);
}

// Any text may precede the header and the words of a head. Records are lost when a list
// or a block is skipped with it: the line of the target is then the "end" of the skipped list.
void Recorder::JudgeSkipped(std::string_view skipped, const std::string& target, int endLine)
{
  const std::string_view rest = WithoutComments(skipped);
  if (rest.empty() || derailed)
    return;
  const std::ptrdiff_t end = scan.OffsetOf(skipped.data()) + std::ssize(skipped);
  const SkippedText text = {rest, target, LineNumber(end), endLine};
  const bool blocks = HoldsBlocks(rest) || HasPrefix(TextBetween(RecordStart(end), end), "end");
  const bool isLost = HoldsRecords(rest) && (blocks || endLine > 0);
  if (list.name.empty() || !isLost)
    return Warn(Code::TextSkipped, OffsetIn(rest), AboutSkipped(text));
  Error(Code::RecordsLost, OffsetIn(rest), AboutLost(text));
  NoteLoss(blocks);
}

void Recorder::JudgeListEnd(std::string_view skipped)
{
  const std::optional<std::size_t> consequence = std::exchange(listFinding, std::nullopt);
  const std::string_view rest = WithoutComments(skipped);
  const bool isBroken = brokenRecord != kWholeFile;
  if ((rest.empty() && !isBroken) || derailed)
    return;
  const std::ptrdiff_t end = scan.OffsetOf(skipped.data()) + std::ssize(skipped);
  std::ptrdiff_t first = std::exchange(brokenRecord, kWholeFile);
  if (!isBroken) {
    first = OffsetIn(rest);
    // The word that ended the list may be part of a comment in another language.
    const std::ptrdiff_t lineStart = RecordStart(first);
    if (BeginsForeignComment(TextBetween(lineStart, first)))
      first = lineStart;
  }
  const EndedList ended = {.name = list.name,
                           .line = LineNumber(list.offset),
                           .broken = isBroken,
                           .reason = std::exchange(brokenReason, {}),
                           .skipped = {TextBetween(first, end), "'end'", LineNumber(end)}};
  if (!HoldsRecords(ended))
    return Warn(Code::TextSkipped, first, AboutEndedList(ended));
  if (consequence) {
    findings.erase(findings.begin() + static_cast<std::ptrdiff_t>(*consequence));
    --errors;
  }
  Error(Code::RecordsLost, first, AboutEndedList(ended));
  NoteLoss(HoldsBlocks(ended.skipped.text));
}

// The words that begin the lists of a mesh, and words that only contain the one searched for.
void Recorder::JudgeWordPart(std::string_view word, std::string_view part)
{
  if (part == "coordinates" || part == "elements")
    list = {word, OffsetIn(word), true};
  if (!EqualsNoCase(Trim(word), part))
    Warn(Code::WordByPart, OffsetIn(word), Quoted(word), " is taken for '", part, "'");
}

void Recorder::JudgePrefix(std::string_view word, std::string_view beginning)
{
  const std::ptrdiff_t at = OffsetIn(word);
  if (!IsMaterialKey(beginning))
    return Warn(Code::WordByPrefix, at, Quoted(word), " is read as '", beginning, "'");
  if (MeansWhatItMatches(word, beginning))
    return Warn(Code::KeyByPrefix, at, Quoted(word), " is read as '", beginning, "'");
  const std::string_view meant = MeantMaterialKey(word);
  const std::string advice = meant.empty() || EqualsNoCase(meant, beginning)
                                 ? std::string()
                                 : Joined("; did you mean '", meant, "'?");
  Error(Code::KeyMisread, at, Quoted(word), " is no key of a material: read as '", beginning, "'",
        advice);
}

// A word of which a second part is read as another number is reported once.
void Recorder::JudgeNumber(std::string_view word)
{
  const std::ptrdiff_t at = OffsetIn(word);
  if (at < lastNumberEnd)
    return;
  lastNumberEnd = at + std::ssize(word);
  const bool isNode = IsInNodeList(word);
  if (isNode)
    misread.insert(start);
  Error(Code::NumberPartlyRead, at,
        AboutMisreadNumber(word, isNode ? NumberKind::kWhole : NumberKind::kReal));
}

// A comment may follow the values of a record.
void Recorder::JudgeTail(std::string_view tail)
{
  const std::string_view rest = Trim(tail, " \t\r\n\v\f");
  if (!rest.empty() && rest[0] != '#')
    Warn(Code::TextIgnored, OffsetIn(tail) + (rest.data() - tail.data()),
         "ignored: ", Quoted(rest));
}

// True when only whole numbers are in front of the word in its record of an element.
bool Recorder::IsInNodeList(std::string_view word) const
{
  const std::ptrdiff_t at = scan.OffsetOf(word.data());
  if (at < 0 || !list.ofMesh || !EqualsNoCase(list.name, "elements"))
    return false;
  return TextBetween(RecordStart(at), at).find_first_not_of("0123456789 \t,;-") ==
         std::string_view::npos;
}

}  // namespace morlen::check
