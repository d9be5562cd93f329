#include "check/recorder.h"

#include <algorithm>
#include <utility>

#include "base/number_text.h"
#include "check/lost_records.h"
#include "check/misread.h"
#include "check/text_parts.h"
#include "check/words.h"

namespace morlen::check {
namespace {

/// Thrown in place of the end of the run.
struct RunEnded
{
  std::string message;
};

// A message of the program on one line, without its "error: ".
std::string OneLine(std::string_view message)
{
  std::string line(Trim(message, " \n"));
  std::replace(line.begin(), line.end(), '\n', ' ');
  constexpr std::string_view kPrefix = "error: ";
  return line.starts_with(kPrefix) ? line.substr(kPrefix.size()) : line;
}

// The code of an error with this reason; `otherwise` when the reason is not known.
Code CodeOf(std::optional<ReadEvent> reason, Code otherwise)
{
  if (reason == ReadEvent::UnknownKeyword)
    return Code::UnknownKeyword;
  if (reason == ReadEvent::SearchFailed)
    return Code::WordMissing;
  return reason == ReadEvent::AsymmetricMaterial ? Code::AsymmetricMaterial : otherwise;
}

// The value of an octal, hexadecimal or decimal number.
int ValueInItsBase(std::string_view item)
{
  int number = 0;
  ScanInt(item, number, 0, 0);
  return number;
}

}  // namespace

Recorder::Recorder(std::string_view text, TextScan& scanner, const Problem& problem)
    : content(text), scan(scanner), scope(*this), unitOrder(problem)
{
  for (std::size_t at = text.find('\n'); at != text.npos; at = text.find('\n', at + 1))
    newlines.push_back(static_cast<std::ptrdiff_t>(at));
  previousEnd = errorwriter.SetEndOfRun(
      [](std::string_view message) { throw RunEnded{std::string(message)}; });
}

Recorder::~Recorder()
{
  errorwriter.SetEndOfRun(previousEnd);
}

bool Recorder::Attempt(TextScan* text, const std::function<void()>& step)
{
  const std::ptrdiff_t outer = start;
  const std::ptrdiff_t here = text ? text->OffsetOf(text->Here()) : kWholeFile;
  if (text)
    start = RecordStart(here);
  if (depth == 0)
    keywordSeen = false;
  if (depth == 0 && !text)  // all is read
    topic = ReadTopic::Other;
  stored = false;
  namedUnits = false;
  ++depth;
  const bool done = Run(step);
  --depth;
  if (done && text && depth > 0)
    NoteBrokenRecord(here, *text);
  if (!done && text)
    SkipBrokenRecord(*text, here);
  if (done && depth == 0 && keywordSeen)
    unknownWords = false;
  start = outer;
  return done;
}

bool Recorder::AttemptOn(ReadItem item, int number, const std::function<void()>& step)
{
  const std::ptrdiff_t outer = start;
  start = PlaceOf(item, number);
  const bool done = Run(step);
  start = outer;
  return done;
}

bool Recorder::AttemptAt(Code code, std::ptrdiff_t offset, const std::function<void()>& step,
                         const Remark& remark)
{
  const Code outerCode = std::exchange(stepCode, code);
  fixedPlace = offset;
  remarkOn = remark;
  const bool done = Run(step);
  stepCode = outerCode;
  fixedPlace = kWholeFile;
  remarkOn = {};
  return done;
}

bool Recorder::Run(const std::function<void()>& step)
{
  try {
    step();
    return true;
  } catch (const RunEnded& end) {
    AddError(end.message);
    return false;
  }
}

// Skips the rest of the record's line unless the reader has crossed its end already.
void Recorder::SkipBrokenRecord(TextScan& text, std::ptrdiff_t from)
{
  const std::ptrdiff_t here = text.OffsetOf(text.Here());
  const std::string_view read =
      content.substr(static_cast<std::size_t>(from), static_cast<std::size_t>(here - from));
  const bool lineLeft = WithoutComments(read).find('\n') != std::string_view::npos ||
                        (!read.empty() && read.back() == '\n');
  if (!lineLeft)
    text.SkipLine();
}

void Recorder::AddError(std::string_view message)
{
  const std::optional<ReadEvent> why = std::exchange(reason, std::nullopt);
  const std::ptrdiff_t searched = std::exchange(lost, kWholeFile);
  const bool unknown = why == ReadEvent::UnknownKeyword;
  if (unknown && unknownWords)
    return;
  unknownWords = unknown;
  unknownKeyword = unknownKeyword || unknown;
  if (depth > 0)
    broken.insert(topic);
  const Code code = IsUnknownReference() ? Code::UnknownReference : CodeOf(why, stepCode);
  if (IsConsequence(code))
    return;
  std::ptrdiff_t place = start;
  if (searched != kWholeFile)
    place = searched;
  if (fixedPlace != kWholeFile)
    place = fixedPlace;
  Error(code, place, OneLine(message), remarkOn ? remarkOn(why) : std::string());
  findings.back().hint = OneLine(errorwriter.Hint());
}

void Recorder::Entered(ReadTopic entered)
{
  topic = entered;
  topics.try_emplace(topic, start);
  unitOrder.Entered(topic, start);
}

void Recorder::Stored(ReadItem item, int number)
{
  stored = true;
  unitOrder.Stored(item, number, start, namedUnits);
  const auto [known, added] = places[static_cast<std::size_t>(item)].try_emplace(number, start);
  if (added)
    return;
  if (item == ReadItem::Element && start != known->second)
    Warn(Code::ElementRepeated, start, "element ", number, " is given again: line ",
         LineNumber(known->second), " has it too");
  known->second = start;
}

void Recorder::Notice(ReadEvent event, std::string_view place, std::string_view detail)
{
  switch (event) {
    case ReadEvent::Keyword:
      list = {place, OffsetIn(place)};
      return EnterKeyword(OffsetIn(place));
    case ReadEvent::UnitsUsed:
      namedUnits = true;
      usedUnits.emplace(place);
      return;
    case ReadEvent::SearchFailed:
      lost = OffsetIn(WithoutComments(place));
      reason = event;
      return;
    case ReadEvent::BrokenRecord:
      brokenReason = detail;
      return;
    case ReadEvent::UnknownKeyword:
    case ReadEvent::AsymmetricMaterial:
      reason = event;
      return;
    default:
      return Judge(event, place, detail);
  }
}

void Recorder::EnterKeyword(std::ptrdiff_t offset)
{
  start = offset;
  keywordSeen = true;
  derailed = false;
  topic = ReadTopic::Other;
}

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
    case ReadEvent::IgnoredKey:
      return Warn(Code::KeyIgnored, at, "ignored: the key ", Quote(place));
    case ReadEvent::NumberPart:
      return JudgeNumber(place);
    case ReadEvent::NoValue:
      return Error(Code::KeyWithoutValue, at, "the key ", Quote(place),
                   " has no value and is not read. Write its value, or leave it out");
    case ReadEvent::LoneWidth:
      return Error(Code::LoneWidth, at, Quote(place),
                   " gives no section without the other width. Write widthY and widthZ");
    case ReadEvent::FreeValue:
      return Error(Code::ValueAtFreeComponent, at, "the value ", Quote(place),
                   " has no effect, as the flag of its component is 0 (free). Flag 1 prescribes a "
                   "displacement, 2 is a spring");
    case ReadEvent::WordInComment:
      return Warn(Code::WordInComment, at, Quote(place),
                  " is taken from a comment, as it is nowhere else");
    case ReadEvent::GluedValue:
      return Warn(Code::ValueGlued, at, Quote(place),
                  " is read as flags and a value. Write a blank between them");
    case ReadEvent::UnitsRepeated:
      return Warn(Code::DefinedTwice, at, "the unit system '", detail,
                  "' is defined again, with the same contents");
    case ReadEvent::NotDecimal:
      return Warn(Code::NotDecimal, at, "the material number ", Quote(place),
                  " is not decimal: read as ", ValueInItsBase(place));
    default:
      return;
  }
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
  Error(Code::RecordsLost, first, AboutEndedList(ended));
  NoteLoss(HoldsBlocks(ended.skipped.text));
}

