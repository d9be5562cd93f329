#pragma once

#include <functional>
#include <string_view>
#include <vector>

namespace morlen {

class TextScan;

/// An event during reading that no later phase can see: text skipped without a message, a value
/// read as another, or the reason of the following error. A notice has a place, the text that it
/// is about, and with some events a detail.
enum class ReadEvent : int
{
  SkippedText,        ///< text before the word searched for; the detail is that word
  SkippedToBlockEnd,  ///< text between the last record of a block and its "end"
  SkippedAfterBlock,  ///< text between the "end" of a block and the word searched for, the detail
  SkippedToNumber,    ///< text before the digit searched for
  WordPart,           ///< a word accepted because it contains the detail
  Prefix,             ///< a word read as if it were only its beginning, the detail
  LineTail,           ///< text after the last value of a record
  LineBreak,          ///< a record that continues on the next line
  IgnoredKey,         ///< a key without meaning in its record
  NumberPart,         ///< a value that is not a number as a whole
  NoValue,            ///< a key of a material without a value, which ends the items
  LoneWidth,          ///< a width of a section without the other width
  GluedValue,         ///< the flags of a support with the value that follows them without a blank
  BrokenRecord,       ///< where a node or an element cannot be read, which ends its list; the
                      ///< detail is the reason
  FreeValue,          ///< a value other than 0 at a component whose flag is free
  WordInComment,      ///< a word of a head that only a comment has
  NotDecimal,         ///< an integer read as octal or hexadecimal
  Keyword,            ///< a keyword of the top level, known or not
  UnitsUsed,          ///< the name of a unit system that is looked up
  UnitsRepeated,      ///< the definition of a unit system that is already defined, with the same
                      ///< contents
  FaceMissing,        ///< the numbers of a record of face_loads without the index of a face, which
                      ///< is read as a load over the volume
  UnitsNotFound,      ///< an item of a material that names a unit system but is not found, by the
                      ///< case of its key
  RepeatedItem,  ///< an item whose key the record has already; the detail is the key before, in
                 ///< the text. Or a hinge code other than the element has; no detail

  // Reasons of the error that follows:
  SearchFailed,        ///< the text does not have the word searched for, the detail
  UnknownKeyword,      ///< the keyword noticed last is unknown
  AsymmetricMaterial,  ///< Ex*nuXY and Ey*nuYX of a material differ; no place
  PoissonRatio         ///< a strain would release energy; no place
};

enum class ReadItem : int
{
  Node,
  Element,
  Material,
  Support,
  NodalLoad,   ///< by its node
  ElementLoad  ///< by its element
};

/// The subject of a keyword of the top level.
enum class ReadTopic : int
{
  Other,
  Mesh,
  Supports,
  UnitSystems,
  UnitsOfMesh,
  UnitsOfMaterials,  ///< and of supports and loads
  UnitsOfResults,
  Gravity,
  Solver
};

/// Follows the reading of a problem file and lets it continue after errors.
///
/// Null in the program. A companion that judges problem files sets one for its thread (see
/// ObserverScope), together with an end of the run (see ErrorWriter::SetEndOfRun) that throws.
class ReadObserver
{
public:
  virtual ~ReadObserver() = default;

  /// Runs one step of the reading, or with a null text of the checks after it. False when an
  /// error has ended the step; the line of its record has then been read.
  virtual bool Attempt(TextScan* text, const std::function<void()>& step) = 0;
  /// Runs a step that judges the item with this number.
  virtual bool AttemptOn(ReadItem item, int number, const std::function<void()>& step) = 0;
  virtual void Notice(ReadEvent event, std::string_view place, std::string_view detail) = 0;
  /// The keyword noticed last is known and has this topic.
  virtual void Entered(ReadTopic topic) = 0;
  /// The record of the running step has given the item with this number, which is in the problem.
  virtual void Stored(ReadItem item, int number) = 0;
};

/// The observer of the calling thread, set by an ObserverScope only; null in the program.
///
/// The readers find it here and not among their parameters, because some that have something to
/// note (number texts, unit systems, stress-strain matrices) are far below those that know the
/// file. Two threads read two files, each with its own observer or with none.
extern constinit thread_local ReadObserver* readObserver;

/// Makes an observer that of the calling thread, until the scope ends; scopes nest.
class ObserverScope
{
public:
  explicit ObserverScope(ReadObserver& observer);
  ObserverScope(const ObserverScope&) = delete;
  ObserverScope& operator=(const ObserverScope&) = delete;
  ~ObserverScope();

private:
  ReadObserver* previous;
};

/// Runs a step; true when it has ended without an error. Only with an observer does the caller
/// continue after an error.
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

inline void NoteTopic(ReadTopic topic)
{
  if (readObserver)
    readObserver->Entered(topic);
}

inline void NoteStored(ReadItem item, int number)
{
  if (readObserver)
    readObserver->Stored(item, number);
}

/// The numbers that a value may be.
enum class NumberKind : bool
{
  kReal,
  kWhole  ///< decimal integers
};

/// Notes a number that ends at `stop` although its word goes on, other than by ':' or '='.
void NoteNumberEnd(const char* stop, const TextScan& text);

/// Notes the values of a record, which began at `from` and end at the place reached: its number,
/// values that are not one number from end to end, and whether the values cross a line end.
void NoteValues(const char* from, const TextScan& text, NumberKind kind);
/// The same, and the text after the values.
void NoteRecordEnd(const char* from, const TextScan& text);
/// Notes a record of a list whose values, which began at `from`, cannot be read at the place
/// reached. The word there is noted with the reason only. count: the number of its values.
void NoteBrokenRecord(const char* from, const TextScan& text, NumberKind kind, int count);

/// Notes the items of a record whose keys it has already. Empty without an observer.
class ItemsSeen
{
public:
  /// item: the key and its value, in the text. name: the key without what may follow it.
  void Add(std::string_view item, std::string_view name);

private:
  std::vector<std::string_view> keys;  ///< each with the length of its name
};

/// Notes a value that is not one number from end to end.
void NoteNumber(std::string_view value, NumberKind kind = NumberKind::kReal);
/// Notes each word between white space that is not one number from end to end. text: the values of
/// a record, of which the last may go on after `text`: `after` is the text there. The last of whole
/// numbers may be followed by ':' or '='.
void NoteNumbers(std::string_view text, std::string_view after,
                 NumberKind kind = NumberKind::kReal);

}  // namespace morlen
