#include "check/recorder.h"

#include <algorithm>
#include <utility>

#include "base/number_text.h"
#include "check/text_parts.h"
#include "problem/problem.h"

namespace morlen::check {
namespace {

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
  if (reason == ReadEvent::PoissonRatio)
    return Code::PoissonRatio;
  return reason == ReadEvent::AsymmetricMaterial ? Code::AsymmetricMaterial : otherwise;
}

}  // namespace

Recorder::Recorder(std::string_view text, TextScan& scanner, const Problem& forProblem)
    : content(text), scan(scanner), problem(forProblem), scope(*this), unitOrder(problem)
{
  for (std::size_t at = text.find('\n'); at != text.npos; at = text.find('\n', at + 1))
    newlines.push_back(static_cast<std::ptrdiff_t>(at));
}

Recorder::~Recorder() = default;

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
  judgesList = !text && depth > 0 && topic == ReadTopic::Mesh;
  ++depth;
  const bool done = Run(step);
  --depth;
  judgesList = false;
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
  if (item == ReadItem::Element &&
      start == kWholeFile)  // the loads of a case: the mesh is elsewhere
    start = PlaceOf(ReadItem::ElementLoad, number);
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
  std::ptrdiff_t place = start;
  if (searched != kWholeFile)
    place = searched;
  if (fixedPlace != kWholeFile)
    place = fixedPlace;
  if (IsConsequence(code, place))
    return;
  Error(code, place, OneLine(message), remarkOn ? remarkOn(why) : std::string());
  findings.back().hint = HintAt(place);
  if (judgesList)
    listFinding = findings.size() - 1;
}

// The hint of the last error, without its line when that is the line of the finding.
std::string Recorder::HintAt(std::ptrdiff_t place) const
{
  std::string hint = OneLine(errorwriter.Hint());
  const std::string line = place == kWholeFile ? "" : Joined("line ", LineNumber(place), ": ");
  return line.empty() || !hint.starts_with(line) ? hint : hint.substr(line.size());
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
    case ReadEvent::PoissonRatio:
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

// True for an error of which another finding names the cause: records are lost, or the nodes of the
// element at this place are misread.
bool Recorder::IsConsequence(Code code, std::ptrdiff_t place) const
{
  return derailed || (recordsLost && (judgesList || code == Code::UnknownReference)) ||
         misread.contains(place);
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
         (ofNodes ? !problem.FindNode(number) : !problem.GiveElem(number));
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