// The words that begin the lists of a mesh, and words that only contain the one searched for.
void Recorder::JudgeWordPart(std::string_view word, std::string_view part)
{
  if (part == "coordinates" || part == "elements")
    list = {word, OffsetIn(word), true};
  if (!EqualsNoCase(Trim(word), part))
    Warn(Code::WordByPart, OffsetIn(word), Quote(word), " is taken for '", part, "'");
}

void Recorder::JudgePrefix(std::string_view word, std::string_view beginning)
{
  const std::ptrdiff_t at = OffsetIn(word);
  if (!IsMaterialKey(beginning))
    return Warn(Code::WordByPrefix, at, Quote(word), " is read as '", beginning, "'");
  if (MeansWhatItMatches(word, beginning))
    return Warn(Code::KeyByPrefix, at, Quote(word), " is read as '", beginning, "'");
  const std::string_view likely = LikelyKey(word);
  Error(Code::KeyMisread, at, Quote(word), " is no key of a material: read as '", beginning, "'",
        likely.empty() ? "" : "; did you mean '", likely, likely.empty() ? "" : "'?");
}

void Recorder::JudgeNumber(std::string_view word)
{
  Error(Code::NumberPartlyRead, OffsetIn(word),
        AboutMisreadNumber(word, IsInNodeList(word) ? Expected::WholeNumber : Expected::Number));
}

