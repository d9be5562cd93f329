// The settings keywords, and the blocks of unit systems and materials.

#include <algorithm>
#include <climits>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <numbers>
#include <string>
#include <vector>

#include "base/errorwriter.h"
#include "base/number_text.h"
#include "base/read_observer.h"
#include "model/material.h"
#include "numeric/plex_range.h"
#include "problem/project.h"

namespace morlen {

namespace {

constexpr const char* kWhite = " \t\n\v\f\r";

// The whole number at the beginning of a text, 0 when there is none; what does not fit
// is taken as the largest number of its sign.
int ToInt(const std::string& text)
{
  NoteNumber(text);
  return static_cast<int>(
      std::clamp<long>(std::strtol(text.c_str(), nullptr, 10), INT_MIN, INT_MAX));
}

double ReadNumberWord(TextScan& text)
{
  return NumberOfItem(text.ReadWord());
}

bool IsAngle(double angle)
{
  return angle >= EPSILON && angle <= std::numbers::pi;
}

void RequireFactor(double size, const char* message)
{
  if (!IsFactor(size))
    Fatal(message);
}

// The next word of at most 20 characters; a longer one is cut, and its rest is the next.
std::string ScanName(std::string_view& text)
{
  constexpr std::size_t kLongest = 20;
  text.remove_prefix(std::min(text.find_first_not_of(kWhite), text.size()));
  const std::string_view name = text.substr(0, std::min(text.find_first_of(kWhite), kLongest));
  text.remove_prefix(name.size());
  return std::string(name);
}

// A line "name nameN nameM namePa facN facM".
UnitsBase ReadUnitsBase(std::string_view line)
{
  UnitsBase base;
  std::string_view tail = UpToNull(line);
  for (std::string* name : {&base.name, &base.nameN, &base.nameM, &base.namePa})
    *name = ScanName(tail);
  if (!ScanDouble(tail, base.facN) || !ScanDouble(tail, base.facM))
    Fatal("error: 'units_names' items should be: name nameN nameM namePa facN facM\n");
  if (tail.find_first_not_of(kWhite) != std::string_view::npos)
    Note(ReadEvent::LineTail, tail);
  return base;
}

}  // namespace

void Project::ReadUnitsMesh(TextScan&, const std::string& value)
{
  meshLength = GiveUnitsBaseFromLength(value)->facM;
  RequireFactor(meshLength, "error: Units_mesh must be a positive number\n");
}

void Project::ReadUnitsMatAndLoad(TextScan&, const std::string& value)
{
  const UnitsBase& base = *GiveUnitsBase(value);
  matLoadForce = base.facN;
  matLoadLength = base.facM;
  for (const double size : {matLoadForce, matLoadLength})
    RequireFactor(size, "error: units_mat_and_load must be two positive numbers\n");
}

void Project::ReadUnitsRes(TextScan&, const std::string& value)
{
  const UnitsBase& base = *GiveUnitsBase(value);
  resForce = base.facN;
  resLength = base.facM;
  resForceName = base.nameN;
  resLengthName = base.nameM;
  resPressureName = base.namePa;
  for (const double size : {resForce, resLength})
    RequireFactor(size, "error: units_res must be two positive numbers and three names\n");
}

void Project::ReadNumOfDivisions(TextScan&, const std::string& value)
{
  numOfDivisions = ToInt(value);
  if (numOfDivisions < 1)
    Fatal("error: Number of divisions must be positive");
  if (numOfDivisions > kMaxDivisions)
    Fatal("error: Number of divisions must be at most ", kMaxDivisions);
}

void Project::ReadDoSmoothing(TextScan&, const std::string& value)
{
  smoothing.on = true;
  smoothing.angle = NumberOfItem(value);
  if (!IsAngle(smoothing.angle))
    Fatal("error: DoSmoothing must have angle >0 and <PI rad\n");
}

void Project::ReadCoplanarityAngle(TextScan&, const std::string& value)
{
  coplanarityAngle = NumberOfItem(value);
  if (!IsAngle(coplanarityAngle))
    Fatal("error: CoplanarityAngle must have angle >0 and <PI rad\n");
}

void Project::ReadSolver(TextScan& text, const std::string& value)
{
  static const struct
  {
    const char* name;
    SolverType type;
  } solvers[] = {{"Automatic", SolverType::Automatic},
                 {"SkyLine", SolverType::SkyLine},
                 {"Sparse", SolverType::Sparse},
                 {"Double", SolverType::Double}};
  const auto* named = std::find_if(std::begin(solvers), std::end(solvers),
                                   [&](const auto& s) { return HasPrefix(value, s.name); });
  if (named == std::end(solvers))
    Fatal("error: type of solver must be: Automatic, SkyLine, Double or Sparse\n");
  if (value.size() > std::strlen(named->name))
    Note(ReadEvent::Prefix, value, named->name);
  solverSettings.type = named->type;
  if (named->type != SolverType::Sparse)
    return;
  const auto isTolerance = [](double t) { return t > 0.0 && t <= 10.0; };
  solverSettings.tolerance1 = ReadNumberWord(text);
  solverSettings.tolerance2 = ReadNumberWord(text);
  solverSettings.maxIterations = ToInt(std::string(text.ReadWord()));
  if (!isTolerance(solverSettings.tolerance1) || !isTolerance(solverSettings.tolerance2) ||
      solverSettings.maxIterations < 10)
    Fatal(
        "Solver Sparse needs three aditional arguments:\n"
        "    Solver: Sparse tolerance1 tolerance2 MaxIterations\n"
        "with 0.0<tolerance<10 and MaxIterations>10 and\n"
        " tolerance1<=tolerance2<10\n");
}

void Project::ReadGravityDirection(TextScan& text, const std::string& value)
{
  const double x = NumberOfItem(value);
  const double y = ReadNumberWord(text);
  gravityDirection = ReaVec(x, y, ReadNumberWord(text));
  const double length = std::hypot(gravityDirection(1), gravityDirection(2), gravityDirection(3));
  if (!(length >= EPSILON && std::isfinite(length)))
    Fatal("error: GravityDirection must be a vector no null");
  gravityDirection /= length;
}

void Project::ReadFAUnitsNames(TextScan& text)
{
  constexpr std::size_t kBatch = 50;
  std::vector<UnitsBase> batch;
  const auto enterBatch = [&] {
    AddUnitsBase(batch.data(), static_cast<int>(batch.size()));
    batch.clear();
  };
  for (;;) {
    const int comment = text.TakeOutSpaces();
    if (comment == -1)
      Fatal("error: 'units_names' should finish with the 'end' word\n");
    const std::string_view line = text.ReadRestOfLine();
    if (comment == 1)
      continue;
    if (HasPrefix(line, "end"))
      return enterBatch();
    Attempt(&text, [&] { batch.push_back(ReadUnitsBase(line)); });
    if (batch.size() >= std::max(kBatch, bases.size()))  // sorting stays in proportion
      enterBatch();
  }
}

void Project::ReadFAMaterials(TextScan& text)
{
  for (;;) {
    SkipComments(text);
    bool more = true;
    Attempt(&text, [&] { more = ReadMaterial(text); });
    if (!more)
      return SkipBlockEnd(text);
  }
}

bool Project::ReadMaterial(TextScan& text)
{
  auto material = std::make_unique<Material>();
  if (!material->ReadFromAscii(text, this))
    return false;
  const int number = material->number;
  Store(materials, number, std::move(material));
  NoteStored(ReadItem::Material, number);
  return true;
}

}  // namespace morlen
