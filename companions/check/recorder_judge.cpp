// The findings of a Recorder for the events of the readers.

#include <algorithm>
#include <span>
#include <utility>

#include "base/digits.h"
#include "base/nearest_word.h"
#include "base/number_slip.h"
#include "base/number_text.h"
#include "base/text_parts.h"
#include "base/textscan.h"
#include "check/lost_records.h"
#include "check/misread.h"
#include "check/reader_facts.h"
#include "check/recorder.h"
#include "check/text_parts.h"
#include "check/words.h"
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

bool AreEqualValues(std::string_view a, std::string_view b)
{
  return IsNumber(a, NumberKind::kReal) && IsNumber(b, NumberKind::kReal)
             ? ToDouble(a) == ToDouble(b)
             : a == b;
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
      JudgeEndLine(place);
      return JudgeListEnd(place);
    case ReadEvent::WordPart:
      return JudgeWordPart(place, detail);
    case ReadEvent::Prefix:
      return JudgePrefix(place, detail);
    case ReadEvent::IgnoredKey:
      return JudgeIgnoredKey(place);
    case ReadEvent::RepeatedItem:
      return JudgeRepeatedItem(Trim(place), detail);
    case ReadEvent::FaceMissing:
      return JudgeFact(event, Trim(place));
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
  if ((rest.empty() && !isBroken) || derailed || (!isBroken && IsOwnName(rest)))
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

// True for words on the line of the "end" that begin with the name of the list and hold no number,
// such as "materials" of "materials end".
bool Recorder::IsOwnName(std::string_view words) const
{
  return EqualsNoCase(FirstWord(words), list.name) && words.find('\n') == words.npos &&
         std::none_of(words.begin(), words.end(), IsDigit);
}

// The line of an "end" may name the list; the rest of it is not read. skipped: the text in front of
// the "end". The word "mesh" may be part of the name; after it the head of a mesh would be missed.
void Recorder::JudgeEndLine(std::string_view skipped)
{
  const std::size_t end = static_cast<std::size_t>(OffsetIn(skipped)) + skipped.size();
  std::string_view line = FirstLine(content.substr(end));
  ConsumeWord(line);
  bool isFirst = true;
  for (std::string_view word = ConsumeWord(line); !word.empty(); word = ConsumeWord(line)) {
    if (word[0] == '#' || BeginsForeignComment(word))
      return;
    const std::string_view name = word.substr(0, word.find_first_of("=:"));
    const bool mayName = (std::exchange(isFirst, false) && IsBlockKeyword(name)) ||
                         EqualsNoCase(name, list.name) || EqualsNoCase(name, "mesh") ||
                         (list.ofMesh && EqualsNoCase(name, "elements"));
    if (IsKeyword(name) && !mayName)
      return Error(Code::RecordsLost, OffsetIn(word), "the keyword ", Quoted(name),
                   " is on the line of an 'end' and is not read. Write it on the next line");
  }
}

// A key that nothing reads, with its value. The other keys of its record are few.
void Recorder::JudgeIgnoredKey(std::string_view key)
{
  const std::ptrdiff_t at = OffsetIn(key);
  ItemScanner item(FirstLine(content.substr(static_cast<std::size_t>(at))));
  item.Key();
  const std::string_view value = item.Value();
  static constexpr std::string_view kKeys[] = {"units", "Euler1", "Euler2", "Euler3"};
  const bool readsAngles = !HasPrefix(list.name, "nodal");
  const std::string_view meant = NearestWord(key, std::span(kKeys).first(readsAngles ? 4 : 1));
  if (!meant.empty())
    return Error(Code::KeyLost, at, "the key ", Quoted(key), " is ignored; did you mean '", meant,
                 "'?");
  const bool takesItem = HasPrefix(value, "units") || (readsAngles && HasPrefix(value, "Euler"));
  if (takesItem && !BeginsForeignComment(key))
    return Error(Code::KeyLost, at, "the word ", Quoted(key), " is a key that takes ",
                 Quoted(value), " as its value: both are ignored. A comment begins with '#'");
  Warn(Code::KeyIgnored, at, "ignored: the key ", Quoted(key));
}

// item: a key with its value; known: the key in front of it. A hinge code has no key.
void Recorder::JudgeRepeatedItem(std::string_view item, std::string_view known)
{
  const std::ptrdiff_t at = OffsetIn(item);
  if (known.empty())
    return Error(Code::ItemsContradict, at, "the hinge code ", Quoted(item),
                 " differs from that of an earlier record for the element: the last counts");
  const std::ptrdiff_t before = OffsetIn(known);
  const bool isConsequence =
      std::any_of(findings.begin(), findings.end(), [=](const Finding& finding) {
        return finding.code == Code::KeyMisread &&
               (finding.offset == at || finding.offset == before);
      });
  if (isConsequence)
    return;
  ItemScanner items(TextBetween(before, at));
  items.Key();
  const std::string_view valueBefore = items.Value();
  ItemScanner repeated(item);
  repeated.Key();
  const std::string_view value = repeated.Value();
  const std::string first(TextBetween(before, OffsetIn(valueBefore) + std::ssize(valueBefore)));
  if (AreEqualValues(value, valueBefore))
    return Warn(Code::ItemRepeated, at, Quoted(item), " repeats '", first, "'");
  const bool ofMaterial = EqualsNoCase(list.name, "materials") || list.ofMesh;
  Error(Code::ItemsContradict, at, Quoted(item), " contradicts '", first, "' of the same record: ",
        HasPrefix(item, "units") && ofMaterial ? "the first counts" : "the last counts");
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
  if (at < lastNumberEnd || word.empty())
    return;
  lastNumberEnd = at + std::ssize(word);
  if (IsHingeCode(word))
    return Error(Code::NumberPartlyRead, at, "the hinge code ", Quoted(word),
                 " has more than two digits: read as '", word.substr(0, 2), "'");
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
  const std::ptrdiff_t place = OffsetIn(tail);
  const bool cutsCode = !rest.empty() && IsDigit(rest[0]) &&
                        EqualsNoCase(list.name, "elem_rotules") && place > 1 &&
                        !IsDigit(content[static_cast<std::size_t>(place) - 2]);
  if (cutsCode)
    return Error(Code::NumberPartlyRead, OffsetIn(rest), "ignored: ", Quoted(rest),
                 ". The two digits of a hinge code have no blank between them");
  if (!rest.empty() && rest[0] != '#')
    Warn(Code::TextIgnored, OffsetIn(tail) + (rest.data() - tail.data()),
         "ignored: ", Quoted(rest));
}

// True for a whole number in the place of the code of a hinge.
bool Recorder::IsHingeCode(std::string_view word) const
{
  const std::ptrdiff_t at = scan.OffsetOf(word.data());
  return at >= 0 && EqualsNoCase(list.name, "elem_rotules") && at > start &&
         std::all_of(word.begin(), word.end(), IsDigit);
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