// A comment may follow the values of a record.
void Recorder::JudgeTail(std::string_view tail)
{
  const std::string_view rest = Trim(tail, " \t\r\n\v\f");
  if (!rest.empty() && rest[0] != '#')
    Warn(Code::TextIgnored, OffsetIn(tail) + (rest.data() - tail.data()), "ignored: ", Quote(rest));
}

// A record of a mesh that gives nothing, although its number was read, ends its list.
void Recorder::NoteBrokenRecord(std::ptrdiff_t from, const TextScan& text)
{
  const std::ptrdiff_t here = text.OffsetOf(text.Here());
  if (list.ofMesh && !stored && !Trim(TextBetween(from, here)).empty())
    brokenRecord = start;
}

// The checks that depend on the list are left out. blocks: whole blocks are skipped too, so that
// the next list of a mesh is not found where it begins.
void Recorder::NoteLoss(bool blocks)
{
  broken.insert(topic);
  recordsLost = true;
  blocksLost = blocksLost || blocks;
  derailed = derailed || (blocks && topic == ReadTopic::Mesh);
}

// True for an error that lost records cause: theirs names the cause.
bool Recorder::IsConsequence(Code code) const
{
  return derailed || (recordsLost && code == Code::UnknownReference);
}

// True when the error of the running step is that its record begins with the number of no node or
// element.
bool Recorder::IsUnknownReference() const
{
  const bool ofElements = EqualsNoCase(list.name, "elem_rotules") ||
                          (list.name.ends_with("_loads") && !HasPrefix(list.name, "nodal"));
  const bool ofNodes = EqualsNoCase(list.name, "rotules") ||
                       EqualsNoCase(list.name, "constraints") || HasPrefix(list.name, "nodal");
  int number = 0;
  if (depth == 0 || start == kWholeFile || (!ofElements && !ofNodes))
    return false;
  std::string_view record = content.substr(static_cast<std::size_t>(start));
  return ScanInt(record, number, 10, 0) &&
         PlaceOf(ofNodes ? ReadItem::Node : ReadItem::Element, number) == kWholeFile;
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

std::string_view Recorder::TextBetween(std::ptrdiff_t from, std::ptrdiff_t end) const
{
  return content.substr(static_cast<std::size_t>(from), static_cast<std::size_t>(end - from));
}

std::ptrdiff_t Recorder::PlaceOf(ReadItem item, int number) const
{
  const auto& known = places[static_cast<std::size_t>(item)];
  const auto found = known.find(number);
  return found == known.end() ? kWholeFile : found->second;
}

std::ptrdiff_t Recorder::PlaceOf(ReadTopic wanted) const
{
  const auto found = topics.find(wanted);
  return found == topics.end() ? kWholeFile : found->second;
}

// The offset of a part of the text, or of the running step for a view of other memory.
std::ptrdiff_t Recorder::OffsetIn(std::string_view place) const
{
  const std::ptrdiff_t offset = scan.OffsetOf(place.data());
  return offset < 0 ? start : offset;
}

// The offset of the first character of the line that is not blank.
std::ptrdiff_t Recorder::RecordStart(std::ptrdiff_t offset) const
{
  const std::size_t place = static_cast<std::size_t>(offset);
  const std::size_t newline = place == 0 ? content.npos : content.rfind('\n', place - 1);
  const std::size_t line = newline == content.npos ? 0 : newline + 1;
  return static_cast<std::ptrdiff_t>(std::min(content.find_first_not_of(" \t", line), place));
}

int Recorder::LineNumber(std::ptrdiff_t offset) const
{
  return static_cast<int>(std::lower_bound(newlines.begin(), newlines.end(), offset) -
                          newlines.begin()) +
         1;
}

}  // namespace morlen::check
