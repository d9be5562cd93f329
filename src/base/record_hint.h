#pragma once

#include <string>
#include <string_view>

#include "base/read_observer.h"
#include "base/textscan.h"

namespace morlen {

// Hints for records that cannot be read (see Explain): they name the cause, its line, and what to
// write instead. All of them work on the text of a record after an error; none is called for a
// record that is right.

/// "line 12: " with the line of a place of the text.
std::string LinePrefix(const TextScan& text, const char* place);
/// The same for the beginning of a record; empty when its file is not known.
std::string LinePrefix(const RecordText& record);

/// The reason why a word is no number, and the number to write: "'2,1' is not a number: ...". Empty
/// for a number.
std::string FaultOfNumber(std::string_view word, NumberKind kind = NumberKind::kReal);

/// "3 numbers are expected, 2 are there", by the words of a text up to a comment.
std::string CountFault(std::string_view text, int expected);

/// The numbers that a record begins with: flags, or the index of a face, or none of the two; then
/// values.
struct RecordForm
{
  int flags = 0;
  bool withFace = false;
  int values = 0;
  const char* content = nullptr;  ///< names them all; null for "2 flags and 2 values" and the like
};

/// Makes the hint for a record whose numbers cannot be read. record: the rest of the record after
/// its number.
void ExplainNumbers(const RecordText& record, const RecordForm& form);

/// The fault of a number that was cut in two, so that its end is in the place of a key: that of
/// "2,1" for the key ",1". Empty for other keys.
std::string FaultBefore(const RecordText& key, NumberKind kind = NumberKind::kReal);

/// Makes the hint for the number of a record, which ends at `stop` and is below 1.
void ExplainIndex(const TextScan& text, const char* stop);

/// Makes the hint for a key without a value.
void ExplainNoValue(const RecordText& key);

}  // namespace morlen
