#include "problem/pressure_load.h"

#include <algorithm>
#include <cmath>
#include <string>

#include "base/digits.h"
#include "base/errorwriter.h"
#include "base/number_slip.h"
#include "base/number_text.h"
#include "base/read_observer.h"
#include "base/record_hint.h"
#include "base/text_parts.h"
#include "model/euler.h"
#include "model/node.h"
#include "model/units.h"
#include "numeric/block_rotation.h"
#include "numeric/matriu.h"
#include "problem/beam_span.h"
#include "problem/record_items.h"

namespace morlen {

namespace {

// The numbers of a record: a face index or none, then `least` to `most` values.
struct RecordShape
{
  bool withFace;
  int least, most;
  bool strict = false;  // white space follows the face, and items or nothing the values
};

// True when the last key of the items has no value.
bool EndsInKey(std::string_view items)
{
  ItemScanner scan(items);
  while (!scan.Key().empty()) {
    if (scan.Value().empty())
      return true;
  }
  return false;
}

// True for the end of a record with items or without: a number or a separator is no key.
bool BeginsWithItem(std::string_view rest)
{
  if (!rest.empty() && !IsWhite(rest[0]))
    return false;
  const std::string_view key = ItemScanner(rest).Key();
  return !BeginsWithNumber(key) && key.find_first_of(",;") != 0 && !EndsInKey(rest);
}

// Notes words that are no numbers as a whole. read: the numbers of the record; tail: what follows.
void NoteNumbersOf(const RecordShape& shape, std::string_view read, std::string_view tail)
{
  if (!readObserver)
    return;
  if (shape.withFace) {
    const char* const end = tail.data() + tail.size();
    const char* const face = SkipWhite(read.data(), end);
    const char* const stop = std::find_if(face, end, IsWhite);
    NoteNumber({face, stop}, NumberKind::kWhole);
    read = {stop, read.data() + read.size()};
  }
  NoteNumbers(read, tail);
}

bool ScanRecord(std::string_view& text, const RecordShape& shape, double* values, int& face)
{
  std::string_view rest = text;
  if (shape.withFace && !ScanInt(rest, face, 0, 0))
    return false;
  if (shape.withFace && shape.strict && !rest.empty() && !IsWhite(rest[0]))
    return false;
  int given = 0;
  while (given < shape.most && ScanDouble(rest, values[given]))
    ++given;
  if (given < shape.least)
    return false;
  if (!shape.withFace && shape.strict && !BeginsWithItem(rest))
    return false;
  NoteNumbersOf(shape, {text.data(), rest.data()}, rest);
  text = rest;
  return true;
}

// A load on a solid in a file with a 2d header: face and three numbers, else the two numbers of a
// load in the plane, which acts over the volume.
bool ScanSolidInPlane(std::string_view& text, PreassureLT_type type, double* values, int& face)
{
  if (ScanRecord(text, {.withFace = true, .least = 3, .most = 3, .strict = true}, values, face))
    return true;
  face = -1;
  const char* const from = text.data();
  if (!ScanRecord(text, {.withFace = false, .least = 2, .most = 2, .strict = true}, values, face))
    return false;
  if (type == PreassureLT_type::Face)
    Note(ReadEvent::FaceMissing, {from, text.data()});
  return true;
}

bool ScanNumbers(std::string_view& text, PROBLEMTYPE problem, ElemType elemType,
                 PreassureLT_type type, int elemNumber, double* values, int& face)
{
  if (elemType == Tetrahedra && problem == kPlane)
    return ScanSolidInPlane(text, type, values, face);
  if (elemType == Tetrahedra)
    return ScanRecord(text, {true, 3, 3}, values, face);
  if (problem == kPlane)
    return ScanRecord(text, {false, 2, 2}, values, face);
  if (type == PreassureLT_type::Local)
    return ScanRecord(text, {false, 3, 4}, values, face);
  if (type != PreassureLT_type::Face)
    return ScanRecord(text, {false, 3, 3}, values, face);
  if (elemType == Linear)
    Fatal("error: applying a shell load to a beam element. ElemNum=", elemNumber, "\n");
  if (ScanRecord(text, {true, 3, 3}, values, face))
    return true;
  face = -1;
  return ScanRecord(text, {false, 3, 3}, values, face);
}

// The items of a record, for the hint.
RecordForm FormOf(PROBLEMTYPE problem, ElemType elemType, PreassureLT_type type)
{
  if (elemType == Tetrahedra && problem == kPlane)
    return {.withFace = true,
            .values = 3,
            .content = "the index of a face and 3 values, or 2 values over the volume,"};
  if (elemType == Tetrahedra)
    return {.withFace = true, .values = 3};
  if (problem == kPlane)
    return {.values = 2};
  if (type == PreassureLT_type::Face)
    return {.values = 3, .content = "3 values, or the index of an edge and 3 values,"};
  return {.values = 3};
}

// Refuses a record with a number too many whose face is the beginning of a real number.
void RefusePartOfFace(const RecordText& record, int elemNumber)
{
  const std::string_view first = FirstWord(record.text);
  if (IsNumber(first, NumberKind::kWhole))
    return;
  Explain(LinePrefix(record), Quoted(first),
          " is read as the index of a face or an edge and a value: an index is a whole number");
  Fatal("Not reading correctly the preassure_loads. ElemNum=", elemNumber, "\n");
}

// The factor for a force per length or per area. A load per volume of a solid gets the factor of an
// area too, which is right only when both systems have the same unit of length.
double UnitFactor(ElemType elemType, int face, const Units::Ratios& ratios)
{
  const double perLength = ratios.force / ratios.length;
  if (elemType == Linear || (elemType == Triangle && face != -1))
    return perLength;
  if (elemType == Triangle || elemType == Tetrahedra)
    return perLength / ratios.length;
  Fatal("error: Unknown elem type in PreassureLT::ReadYourLoad\n");
}

// The length of a beam projected at right angles to a load, divided by its length: the sine of the
// angle between the two.
double ProjectedPart(const BeamSpan& beam, const ReaVec& load)
{
  const double size = load.modul();
  if (!(size > 0.0))
    return 1.0;
  const Node& first = *beam.elem(0);
  const Node& second = *beam.elem(1);
  ReaVec d(3);
  for (int k = 1; k <= second.Size(); ++k)
    d(k) = second(k) - first(k);
  return VectorProd(d, load).modul() / (beam.L * size);
}

bool LeavesPlane(const double* force)
{
  const double size = std::hypot(force[0], force[1], force[2]);
  return !(std::fabs(force[2]) <= EPSILON * size);
}

}  // namespace

void PreassureLT::ReadYourLoad(int elemNumber, PROBLEMTYPE problem, const RecordText& record,
                               const Units& units, ElemType elemType)
{
  std::string_view text = record.text;
  if (!ScanNumbers(text, problem, elemType, type, elemNumber, values, face)) {
    ExplainNumbers(record, FormOf(problem, elemType, type));
    Fatal("Not reading correctly preassure_loads. ElemNum=", elemNumber, "\n");
  }
  if (face >= 0 && BeginsWithNumber(text) && EndsInKey(text))
    RefusePartOfFace(record, elemNumber);
  const RecordItems items =
      ReadRecordItems(record.Part(text), units, AngleItems::kRead,
                      "Not reading correctly the preassure_loads. ElemNum=", elemNumber);
  if (items.anglesGiven) {
    Matriu T;
    FillFrame(AxesFromEuler(items.angles), 3, T);
    TurnVector(T, Turn::ToGlobal, 3, values);
    if (problem == kPlane && elemType != Tetrahedra && LeavesPlane(values))
      Fatal("error: Local z axe must be (0,0,1) for 2D problems.Element:", elemNumber, "\n");
  }
  const double factor = UnitFactor(elemType, face, items.ratios);
  for (double& value : values)
    value *= factor;
}

void PreassureLT::EnterWeight(double weight, const ReaVec& gravity, PROBLEMTYPE problem)
{
  if (problem == kPlane && gravity(3) > EPSILON)
    Fatal("error: for 2D problems GravityDirection_Z must be 0.0\n");
  for (int k = 0; k < 3; ++k)
    values[k] = weight * gravity(k + 1);
  if (problem == kPlane)
    values[2] = 0.0;
}

void PreassureLT::AddToSpanLoad(const BeamSpan& beam, SpanLoad& load) const
{
  double local[6];
  std::copy_n(values, 6, local);
  if (type == PreassureLT_type::GlobalProjected) {
    const double factor = ProjectedPart(beam, ReaVec(values[0], values[1], values[2]));
    for (double& value : local)
      value *= factor;
  }
  if (type != PreassureLT_type::Local)
    TurnVector(beam.T, Turn::ToLocal, 6, local);
  for (int k = 0; k < 4; ++k)
    load.q[k] += local[k];
}

std::unique_ptr<BaseElemLoads> PreassureLT::Copy() const
{
  return std::make_unique<PreassureLT>(*this);
}

ElemLoadRecord PreassureLT::Describe() const
{
  ElemLoadRecord record{KeywordOf(type), type, {}, face};
  std::copy_n(values, 6, record.values.begin());
  return record;
}

}  // namespace morlen
