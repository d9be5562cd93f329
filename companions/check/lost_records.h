#pragma once

#include <string>
#include <string_view>

namespace morlen::check {

/// Text that the readers have passed over, from the first word in it that is no comment, and the
/// word where reading continues.
struct SkippedText
{
  std::string_view text;
  std::string_view target;  ///< the word, or a name for it
  int targetLine;
  int endLine = 0;  ///< of the "end" in front of the text; 0 when it follows none
};

/// A list of records that ended before its "end".
struct EndedList
{
  std::string_view name;  ///< its keyword, as in the file
  int line;               ///< of the keyword
  bool broken;            ///< a part of the first skipped line was read as a record
  std::string reason;     ///< why the rest of it was not; empty when not known
  SkippedText skipped;    ///< from the line or word that ended the list
};

/// True when a line of the text begins with a number or a keyword.
bool HoldsRecords(std::string_view text);
/// True when a line of the text begins with a keyword.
bool HoldsBlocks(std::string_view text);
/// The same, or the line that ended the list looks like a record with a fault.
bool HoldsRecords(const EndedList& list);

/// The reason why the text is skipped.
std::string AboutSkipped(const SkippedText& skipped);
/// The same, and how much is lost by it.
std::string AboutLost(const SkippedText& skipped);
/// The reason why the list ended, and the records that are lost.
std::string AboutEndedList(const EndedList& list);

}  // namespace morlen::check
