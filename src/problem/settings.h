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
  Double
};

/// The run's solver; the numbers belong to the sparse one, unset as they stand here.
struct SolverSettings
{
  SolverType type = SolverType::Automatic;
  double tolerance1 = -1.0;
  double tolerance2 = -1.0;
  int maxIterations = 0;
  /// By whose instructions the equations are solved; not read from the file.
  Processor processor = ThisProcessor();
};

struct SmoothingSettings
{
  bool on = false;
  double angle = -1.0;  ///< radians
};

/// Which shell values the results hold.
enum class StressOutput : int
{
  Local,
  Main,
  MainAndLocal
};

}  // namespace morlen
