// The settings keywords, and the blocks of unit systems and materials.

#include "problem/settings_reader.h"

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
#include "base/textscan.h"
#include "model/material.h"
#include "numeric/plex_range.h"
#include "problem/problem.h"

namespace morlen {

namespace {

constexpr const char* kWhite = " \t\n\v\f\r";

// The whole number at the beginning of a text; 0 when there is none. A number out of range becomes
// INT_MIN or INT_MAX.
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

// Removes the next word from the text and returns it. A word of more than 20 characters is cut: its
// rest is the next word.
std::string ScanName(std::string_view& text)
{
  constexpr std::size_t kLongest = 20;
  text.remove_prefix(std::min(text.find_first_not_of(kWhite), text.size()));
  const std::string_view name = text.substr(0, std::min(text.find_first_of(kWhite), kLongest));
  text.remove_prefix(name.size());
  return std::string(name);
}

// Reads a line "name nameN nameM namePa facN facM".
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

// Reads the next record into `materials`. Returns false at the end of the block.
bool ReadMaterial(TextScan& text, const Units& units, VoidPlex& materials)
{
  auto material = std::make_unique<Material>();
  if (!material->ReadFromAscii(text, &units))
    return false;
  const int number = material->number;
  Store(materials, number, std::move(material));
  NoteStored(ReadItem::Material, number);
  return true;
}

}  // namespace

void ReadUnitsMesh(TextScan&, const std::string& value, Problem& problem)
{
  Units& units = problem.units;
  units.meshLength = units.GiveUnitsBaseFromLength(value)->facM;
  RequireFactor(units.meshLength, "error: Units_mesh must be a positive number\n");
}

void ReadUnitsMatAndLoad(TextScan&, const std::string& value, Problem& problem)
{
  Units& units = problem.units;
  const UnitsBase& base = *units.GiveUnitsBase(value);
  units.matLoadForce = base.facN;
  units.matLoadLength = base.facM;
  for (const double size : {units.matLoadForce, units.matLoadLength})
    RequireFactor(size, "error: units_mat_and_load must be two positive numbers\n");
}

void ReadUnitsRes(TextScan&, const std::string& value, Problem& problem)
{
  Units& units = problem.units;
  const UnitsBase& base = *units.GiveUnitsBase(value);
  units.resForce = base.facN;
  units.resLength = base.facM;
  units.resForceName = base.nameN;
  units.resLengthName = base.nameM;
  units.resPressureName = base.namePa;
  for (const double size : {units.resForce, units.resLength})
    RequireFactor(size, "error: units_res must be two positive numbers and three names\n");
}

void ReadNumOfDivisions(TextScan&, const std::string& value, Problem& problem)
{
  problem.numOfDivisions = ToInt(value);
  if (problem.numOfDivisions < 1)
    Fatal("error: Number of divisions must be positive");
  if (problem.numOfDivisions > kMaxDivisions)
    Fatal("error: Number of divisions must be at most ", kMaxDivisions);
}

void ReadDoSmoothing(TextScan&, const std::string& value, Problem& problem)
{
  problem.smoothing.on = true;
  problem.smoothing.angle = NumberOfItem(value);
  if (!IsAngle(problem.smoothing.angle))
    Fatal("error: DoSmoothing must have angle >0 and <PI rad\n");
}

void ReadCoplanarityAngle(TextScan&, const std::string& value, Problem& problem)
{
  problem.coplanarityAngle = NumberOfItem(value);
  if (!IsAngle(problem.coplanarityAngle))
    Fatal("error: CoplanarityAngle must have angle >0 and <PI rad\n");
}

void ReadSolver(TextScan& text, const std::string& value, Problem& problem)
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
  problem.solverSettings.type = named->type;
  if (named->type != SolverType::Sparse)
    return;
  const auto isTolerance = [](double t) { return t > 0.0 && t <= 10.0; };
  problem.solverSettings.tolerance1 = ReadNumberWord(text);
  problem.solverSettings.tolerance2 = ReadNumberWord(text);
  problem.solverSettings.maxIterations = ToInt(std::string(text.ReadWord()));
  if (!isTolerance(problem.solverSettings.tolerance1) ||
      !isTolerance(problem.solverSettings.tolerance2) || problem.solverSettings.maxIterations < 10)
    Fatal(
        "Solver Sparse needs three aditional arguments:\n"
        "    Solver: Sparse tolerance1 tolerance2 MaxIterations\n"
        "with 0.0<tolerance<10 and MaxIterations>10 and\n"
        " tolerance1<=tolerance2<10\n");
}

void ReadGravityDirection(TextScan& text, const std::string& value, Problem& problem)
{
  const double x = NumberOfItem(value);
  const double y = ReadNumberWord(text);
  ReaVec& direction = problem.gravityDirection;
  direction = ReaVec(x, y, ReadNumberWord(text));
  const double length = std::hypot(direction(1), direction(2), direction(3));
  if (!(length >= EPSILON && std::isfinite(length)))
    Fatal("error: GravityDirection must be a vector no null");
  direction /= length;
}

void ReadUnitsNames(TextScan& text, Problem& problem)
{
  constexpr std::size_t kBatch = 50;
  std::vector<UnitsBase> batch;
  const auto enterBatch = [&] {
    problem.units.AddUnitsBase(batch.data(), static_cast<int>(batch.size()));
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
    // AddUnitsBase merges a batch into the whole table. Batches that grow with the table keep the
    // total cost at n log n.
    if (batch.size() >= std::max(kBatch, problem.units.bases.size()))
      enterBatch();
  }
}

void ReadMaterials(TextScan& text, Problem& problem)
{
  for (;;) {
    SkipComments(text);
    bool more = true;
    Attempt(&text, [&] { more = ReadMaterial(text, problem.units, problem.materials); });
    if (!more)
      return SkipBlockEnd(text);
  }
}

}  // namespace morlen
