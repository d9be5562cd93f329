#include "check/recorder.h"

#include <algorithm>
#include <utility>

#include "base/number_text.h"
#include "common/shortest.h"

namespace morlen::check {
namespace {

/// Thrown in place of the end of the run.
struct RunEnded
{
  std::string message;
};

std::string_view Trim(std::string_view text, const char* dropped = " \t\r\n\v\f:=")
{
  const std::size_t first = text.find_first_not_of(dropped);
  if (first == std::string_view::npos)
    return {};
  return text.substr(first, text.find_last_not_of(dropped) - first + 1);
}

// The text without its leading blanks and comment lines.
std::string_view WithoutComments(std::string_view text)
{
  for (text = Trim(text); !text.empty() && text[0] == '#';)
    text = Trim(text.substr(std::min(text.find('\n'), text.size())));
  return text;
}

// The beginning of the text's first line, in quotes.
std::string Quote(std::string_view text)
{
  constexpr std::size_t kLongest = 40;
  text = Trim(text.substr(0, text.find('\n')), " \t\r");
  const bool cut = text.size() > kLongest;
  return Joined("'", text.substr(0, kLongest), cut ? "...'" : "'");
}

// A message of the program on one line, without its "error: ".
std::string OneLine(std::string_view message)
{
  std::string line(Trim(message, " \n"));
  std::replace(line.begin(), line.end(), '\n', ' ');
  constexpr std::string_view kPrefix = "error: ";
  return line.starts_with(kPrefix) ? line.substr(kPrefix.size()) : line;
}

// The value of an octal, hexadecimal or decimal number.
int ValueInItsBase(std::string_view item)
{
  int number = 0;
  ScanInt(item, number, 0, 0);
  return number;
}

std::string Shown(double number)
{
  std::string text;
  AppendNumber(text, number);
  return text;
}

}  // namespace

Recorder::Recorder(std::string_view text, TextScan& scanner)
    : content(text), scan(scanner), scope(*this)
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
  ++depth;
  const bool done = Run(step);
  --depth;
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

bool Recorder::AttemptAt(std::ptrdiff_t offset, const std::function<void()>& step,
                         const Remark& remark)
{
  fixedPlace = offset;
  remarkOn = remark;
  const bool done = Run(step);
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
  std::ptrdiff_t place = start;
  if (searched != kWholeFile)
    place = searched;
  if (fixedPlace != kWholeFile)
    place = fixedPlace;
  Error(place, OneLine(message), remarkOn ? remarkOn(why) : std::string());
}

void Recorder::Entered(ReadTopic entered)
{
  topic = entered;
  topics.try_emplace(topic, start);
}

void Recorder::Stored(ReadItem item, int number)
{
  const auto [known, added] = places[static_cast<std::size_t>(item)].try_emplace(number, start);
  if (added)
    return;
  if (item == ReadItem::Element && start != known->second)
    Warn(start, "element ", number, " is given again: line ", LineNumber(known->second),
         " has it too");
  known->second = start;
}

void Recorder::Notice(ReadEvent event, std::string_view place, std::string_view detail)
{
  switch (event) {
    case ReadEvent::Keyword:
      return EnterKeyword(OffsetIn(place));
    case ReadEvent::UnitsUsed:
      usedUnits.emplace(place);
      return;
    case ReadEvent::SearchFailed:
      lost = OffsetIn(WithoutComments(place));
      reason = event;
      return;
    case ReadEvent::UnknownKeyword:
    case ReadEvent::AsymmetricMaterial:
      reason = event;
      return;
    default:
      return WarnOf(event, place, detail);
  }
}

void Recorder::EnterKeyword(std::ptrdiff_t offset)
{
  start = offset;
  keywordSeen = true;
  topic = ReadTopic::Other;
}

void Recorder::WarnOf(ReadEvent event, std::string_view place, std::string_view detail)
{
  const std::ptrdiff_t at = OffsetIn(place);
  switch (event) {
    case ReadEvent::SkippedText:
      return WarnOfSkipped(place, Joined("'", detail, "'"));
    case ReadEvent::SkippedAfterBlock:  // the rest of the line belongs to the "end"
      place.remove_prefix(std::min(place.find('\n'), place.size()));
      return WarnOfSkipped(place, Joined("'", detail, "'"));
    case ReadEvent::SkippedToNumber:
      return WarnOfSkipped(place, "the number");
    case ReadEvent::SkippedToBlockEnd:
      return WarnOfListEnd(place);
    case ReadEvent::WordPart:
      if (!EqualsNoCase(Trim(place), detail))
        Warn(at, Quote(place), " is taken for '", detail, "'");
      return;
    case ReadEvent::Prefix:
      return Warn(at, Quote(place), " is read as '", detail, "'");
    case ReadEvent::LineTail:
      return WarnOfTail(place);
    case ReadEvent::LineBreak:
      return Warn(start, "values are missing in this line: they are taken from the next one");
    case ReadEvent::IgnoredKey:
      return Warn(at, "ignored: the key ", Quote(place));
    case ReadEvent::NumberPart:
      return Warn(at, Quote(place), " is no number as a whole: read as ", Shown(ToDouble(place)));
    case ReadEvent::NotDecimal:
      return Warn(at, "the material number ", Quote(place), " is not decimal: read as ",
                  ValueInItsBase(place));
    default:
      return;
  }
}

void Recorder::WarnOfSkipped(std::string_view skipped, std::string_view target)
{
  const std::string_view rest = WithoutComments(skipped);
  if (!rest.empty())
    Warn(OffsetIn(rest), "skipped in front of ", target, ": ", Quote(rest));
}

void Recorder::WarnOfListEnd(std::string_view skipped)
{
  const std::string_view rest = WithoutComments(skipped);
  if (!rest.empty())
    Warn(OffsetIn(rest), "the list ends at ", Quote(rest), ": all up to 'end' in line ",
         LineNumber(scan.OffsetOf(skipped.data()) + std::ssize(skipped)), " is skipped");
}

// A comment may follow the values of a record.
void Recorder::WarnOfTail(std::string_view tail)
{
  const std::string_view rest = Trim(tail, " \t\r\n");
  if (!rest.empty() && rest[0] != '#')
    Warn(OffsetIn(tail) + (rest.data() - tail.data()), "ignored: ", Quote(rest));
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
