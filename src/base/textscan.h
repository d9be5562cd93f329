#pragma once

#include <cstddef>
#include <span>
#include <string>
#include <string_view>

#include "base/number_text.h"

namespace morlen {

/// The text of a problem file and the place reached in it.
///
/// Numbers and words are read as a formatted input stream reads them (leading
/// white space skipped, a number ends at the first character that cannot belong
/// to it), but a failed read leaves no error state, and a number that is
/// not finite, or too large for its type, is no number. The text is borrowed.
class TextScan
{
public:
  /// The most characters kept of a word or of the rest of a line; the others are skipped.
  static constexpr std::size_t kLimit = 1023;

  struct Place
  {
    int line;
    int column;  ///< both from 1, in bytes
  };

  explicit TextScan(std::string_view text)
      : begin(text.data()),
        next(begin),
        end(begin + text.size()),
        commentEnd(begin),
        lastPlace(begin)
  {
  }
  explicit TextScan(const char* text) : TextScan(std::string_view(text)) {}
  explicit TextScan(std::string&& text) = delete;  // the view would outlive it

  bool AtEnd() const { return next == end; }
  bool AtDigit() const { return next != end && IsDigit(*next); }
  bool ReadInt(int& value)
  {
    next = SkipWhite(next, end);
    return Accept(ScanPlainInt(next, end), value) || ReadIntSlow(value);
  }
  bool ReadDouble(double& value)
  {
    next = SkipWhite(next, end);
    return Accept(ScanPlainDouble(next, end), value) || ReadDoubleSlow(value);
  }

  /// Reads the rest of the line when it is nothing but one plain whole number above 0 without
  /// leading zeros, and consumes the line; else false, and everything stays.
  bool ReadLastNumber(int& value);

  /// The next word between white space; empty at the end of the text.
  std::string_view ReadWord();

  /// From here to the end of the line, which is consumed: a view of the text.
  std::string_view ReadRestOfLine();
  void SkipLine()
  {
    if (next != end && *next == '\n')
      ++next;
    else
      SkipRestOfLine();
  }

  /// Skips white space, ':' and '='. Returns 1 when a '#' follows (consumed), -1 at the end of the
  /// text, else 0.
  int TakeOutSpaces();

  Place Where() const;
  /// The characters around a place of the text up to white space on both sides. Empty between two
  /// blanks.
  std::string_view WordAround(const char* place) const;
  /// The place reached, and the rest of its line without the newline: views of the text.
  const char* Here() const { return next; }
  std::string_view LineAhead() const;
  /// Bytes from the beginning of the text to a place in it; -1 for other places.
  std::ptrdiff_t OffsetOf(const char* place) const;
  /// The line of a place of the text, from 1. Cheap for a place near that of the last call.
  int LineOf(const char* place) const;
  std::string_view WholeText() const { return {begin, end}; }
  std::string_view TextAhead() const { return {next, end}; }

  /// Goes to another place of the text. inComment: the place is in a comment that begins before it.
  void GoTo(const char* place, bool inComment = false);
  /// The end of the comment that the place reached is in; not after that place when there is none.
  const char* CommentEnd() const { return commentEnd; }

  /// A block of the file, for messages.
  struct Block
  {
    std::string_view keyword = {};  ///< in the text; empty before the first block
    const char* endWord = nullptr;  ///< the word that closes it; null while it is open
  };
  void EnterBlock(std::string_view keyword) { block = {keyword}; }
  void LeaveBlock(const char* endWord) { block.endWord = endWord; }
  /// The block entered last.
  const Block& LastBlock() const { return block; }

private:
  template <class T>
  bool Accept(const Scanned<T>& number, T& value)
  {
    if (!number.stop)
      return false;
    next = number.stop;
    value = number.value;
    return true;
  }
  bool ReadIntSlow(int& value);
  bool ReadDoubleSlow(double& value);
  void SkipRestOfLine();

  const char* begin;
  const char* next;
  const char* end;
  const char* commentEnd;
  mutable const char* lastPlace;  ///< the place that LineOf was asked for last, and its line
  mutable int lastLine = 1;
  Block block;
};

/// A record or a part of it, and the text that it belongs to: hints name its line. Both are
/// borrowed; without the text a hint has no line.
struct RecordText
{
  RecordText(const char* record) : text(record) {}
  RecordText(const std::string& record) : text(record) {}
  RecordText(std::string_view record, const TextScan* file = nullptr) : text(record), scan(file) {}

