#pragma once

#include <cstddef>
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
      : begin(text.data()), next(begin), end(begin + text.size())
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

  /// Skips up to a decimal digit; false when there is none.
  bool FindDigit();

  /// Skips newlines, carriage returns, blanks, ':' and '='. Returns 1 when a '#'
  /// follows (consumed), -1 at the end of the text, else 0.
  int TakeOutSpaces();

  Place Where() const;
  /// The place reached, and the rest of its line without the newline: views of the text.
  const char* Here() const { return next; }
  std::string_view LineAhead() const;
  /// Bytes from the beginning of the text to a place in it; -1 for other places.
  std::ptrdiff_t OffsetOf(const char* place) const;

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
};

/// Reads words up to and including the first that contains `word` (lower case),
/// whatever the case in the text. Fatal when the text ends first, also directly after a word
/// that matches.
void FindThisWord(TextScan& text, const char* word);
/// The same for the "end" that closes a block, and for the first word after a block. Only the
/// notices of skipped text differ: the line of an "end" may name its block.
void FindBlockEnd(TextScan& text);
void FindWordAfterBlock(TextScan& text, const char* word);

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
/// A key is ended by a blank, ':', '=' or a line end, a value by a blank or a line
/// end; such characters between the two are skipped, so that "E=2", "E 2" and
/// "E = 2" are the same item. The text is borrowed.
class ItemScanner
{
public:
  explicit ItemScanner(std::string_view text) : rest(text) {}

  /// The next key; empty when there is none.
  std::string_view Key() { return Token(" :=\r\n", " :=\r\n"); }
  /// The value of the key just read; empty when there is none.
  std::string_view Value() { return Token(" :=\r\n", " \r\n"); }

private:
  std::string_view Token(std::string_view skipped, std::string_view ending);

  std::string_view rest;
};

/// The number that the value of an item begins with; 0 when there is none.
double NumberOfItem(std::string_view value);

/// The text up to its first null character, which ends a record of one line.
std::string_view UpToNull(std::string_view text);

/// One item of a record that gives an Euler angle: "Euler1" to "Euler3" in any
/// case gives 0 to 2, another key that begins with "Euler" is fatal, others give -1.
int EulerIndex(std::string_view key);

}  // namespace morlen
