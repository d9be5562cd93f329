// The blocks of supports and nodal loads. A record is one line "node [flags] values items".

#include "problem/nodal_reader.h"

#include <memory>
#include <string_view>

#include "base/digits.h"
#include "base/errorwriter.h"
#include "base/number_text.h"
#include "base/read_observer.h"
#include "base/record_hint.h"
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

// Notes a value other than 0 at each free component, and flags without a blank after them. values:
// the record after its flags; tail: the record after its values.
void NoteSupport(const TextScan& text, const int* flags, int n, std::string_view values,
                 std::string_view tail)
{
  if (!readObserver)
    return;
  if (!IsWhite(values[0]))
    Note(ReadEvent::GluedValue, text.WordAround(values.data()));
  NoteNumbers({values.data(), tail.data()}, tail);
  for (int i = 0; i < n; ++i) {
    values.remove_prefix(values.find_first_not_of(" \t\r\v\f"));
    const char* const start = values.data();
    double value = 0.0;
    ScanDouble(values, value);
    if (flags[i] == Constraint::kFree && value != 0.0)
      Note(ReadEvent::FreeValue, {start, values.data()});
  }
}

[[noreturn]] void RefuseConstraint(const RecordText& record, int n, int number)
{
  ExplainNumbers(record, {.flags = n, .values = n});
  Fatal(n == 3 ? "Not reading correctly the constraints. Number="
               : "Not reading correctly the constraints. -A- Number=",
        number, "\n");
}

/// The values of a record of the block `constraints`.
struct SupportRecord
{
  int flags[kMaxComponents] = {};
  double values[kMaxComponents] = {};
  RecordItems items;
};

SupportRecord ReadSupport(TextScan& text, int number, int n, const Units& units)
{
  SupportRecord support;
  const RecordText record(UpToNull(text.ReadRestOfLine()), &text);
  std::string_view tail = record.text;
  if (!ScanFlags(tail, n, support.flags))
    RefuseConstraint(record, n, number);
  const std::string_view afterFlags = tail;
  if (!ScanValues(tail, n, support.values))
    RefuseConstraint(record, n, number);
  NoteSupport(text, support.flags, n, afterFlags, tail);
  support.items = ReadRecordItems(record.Part(tail), units, AngleItems::kRead,
                                  "Not reading correctly the constraints. -B- Number=", number);
  return support;
}

void EnterSupport(const SupportRecord& support, int n, Constraint& constraint)
{
  const Units::Ratios& ratios = support.items.ratios;
  constraint.EnterValuesAndFlags(support.flags, support.values, n, ratios.force, ratios.length);
  if (support.items.anglesGiven)
    constraint.EnterEulerAngles(support.items.angles);
}

void ReadConstraint(TextScan& text, int number, Node& node, const NodeComponents& components,
                    const Units& units)
{
  const SupportRecord support = ReadSupport(text, number, components.count, units);
  if (!node.constraint)
    node.constraint = std::make_unique<Constraint>(components);
  EnterSupport(support, components.count, *node.constraint);
  NoteStored(ReadItem::Support, number);
}

// The name of a component of a node, from 0.
const char* NameOf(int component, const NodeComponents& components)
{
  constexpr const char* kDisplacements[] = {"x", "y", "z"};
  constexpr const char* kRotations[] = {"the rotation about x", "the rotation about y",
                                        "the rotation about z"};
  if (component < components.translations)
    return kDisplacements[component];
  return kRotations[components.Rotations() == 1 ? 2 : component - components.translations];
}

// A settlement changes values that the model prescribes, and nothing else.
void RequireSettlement(const SupportRecord& settlement, int number, const Node& node,
                       const NodeComponents& components)
{
  if (settlement.items.anglesGiven) {
    Explain("the values are in the axes that the support has in the model");
    Fatal("error: the support of node ", number, " can't get other axes in a load case\n");
  }
  for (int i = 0; i < components.count; ++i) {
    const int flag = settlement.flags[i];
    if (flag == Constraint::kSpring) {
      Explain("flag 1 sets a prescribed value, 0 leaves the component as it is");
      Fatal("error: node ", number, " can't get a spring in a load case\n");
    }
    if (flag == Constraint::kPrescribed &&
        (!node.constraint || node.constraint->flags[i] != Constraint::kPrescribed)) {
      Explain("a load case sets values of components that have flag 1 in the model");
      Fatal("error: the model does not prescribe ", NameOf(i, components), " of node ", number,
            "\n");
    }
  }
}

void ReadSettlement(TextScan& text, int number, Node& node, const NodeComponents& components,
                    const Units& units)
{
  const SupportRecord settlement = ReadSupport(text, number, components.count, units);
  RequireSettlement(settlement, number, node, components);
  if (node.constraint)
    EnterSupport(settlement, components.count, *node.constraint);
  NoteStored(ReadItem::Support, number);
}

[[noreturn]] void RefuseLoad(const RecordText& record, const char* message, int n, int number)
{
  ExplainNumbers(record, {.values = n});
  Fatal(message, number, "\n");
}

void ReadNodalLoad(TextScan& text, int number, Node& node, const NodeComponents& components,
                   const Units& units)
{
  const int n = components.count;
  double values[kMaxComponents] = {};
  const std::string_view line = text.ReadRestOfLine();
  const RecordText record(UpToNull(line), &text);
  if (line.empty())
    RefuseLoad(record, "Not reading correctly the loads A. Number=", n, number);
  std::string_view tail = record.text;
  if (!ScanValues(tail, n, values))
    RefuseLoad(record,
               n == 3 ? "Not reading correctly the loads B. Number="
                      : "Not reading correctly the loads C. Number=",
               n, number);
  NoteNumbers({record.text.data(), tail.data()}, tail);
  const RecordItems items = ReadRecordItems(record.Part(tail), units, AngleItems::kIgnored,
                                            "Not reading correctly the loads. -D- Number=", number);
  if (!node.load)
    node.load = std::make_unique<Load>(components);
  node.load->AddValues(values, n, items.ratios.force, items.ratios.length);
  NoteStored(ReadItem::NodalLoad, number);
}

}  // namespace

void ReadConstraints(TextScan& text, Problem& problem)
{
  ReadRecords(text, [&](int number) {
    Node& node =
        RequireNode(problem, number, text, "error: Trying to assign constrain to unknown node\n");
    ReadConstraint(text, number, node, problem.components, problem.units);
  });
}

void ReadSettlements(TextScan& text, Problem& problem)
{
  ReadRecords(text, [&](int number) {
    Node& node =
        RequireNode(problem, number, text, "error: Trying to assign constrain to unknown node\n");
    ReadSettlement(text, number, node, problem.components, problem.units);
  });
}

void ReadNodalLoads(TextScan& text, Problem& problem)
{
  ReadRecords(text, [&](int number) {
    Node& node =
        RequireNode(problem, number, text, "error: Trying to assign Load to unknown node\n");
    ReadNodalLoad(text, number, node, problem.components, problem.units);
  });
}

}  // namespace morlen
