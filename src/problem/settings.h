#pragma once

#include "base/processor.h"

namespace morlen {

/// Largest number of divisions of a beam in the results.
constexpr int kMaxDivisions = 100000;

enum class SolverType : int
{
  Automatic,
  SkyLine,
  Sparse,
  Double,
  Direct
};

/// The solver of the run. The tolerances and maxIterations are those of the keyword `Solver
/// Sparse`; the defaults mean that the file gives none.
struct SolverSettings
{
  SolverType type = SolverType::Automatic;
  double tolerance1 = -1.0;
  double tolerance2 = -1.0;
  int maxIterations = 0;
  /// Selects the vector instructions of the solvers. The file does not set it.
  Processor processor = ThisProcessor();
};

struct SmoothingSettings
{
  bool on = false;
  double angle = -1.0;  ///< radians; negative when the file gives none
};

/// The elements that triangles are.
enum class ShellFormulation : int
{
  Standard,
  Refined
};

/// The shell values that the results contain.
enum class StressOutput : int
{
  Local,
  Main,
  MainAndLocal
};

}  // namespace morlen
