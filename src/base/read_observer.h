#pragma once

#include <functional>
#include <string_view>

namespace morlen {

class TextScan;

/// What a reader passes over without a message, and a few facts that it alone knows. The first
/// text of a notice is the place, the second what is said of it here.
enum class ReadEvent : int
{
  SkippedText,   ///< text in front of the word or digit looked for, which is the detail
  SearchFailed,  ///< the text behind which a word is not found; the error follows
  WordPart,      ///< a word taken for the one that it contains, the detail
  Prefix,        ///< a word taken for its beginning, the detail
  LineTail,      ///< text behind the last value of a record
  LineBreak,     ///< a record that goes on in the next line
  IgnoredKey,    ///< a key without meaning in its record
  NumberPart,    ///< a value that is no number as a whole
  NotDecimal,    ///< an integer that is read as octal or hexadecimal
  Keyword,       ///< a keyword of the file's top level
  UnitsUsed      ///< the name of a unit system that is looked up
};

enum class ReadItem : int
{
  Node,
  Element,
  Material,
  Support
};

/// Follows the reading of a problem file and lets it go on behind errors.
///
/// The program has none. A companion that judges problem files sets one, together with an end
/// of the run (see ErrorWriter::SetEndOfRun) that throws.
class ReadObserver
{
public:
  virtual ~ReadObserver() = default;

  /// Runs one step of the reading, or of what follows it, where text is null. False when an
  /// error has ended the step; the text then stands behind the line of its record.
  virtual bool Attempt(TextScan* text, const std::function<void()>& step) = 0;
  /// Runs a step that judges the item with this number.
  virtual bool AttemptOn(ReadItem item, int number, const std::function<void()>& step) = 0;
  virtual void Notice(ReadEvent event, std::string_view place, std::string_view detail) = 0;
  /// The record of the running step has given the item with this number.
  virtual void Stored(ReadItem item, int number) = 0;
};

/// Borrowed; null in the program.
extern ReadObserver* readObserver;

/// Runs a step that an observer may outlive the errors of; without one, just runs it.
template <class Step>
bool Attempt(TextScan* text, const Step& step)
{
  if (readObserver)
    return readObserver->Attempt(text, step);
  step();
  return true;
}

template <class Step>
bool AttemptOn(ReadItem item, int number, const Step& step)
{
  if (readObserver)
    return readObserver->AttemptOn(item, number, step);
  step();
  return true;
}

inline void Note(ReadEvent event, std::string_view place, std::string_view detail = {})
{
  if (readObserver)
    readObserver->Notice(event, place, detail);
}

inline void NoteStored(ReadItem item, int number)
{
  if (readObserver)
    readObserver->Stored(item, number);
}

/// Notes the end of a record's values: whether they have gone over a line's end since `from`,
/// and what stands behind them.
void NoteRecordEnd(const char* from, const TextScan& text);

/// Notes a value that is not one number from end to end.
void NoteNumber(std::string_view value);

}  // namespace morlen
