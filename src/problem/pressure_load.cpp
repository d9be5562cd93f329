#include "problem/pressure_load.h"

#include <algorithm>
#include <cmath>
#include <string>

#include "base/errorwriter.h"
#include "base/number_text.h"
#include "model/euler.h"
#include "model/node.h"
#include "model/units.h"
#include "numeric/block_rotation.h"
#include "numeric/matriu.h"
#include "problem/beam_span.h"
#include "problem/record_items.h"

namespace morlen {

namespace {

// The numbers of a record: an optional face index, then `least` to `most` values.
struct RecordShape
{
  bool withFace;
  int least, most;
};

bool ScanRecord(std::string_view& text, const RecordShape& shape, double* values, int& face)
{
  std::string_view rest = text;
  if (shape.withFace && !ScanInt(rest, face, 0, 0))
    return false;
  int given = 0;
  while (given < shape.most && ScanDouble(rest, values[given]))
    ++given;
  if (given < shape.least)
    return false;
  text = rest;
  return true;
}

bool ScanNumbers(std::string_view& text, PROBLEMTYPE problem, ElemType elemType,
                 PreassureLT_type type, int elemNumber, double* values, int& face)
{
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

void PreassureLT::ReadYourLoad(int elemNumber, PROBLEMTYPE problem, std::string_view text,
                               const Units& units, ElemType elemType)
{
  if (!ScanNumbers(text, problem, elemType, type, elemNumber, values, face))
    Fatal("Not reading correctly preassure_loads. ElemNum=", elemNumber, "\n");
  const RecordItems items =
      ReadRecordItems(text, units, AngleItems::kRead,
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

ElemLoadRecord PreassureLT::Describe() const
{
  ElemLoadRecord record{KeywordOf(type), type, {}, face};
  std::copy_n(values, 6, record.values.begin());
  return record;
}

}  // namespace morlen
