#pragma once

#include "base/read_observer.h"
#include "base/textscan.h"
#include "model/units.h"

namespace morlen {

class Elem;
class Node;
struct Problem;

/// Reads a block of records that begin with a number, from after the keyword to the block's end.
/// Calls readRecord(number) at the rest of each record.
template <class ReadRecord>
void ReadRecords(TextScan& text, ReadRecord readRecord)
{
  for (int number = 0; ReadRecordNumber(text, number);) {
    NoteNumberEnd(text.Here(), text);
    Attempt(&text, [&] { readRecord(number); });
  }
  SkipBlockEnd(text);
}

/// The items at the end of a record of a support or a load.
struct RecordItems
{
  bool anglesGiven = false;  ///< true when the record has an item of `angles`
  double angles[3] = {};     ///< Euler angles, radians
  Units::Ratios ratios;      ///< of the record's unit system, else the default ratios
};

/// Euler angles of a record are read, or ignored as unknown keys are.
enum class AngleItems : bool
{
  kIgnored,
  kRead
};

/// Reads the items "Euler1=... Euler2=... Euler3=... units=..." of a record, in any order.
/// Ignores unknown keys. Fatal with `misread`, `number` and a newline when a key has no value,
/// and for an unknown unit system.
RecordItems ReadRecordItems(const RecordText& tail, const Units& units, AngleItems angleItems,
                            const char* misread, int number);

/// The node of a record whose number has just been read. Fatal with `message` when no mesh has it.
Node& RequireNode(const Problem& problem, int number, const TextScan& text, const char* message);

/// The element of a record whose number has just been read. Fatal when no mesh has it: `message`,
/// the number, " and it does not exist\n".
const Elem& RequireElem(const Problem& problem, int number, const TextScan& text,
                        const char* message);

}  // namespace morlen
