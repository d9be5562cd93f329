// The blocks of supports and nodal loads. A record is one line "node [flags] values items".

#include "problem/nodal_reader.h"

#include <memory>
#include <string_view>

#include "base/errorwriter.h"
#include "base/number_text.h"
#include "base/read_observer.h"
#include "base/textscan.h"
#include "model/constraint.h"
#include "model/nodal_load.h"
#include "model/node.h"
#include "numeric/plex_range.h"
#include "problem/problem.h"
#include "problem/record_items.h"

namespace morlen {

namespace {

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

void ReadConstraint(TextScan& text, int number, Node* node, const NodeComponents& components,
                    const Units& units)
{
  const int n = components.count;
  if (!node)
    Fatal("error: Trying to assign constrain to unknown node\n");
  int flags[kMaxComponents] = {};
  double values[kMaxComponents] = {};
  std::string_view tail = UpToNull(text.ReadRestOfLine());
  if (!ScanFlags(tail, n, flags) || !ScanValues(tail, n, values))
    Fatal(n == 3 ? "Not reading correctly the constraints. Number="
                 : "Not reading correctly the constraints. -A- Number=",
          number, "\n");
  const RecordItems items = ReadRecordItems(
      tail, units, AngleItems::kRead, "Not reading correctly the constraints. -B- Number=", number);
  if (!node->constraint)
    node->constraint = std::make_unique<Constraint>(components);
  node->constraint->EnterValuesAndFlags(flags, values, n, items.ratios.force, items.ratios.length);
  if (items.anglesGiven)
    node->constraint->EnterEulerAngles(items.angles);
  NoteStored(ReadItem::Support, number);
}

void ReadNodalLoad(TextScan& text, int number, Node* node, const NodeComponents& components,
                   const Units& units)
{
  const int n = components.count;
  if (!node)
    Fatal("error: Trying to assign Load to unknown node\n");
  double values[kMaxComponents] = {};
  const std::string_view line = text.ReadRestOfLine();
  if (line.empty())
    Fatal("Not reading correctly the loads A. Number=", number, "\n");
  std::string_view tail = UpToNull(line);
  if (!ScanValues(tail, n, values))
    Fatal(n == 3 ? "Not reading correctly the loads B. Number="
                 : "Not reading correctly the loads C. Number=",
          number, "\n");
  const RecordItems items = ReadRecordItems(tail, units, AngleItems::kIgnored,
                                            "Not reading correctly the loads. -D- Number=", number);
  if (!node->load)
    node->load = std::make_unique<Load>(components);
  node->load->AddValues(values, n, items.ratios.force, items.ratios.length);
}

}  // namespace

void ReadConstraints(TextScan& text, Problem& problem)
{
  ReadRecords(text, [&](int number) {
    ReadConstraint(text, number, problem.FindNode(number), problem.components, problem.units);
  });
}

void ReadNodalLoads(TextScan& text, Problem& problem)
{
  ReadRecords(text, [&](int number) {
    ReadNodalLoad(text, number, problem.FindNode(number), problem.components, problem.units);
  });
}

}  // namespace morlen
