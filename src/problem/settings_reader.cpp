// The settings keywords, and the block of materials.

#include "problem/settings_reader.h"

#include <algorithm>
#include <climits>
#include <cmath>
#include <cstdlib>
#include <memory>
#include <numbers>
#include <string>
#include <string_view>
#include <vector>

#include "base/errorwriter.h"
#include "base/nearest_word.h"
#include "base/number_slip.h"
#include "base/number_text.h"
#include "base/read_observer.h"
#include "base/record_hint.h"
#include "base/textscan.h"
#include "model/material.h"
#include "numeric/plex_range.h"
#include "problem/problem.h"
#include "problem/problem_reader.h"

namespace morlen {

namespace {

// The whole number at the beginning of a text; 0 when there is none. A number out of range becomes
// INT_MIN or INT_MAX.
int ToInt(const std::string& text)
{
  NoteNumber(text, NumberKind::kWhole);
  return static_cast<int>(
      std::clamp<long>(std::strtol(text.c_str(), nullptr, 10), INT_MIN, INT_MAX));
}

bool IsAngle(double angle)
{
  return angle >= EPSILON && angle <= std::numbers::pi;
}

// "line 3: ", the line that is being read.
std::string Line(const TextScan& text)
{
  return LinePrefix(text, text.Here());
}

// Explains a value that a keyword does not take.
template <class... Parts>
void ExplainValue(const TextScan& text, std::string_view value, const Parts&... parts)
{
  if (value.starts_with('#'))
    Explain(Line(text), "a comment cannot be between a keyword and its value");
  else if (value.empty())
    Explain(Line(text), "the file ends without the value of its last keyword");
  else
    Explain(Line(text), parts...);
}

// Explains a value that is no angle. An angle beyond PI may be meant in degrees.
void ExplainAngle(const TextScan& text, const std::string& value, double angle)
{
  constexpr double kDegree = std::numbers::pi / 180.0;
  if (angle > std::numbers::pi && angle < 180.0)
    Explain(Line(text), "the angle is in radians: ", angle, " degrees are ", angle * kDegree);
  else if (!IsNumber(value, NumberKind::kReal) && BeginsWithNumber(value))
    Explain(Line(text), FaultOfNumber(value));
  else if (angle == 0.0 && !value.starts_with('#'))
    Explain(Line(text), "the value is '", value, "'; leave the keyword out to do without it");
  else
    ExplainValue(text, value, "the value is '", value, "'; it is an angle in radians");
}

struct SolverName
{
  std::string_view name;
  SolverType type;
};

constexpr SolverName kSolvers[] = {{"Automatic", SolverType::Automatic},
                                   {"SkyLine", SolverType::SkyLine},
                                   {"Sparse", SolverType::Sparse},
                                   {"Double", SolverType::Double},
                                   {"Direct", SolverType::Direct}};

void ExplainSolver(const TextScan& text, const std::string& value)
{
  constexpr std::string_view kNames[] = {"Automatic", "SkyLine", "Sparse", "Double", "Direct"};
  const std::string_view nearest = NearestWord(value, kNames);
  if (nearest.empty())
    ExplainValue(text, value, "the solver is '", value,
                 "'; without the line the program chooses one");
  else
    Explain(Line(text), "the solver is '", value, "'; did you mean '", nearest, "'?");
}

// Reads the three words after "Solver Sparse".
void ReadSparseSettings(TextScan& text, SolverSettings& settings)
{
  const std::string_view words[] = {text.ReadWord(), text.ReadWord(), text.ReadWord()};
  settings.tolerance1 = NumberOfItem(words[0]);
  settings.tolerance2 = NumberOfItem(words[1]);
  settings.maxIterations = ToInt(std::string(words[2]));
  const auto isTolerance = [](double t) { return t > 0.0 && t <= 10.0; };
  if (isTolerance(settings.tolerance1) && isTolerance(settings.tolerance2) &&
      settings.maxIterations >= 10)
    return;
  Explain(Line(text), "the three words are '", words[0], "', '", words[1], "' and '", words[2],
          "'");
  Fatal(
      "Solver Sparse needs three aditional arguments:\n"
      "    Solver: Sparse tolerance1 tolerance2 MaxIterations\n"
      "with 0.0<tolerance<10 and MaxIterations>10 and\n"
      " tolerance1<=tolerance2<10\n");
}

// True for a word that a keyword is, or begins like one with a value.
bool IsKeyword(std::string_view word)
{
  const std::vector<std::string_view> keywords = Keywords();
  return std::any_of(keywords.begin(), keywords.end(),
                     [word](std::string_view keyword) { return HasPrefix(word, keyword); });
}

// A component of the direction of gravity after the first. place: "second" or "third".
double ReadGravityNumber(TextScan& text, const char* place)
{
  const std::string_view word = text.ReadWord();
  if (word.empty())
    return 0.0;
  if (!BeginsWithNumber(word) && !readObserver)
    errorwriter.WriteWarning(Line(text) + "'" + std::string(word) + "' is read as the " + place +
                             " number of GravityDirection, 0");
  return NumberOfItem(word);
}

// True when the third component follows. A plane problem may leave it out: then it is a number, or
// a word of the same line that is neither a comment nor a keyword.
bool HasGravityZ(const TextScan& text, PROBLEMTYPE problemType)
{
  TextScan ahead = text;
  const std::string_view word = ahead.ReadWord();
  if (problemType != kPlane || BeginsWithNumber(word))
    return true;
  const std::string_view line = text.LineAhead();
  const bool onLine = word.data() < line.data() + line.size();
  return !word.empty() && onLine && word[0] != '#' && !IsKeyword(word);
}

// Explains a material that is given again. record: its second record.
void ExplainRepetition(const TextScan& text, int number, const char* record)
{
  const std::string_view keyword = text.LastBlock().keyword;
  const std::string line = LinePrefix(text, record);
  std::string first;
  if (!keyword.empty()) {
    TextScan list(std::string_view(keyword.data() + keyword.size(), record));
    for (int known = 0; first.empty() && ReadRecordNumber(list, known); list.SkipLine()) {
      if (known == number)
        first = " in line " + std::to_string(text.LineOf(list.Here()));
    }
  }
  Explain(line, "material ", number, " is already given", first);
}

// Reads the next record into `materials`. Returns false at the end of the block.
bool ReadMaterial(TextScan& text, const Units& units, VoidPlex& materials)
{
  const char* const record = text.Here();
  auto material = std::make_unique<Material>();
  if (!material->ReadFromAscii(text, &units))
    return false;
  const int number = material->number;
  if (Find<Material>(materials, number))
    ExplainRepetition(text, number, record);
  Store(materials, number, std::move(material));
  NoteStored(ReadItem::Material, number);
  return true;
}

}  // namespace

void ReadNumOfDivisions(TextScan& text, const std::string& value, Problem& problem)
{
  problem.numOfDivisions = ToInt(value);
  if (problem.numOfDivisions < 1 || problem.numOfDivisions > kMaxDivisions)
    ExplainValue(text, value, "the value is '", value, "'; it is a whole number, 1 to ",
                 kMaxDivisions);
  if (problem.numOfDivisions < 1)
    Fatal("error: Number of divisions must be positive");
  if (problem.numOfDivisions > kMaxDivisions)
    Fatal("error: Number of divisions must be at most ", kMaxDivisions);
}

void ReadDoSmoothing(TextScan& text, const std::string& value, Problem& problem)
{
  problem.smoothing.on = true;
  problem.smoothing.angle = NumberOfItem(value);
  if (!IsAngle(problem.smoothing.angle)) {
    ExplainAngle(text, value, problem.smoothing.angle);
    Fatal("error: DoSmoothing must have angle >0 and <PI rad\n");
  }
}

void ReadCoplanarityAngle(TextScan& text, const std::string& value, Problem& problem)
{
  problem.coplanarityAngle = NumberOfItem(value);
  if (!IsAngle(problem.coplanarityAngle)) {
    ExplainAngle(text, value, problem.coplanarityAngle);
    Fatal("error: CoplanarityAngle must have angle >0 and <PI rad\n");
  }
}

void ReadSolver(TextScan& text, const std::string& value, Problem& problem)
{
  const auto* named =
      std::find_if(std::begin(kSolvers), std::end(kSolvers),
                   [&](const SolverName& solver) { return HasPrefix(value, solver.name); });
  if (named == std::end(kSolvers)) {
    ExplainSolver(text, value);
    Fatal("error: type of solver must be: Automatic, SkyLine, Double or Sparse\n");
  }
  if (value.size() > named->name.size())
    Note(ReadEvent::Prefix, value, named->name);
  problem.solverSettings.type = named->type;
  if (named->type == SolverType::Sparse)
    ReadSparseSettings(text, problem.solverSettings);
}

void ReadShellFormulation(TextScan& text, const std::string& value, Problem& problem)
{
  if (EqualsNoCase(value, "Standard"))
    problem.shellFormulation = ShellFormulation::Standard;
  else if (EqualsNoCase(value, "Refined"))
    problem.shellFormulation = ShellFormulation::Refined;
  else {
    ExplainValue(
        text, value, "'", value,
        "' is no formulation of shells; Standard is the default, and Refined is the choice for"
        " curved, folded and thin shells");
    Fatal("error: ShellFormulation must be: Standard or Refined\n");
  }
}

void ReadGravityDirection(TextScan& text, const std::string& value, Problem& problem)
{
  const double x = NumberOfItem(value);
  const double y = ReadGravityNumber(text, "second");
  const double z = HasGravityZ(text, problem.problemType) ? ReadGravityNumber(text, "third") : 0.0;
  const double length = std::hypot(x, y, z);
  if (!(length >= EPSILON && std::isfinite(length))) {
    ExplainValue(text, value, "the numbers read are ", x, ", ", y, " and ", z);
    Fatal("error: GravityDirection must be a vector no null");
  }
  problem.gravityDirection = ReaVec(x, y, z);
  problem.gravityDirection /= length;
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
