#include "check/recorder.h"

#include <algorithm>
#include <cctype>

#include "base/number_text.h"
#include "common/shortest.h"

namespace morlen::check {
namespace {

/// Thrown in place of the end of the run.
struct RunEnded
{
  std::string message;
};

std::string Lower(std::string_view text)
{
  std::string lower(text);
  std::transform(lower.begin(), lower.end(), lower.begin(),
                 [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
  return lower;
}

std::string_view Trim(std::string_view text, const char* dropped = " \t\r\n\v\f:=")
{
  const std::size_t first = text.find_first_not_of(dropped);
  if (first == std::string_view::npos)
    return {};
  return text.substr(first, text.find_last_not_of(dropped) - first + 1);
}

// Without the blanks and comment lines at its beginning.
std::string_view WithoutComments(std::string_view text)
{
  for (text = Trim(text); !text.empty() && text[0] == '#';)
    text = Trim(text.substr(std::min(text.find('\n'), text.size())));
  return text;
}

// The beginning of a text on one line, in quotes.
std::string Quote(std::string_view text)
{
  constexpr std::size_t kLongest = 40;
  text = Trim(text.substr(0, text.find('\n')), " \t\r");
  const bool cut = text.size() > kLongest;
  return Joined("'", text.substr(0, kLongest), cut ? "...'" : "'");
}

// A message of the program in one line, without its own "error: ".
std::string OneLine(std::string_view message)
{
  std::string line(Trim(message, " \n"));
  std::replace(line.begin(), line.end(), '\n', ' ');
  constexpr std::string_view kPrefix = "error: ";
  return line.starts_with(kPrefix) ? line.substr(kPrefix.size()) : line;
}

// An octal, hexadecimal or decimal number.
int AnyBase(std::string_view item)
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

Recorder::Recorder(std::string_view text, TextScan& scanner) : content(text), scan(scanner)
{
  for (std::size_t at = text.find('\n'); at != text.npos; at = text.find('\n', at + 1))
    newlines.push_back(static_cast<std::ptrdiff_t>(at));
  previousEnd = errorwriter.SetEndOfRun(
      [](std::string_view message) { throw RunEnded{std::string(message)}; });
  readObserver = this;
}

Recorder::~Recorder()
{
  readObserver = nullptr;
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
    keyword.clear();
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
                         const std::function<std::string(std::string_view)>& remark)
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
    Refused(end.message);
    return false;
  }
}

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

void Recorder::Refused(std::string_view message)
{
  const bool unknown = message.starts_with("Unknown key name=");
  if (unknown && unknownWords)
    return;
  unknownWords = unknown;
  unknownKeyword = unknownKeyword || unknown;
  if (depth > 0)
    broken.insert(keyword);
  std::ptrdiff_t place = start;
  if (lost != kWholeFile)
    place = lost;
  if (fixedPlace != kWholeFile)
    place = fixedPlace;
  lost = kWholeFile;
  Error(place, OneLine(message), remarkOn ? remarkOn(message) : std::string());
}

void Recorder::Stored(ReadItem item, int number)
{
  const auto [known, added] = places[static_cast<int>(item)].try_emplace(number, start);
  if (added)
    return;
  if (item == ReadItem::Element && start != known->second)
    Warn(start, "element ", number, " is given again: line ", LineNumber(known->second),
         " has it too");
  known->second = start;
}

void Recorder::NoteSkipped(std::ptrdiff_t offset, std::string_view skipped, std::string_view wanted)
{
  if (wanted == "elements")  // what "end" closes stands behind it
    skipped.remove_prefix(std::min(skipped.find('\n'), skipped.size()));
  const std::string_view rest = WithoutComments(skipped);
  if (rest.empty())
    return;
  const std::ptrdiff_t place = rest.data() - content.data();
  if (wanted == "end")
    return Warn(place, "the list ends at ", Quote(rest), ": all up to 'end' in line ",
                LineNumber(offset + std::ssize(skipped)), " is skipped");
  const std::string target = wanted == "digit" ? "the number" : Joined("'", wanted, "'");
  Warn(place, "skipped in front of ", target, ": ", Quote(rest));
}

void Recorder::Notice(ReadEvent event, std::string_view place, std::string_view detail)
{
  const std::ptrdiff_t offset = scan.OffsetOf(place.data());
  const std::ptrdiff_t at = offset < 0 ? start : offset;
  const std::string quoted = Quote(place);
  switch (event) {
    case ReadEvent::SkippedText:
      return NoteSkipped(offset, place, detail);
    case ReadEvent::SearchFailed:
      lost =
          WithoutComments(place).empty() ? start : WithoutComments(place).data() - content.data();
      return;
    case ReadEvent::WordPart:
      if (!EqualsNoCase(Trim(place), detail))
        Warn(at, quoted, " is taken for '", detail, "'");
      return;
    case ReadEvent::Prefix:
      return Warn(at, quoted, " is read as '", detail, "'");
    case ReadEvent::LineTail:
      if (const std::string_view tail = Trim(place, " \t\r\n"); !tail.empty() && tail[0] != '#')
        Warn(at + (tail.data() - place.data()), "ignored: ", Quote(tail));
      return;
    case ReadEvent::LineBreak:
      return Warn(start, "values are missing in this line: they are taken from the next one");
    case ReadEvent::IgnoredKey:
      return Warn(at, "ignored: the key ", quoted);
    case ReadEvent::NumberPart:
      return Warn(at, quoted, " is no number as a whole: read as ", Shown(ToDouble(place)));
    case ReadEvent::NotDecimal:
      return Warn(at, "the material number ", quoted, " is not decimal: read as ", AnyBase(place));
    case ReadEvent::Keyword:
      return EnterKeyword(place, at);
    case ReadEvent::UnitsUsed:
      usedUnits.emplace(place);
      return;
  }
}

void Recorder::EnterKeyword(std::string_view word, std::ptrdiff_t offset)
{
  start = offset;
  keywordSeen = true;
  keyword = Lower(word.substr(0, word.find_first_of("=:")));
  keywords.try_emplace(keyword, offset);
}

std::ptrdiff_t Recorder::PlaceOf(ReadItem item, int number) const
{
  const auto& known = places[static_cast<int>(item)];
  const auto found = known.find(number);
  return found == known.end() ? kWholeFile : found->second;
}

std::ptrdiff_t Recorder::PlaceOfKeyword(std::string_view name) const
{
  const auto found = keywords.find(Lower(name));
  return found == keywords.end() ? kWholeFile : found->second;
}

// The first character of the line, blanks apart.
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
