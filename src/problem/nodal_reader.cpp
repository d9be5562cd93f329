// The blocks of supports and nodal loads: records of one line each,
// "node [flags] values items".

#include <memory>
#include <string_view>

#include "base/errorwriter.h"
#include "base/number_text.h"
#include "base/read_observer.h"
#include "model/constraint.h"
#include "model/nodal_load.h"
#include "model/node.h"
#include "numeric/plex_range.h"
#include "problem/project.h"

namespace morlen {

namespace {

struct NodalRecord
{
  int flags[kMaxComponents] = {};
  double values[kMaxComponents] = {};
  bool anglesGiven = false;
  double angles[3] = {};
  Units::Ratios ratios;
};

// n one-digit flags, each 0, 1 or 2.
bool ScanFlags(std::string_view& text, int n, int* flags)
{
  for (int i = 0; i < n; ++i) {
    if (!ScanInt(text, flags[i], 10, 1) || flags[i] < Constraint::kFree ||
        flags[i] > Constraint::kSpring)
      return false;
  }
  return true;
}

bool ScanValues(std::string_view& text, int n, double* values)
{
  for (int i = 0; i < n; ++i) {
    if (!ScanDouble(text, values[i]))
      return false;
  }
  return true;
}

// The items behind the values; keys that are not known are ignored, angles where they
// are not asked for too.
void ScanItems(std::string_view tail, const Units& units, bool withAngles, const char* misread,
               int node, NodalRecord& record)
{
  ItemScanner items(tail);
  for (std::string_view key = items.Key(); !key.empty(); key = items.Key()) {
    const std::string_view value = items.Value();
    if (value.empty())
      Fatal(misread, node, "\n");
    const int angle = withAngles ? EulerIndex(key) : -1;
    if (angle >= 0) {
      record.anglesGiven = true;
      record.angles[angle] = NumberOfItem(value);
    } else if (HasPrefix(key, "units")) {
      record.ratios = units.RatiosOf(*units.GiveUnitsBase(value));
    } else {
      Note(ReadEvent::IgnoredKey, key);
    }
  }
}

}  // namespace

void Project::ReadFAConstraints(TextScan& text)
{
  for (int number = 0; ReadRecordNumber(text, number);)
    Attempt(&text, [&] { ReadConstraint(text, number); });
  SkipBlockEnd(text);
}

void Project::ReadConstraint(TextScan& text, int number)
{
  const int n = freeDegrees;
  Node* node = FindNode(number);
  if (!node)
    Fatal("error: Trying to assign constrain to unknown node\n");
  NodalRecord record{.ratios = DefaultRatios()};
  std::string_view tail = UpToNull(text.ReadRestOfLine());
  if (!ScanFlags(tail, n, record.flags) || !ScanValues(tail, n, record.values))
    Fatal(n == 3 ? "Not reading correctly the constraints. Number="
                 : "Not reading correctly the constraints. -A- Number=",
          number, "\n");
  ScanItems(tail, *this, true, "Not reading correctly the constraints. -B- Number=", number,
            record);
  if (!node->constraint)
    node->constraint = std::make_unique<Constraint>(n, translations);
  node->constraint->EnterValuesAndFlags(record.flags, record.values, n, record.ratios.force,
                                        record.ratios.length);
  if (record.anglesGiven)
    node->constraint->EnterEulerAngles(record.angles);
  NoteStored(ReadItem::Support, number);
}

void Project::ReadFALoads(TextScan& text)
{
  for (int number = 0; ReadRecordNumber(text, number);)
    Attempt(&text, [&] { ReadNodalLoad(text, number); });
  SkipBlockEnd(text);
}

void Project::ReadNodalLoad(TextScan& text, int number)
{
  const int n = freeDegrees;
  Node* node = FindNode(number);
  if (!node)
    Fatal("error: Trying to assign Load to unknown node\n");
  NodalRecord record{.ratios = DefaultRatios()};
  const std::string_view line = text.ReadRestOfLine();
  if (line.empty())
    Fatal("Not reading correctly the loads A. Number=", number, "\n");
  std::string_view tail = UpToNull(line);
  if (!ScanValues(tail, n, record.values))
    Fatal(n == 3 ? "Not reading correctly the loads B. Number="
                 : "Not reading correctly the loads C. Number=",
          number, "\n");
  ScanItems(tail, *this, false, "Not reading correctly the loads. -D- Number=", number, record);
  if (!node->load)
    node->load = std::make_unique<Load>(n, translations);
  node->load->AddValues(record.values, n, record.ratios.force, record.ratios.length);
}

}  // namespace morlen