  /// Another part of the same text.
  RecordText Part(std::string_view part) const { return {part, scan}; }

  std::string_view text;
  const TextScan* scan = nullptr;
};

/// True when a text glued to a word by '=' or ':' is the value that belongs to the word.
using IsValue = bool (*)(std::string_view glued);

/// Reads words up to and including the first that contains `word` (lower case), whatever the case
/// in the text, and returns it. With a value glued to it ("nnode=2", see IsValue) the word ends
/// before the '=' or ':'. Fatal when the text ends first, also directly after a word that matches.
///
/// A word in a comment (from a word that begins with '#' to the end of its line) counts only where
/// no other follows it before the next keyword of a block or "end".
std::string_view FindThisWord(TextScan& text, const char* word, IsValue isValue = nullptr);
/// The same, but returns an empty word instead of ending the run; the text stays.
std::string_view SearchWord(TextScan& text, const char* word, IsValue isValue = nullptr);
/// The end of the run for a word that the text ahead does not have. Goes to the end of the text.
[[noreturn]] void FailSearch(TextScan& text, const char* word);

/// FindThisWord for the "end" that closes a block, and for the first word after a block. Without
/// an observer, a warning reports the lines skipped. The line of an "end" may name its block.
void FindBlockEnd(TextScan& text);
std::string_view FindWordAfterBlock(TextScan& text, const char* word);

/// Skips up to a decimal digit; false when there is none. Comments: as for FindThisWord.
bool FindDigit(TextScan& text);

/// The value of a keyword: the rest `glued` of the keyword's word, or else the next word, without
/// the characters ' ', '=' and ':' in front; words of these only are skipped. Empty at the end of
/// the text.
std::string_view ReadValue(TextScan& text, std::string_view glued = {});

/// The keywords of the blocks of a problem file, with the two lists of a mesh.
std::span<const std::string_view> BlockKeywords();
/// True for one of them, in any case.
bool IsBlockKeyword(std::string_view word);

inline int TakeOutSpaces(TextScan& text)
{
  return text.TakeOutSpaces();
}

/// Skips blanks and comment lines, up to the next record of a block.
inline void SkipComments(TextScan& text)
{
  while (!text.AtDigit() && text.TakeOutSpaces() == 1)
    text.SkipLine();
}

/// Starts the next record of a block: skips comments and reads the record's number. False at a word
/// that is no number, which ends the block.
inline bool ReadRecordNumber(TextScan& text, int& number)
{
  SkipComments(text);
  return text.ReadInt(number);
}

/// Consumes the "end" that closes a block, with the rest of its line.
void SkipBlockEnd(TextScan& text);

/// True when text begins with prefix, or equals the other text; case does not count.
bool HasPrefix(std::string_view text, std::string_view prefix);
bool EqualsNoCase(std::string_view a, std::string_view b);

/// Cuts the tail of a record into items: a key, then its value.
///
/// A key is ended by white space, ':' or '=', a value by white space; such characters between the
/// two are skipped, so that "E=2", "E 2" and "E = 2" are the same item. A '#' in the place of a key
/// begins a comment, which ends the items. The text is borrowed.
class ItemScanner
{
public:
  explicit ItemScanner(std::string_view text) : rest(text) {}

  /// The next key; empty when there is none.
  std::string_view Key();
  /// The value of the key just read; empty when there is none.
  std::string_view Value();
  /// The text after the key or value read last; from its '#' when a comment has ended the items.
  std::string_view Rest() const { return rest; }

private:
  void SkipDelimiters();
  std::string_view Cut(std::string_view ending);

  std::string_view rest;
};

/// The items of a record up to the comment that follows them.
std::string_view BeforeComment(std::string_view items);

/// The number that the value of an item begins with; 0 when there is none.
double NumberOfItem(std::string_view value);

/// The text up to its first null character, which ends a record of one line.
std::string_view UpToNull(std::string_view text);

/// One item of a record that gives an Euler angle: "Euler1" to "Euler3" in any
/// case gives 0 to 2, another key that begins with "Euler" is fatal, others give -1.
int EulerIndex(const RecordText& key);

}  // namespace morlen
