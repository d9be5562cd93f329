#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "common/vec3.h"

namespace morlen::check {

enum class Severity : int
{
  Error,   ///< the program refuses the file, or loses data of it
  Warning  ///< the program accepts it, perhaps in another sense than intended
};

/// The kind of a finding. The names in findings.cpp are for programs that read the JSON: a new kind
/// gets a new name, and a name keeps its meaning.
enum class Code : int
{
  // Reading refused:
  Refused,
  UnknownKeyword,
  WordMissing,

  // Data lost:
  NumberPartlyRead,
  ValueAtFreeComponent,
  KeyWithoutValue,
  KeyMisread,
  LoneWidth,
  RecordsLost,
  UnitOrder,
  NegativeWeight,
  FaceMissing,
  KeyLost,
  ItemsContradict,

  // Doubtful text:
  TextSkipped,
  TextIgnored,
  KeyIgnored,
  ValueGlued,
  WordByPart,
  WordByPrefix,
  KeyByPrefix,
  RecordContinued,
  NotDecimal,
  WordInComment,
  ElementRepeated,
  DefinedTwice,
  ItemRepeated,

  // The model as read:
  UnknownReference,
  ModelRefused,
  SectionIncomplete,
  PoissonRatio,
  AsymmetricMaterial,
  AxesRefused,
  SolverRefused,
  ElementWithoutSize,
  TurnedElement,
  Sliver,
  CoincidentNodes,
  NearVerticalBeam,
  SeparateParts,
  FreeMotion,
  Mechanism,
  UnusedNode,
  UnusedMaterial,
  UnusedUnits,
  WeightWithoutDirection,
  ShellEdgeSupported,
  ShellFold,
  SpringUnderConversion,

  // Load cases:
  UnusedCase,

  kCount
};

/// The stable name of a code, in small letters and hyphens.
const char* NameOf(Code code);

/// True for the kinds where the program accepts the file but loses data of it.
bool IsDataLost(Code code);

/// The offset of a problem of the whole file.
constexpr std::ptrdiff_t kWholeFile = -1;

/// A motion that nothing resists, as a shape: the nodes that move, by their numbers in the file,
/// with their displacements in global axes. Where no node is displaced, `turns` is true and the
/// vectors are rotations. The longest vector has the length 1.
struct Motion
{
  /// Scales the vectors, and leaves out those below 1e-6 of the longest.
  void Normalise();

  bool turns = false;
  std::vector<int> nodes = {};
  std::vector<Vec3> vectors = {};  ///< one for each node
};

/// A fault of a problem file, or a warning of it.
struct Finding
{
  Severity severity;
  Code code;
  std::ptrdiff_t offset;  ///< bytes from the beginning of the file, or kWholeFile
  std::string message;
  std::string hint = {};  ///< the program's explanation of a refusal; empty without one
  std::shared_ptr<const Motion> motion = {};  ///< of Mechanism and FreeMotion; else null
};

/// A problem with its line and column, both from 1; both 0 for a problem of the whole file.
struct Located
{
  Severity severity;
  Code code;
  int line, column;
  std::string message;
  std::string hint;
  std::string file = {};  ///< another one than that of the report; empty for that
  std::shared_ptr<const Motion> motion = {};
};

/// The findings sorted by place, without repetitions; those of the whole file come last.
std::vector<Located> Locate(std::vector<Finding> findings, std::string_view text);

/// "file:line:column", or the file alone.
std::string PlaceOf(const Located& problem, const std::string& file);

/// The message after its class and before its hint: "data lost: ...", "... (hint: ...)".
std::string TextOf(const Located& problem);

/// "model.dat:47:12: error: ..." without a newline.
std::string LineOf(const Located& problem, const std::string& file);

const char* SeverityName(Severity severity);

}  // namespace morlen::check
