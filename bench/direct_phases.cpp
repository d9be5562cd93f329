// The phases of the solver of `Solver Direct` in whole analyses:
//
//   morlen_direct_phases [-n REPETITIONS] problem.dat ...
//
// The processor time of the solver, and that of each phase of its libraries within it, is printed
// as a line of JSON for each file, from which report.py makes a table. The linker leads the calls
// of the libraries to the functions of this file (`--wrap`), which time them; the solver is not
// changed. Fails when a file does not ask for `Solver Direct`.

#include <dmumps_c.h>
#include <metis.h>

#include <array>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <memory>
#include <mutex>
#include <span>
#include <string>
#include <vector>

#include "direct/direct_kit.h"
#include "direct/mumps_solver.h"
#include "measure.h"
#include "problem/problem.h"
#include "run/project.h"

using namespace morlen;

namespace {

constexpr int kRepetitions = 5;

enum Phase
{
  kOrder,
  kAnalysis,
  kFactorisation,
  kSolution,
  kSolver,  ///< all of the solver: the phases above, and the work beside them
  kPhases
};

constexpr const char* kPhaseNames[kPhases] = {"order", "analysis", "factorisation", "solution",
                                              "solver"};

using Times = std::array<double, kPhases>;

/// The times of the present run. The functions that the linker calls have no other access to them.
Times& Now()
{
  static Times times;
  return times;
}

/// Adds the processor time of its life to a phase.
class Clock
{
public:
  explicit Clock(Phase timed) : phase(timed) {}
  Clock(const Clock&) = delete;
  Clock& operator=(const Clock&) = delete;
  ~Clock() { Now()[phase] += ProcessorSeconds() - start; }

private:
  Phase phase;
  double start = ProcessorSeconds();
};

}  // namespace

// NOLINTBEGIN(bugprone-reserved-identifier,readability-identifier-naming): names of the linker
extern "C" {

int __real_METIS_NodeND(idx_t* count, idx_t* starts, idx_t* neighbours, idx_t* weights,
                        idx_t* options, idx_t* order, idx_t* inverse);
void __real_dmumps_c(DMUMPS_STRUC_C* data);

int __wrap_METIS_NodeND(idx_t* count, idx_t* starts, idx_t* neighbours, idx_t* weights,
                        idx_t* options, idx_t* order, idx_t* inverse)
{
  const Clock clock(kOrder);
  return __real_METIS_NodeND(count, starts, neighbours, weights, options, order, inverse);
}

void __wrap_dmumps_c(DMUMPS_STRUC_C* data)
{
  if (data->job < 1)  // start and end of an instance
    return __real_dmumps_c(data);
  const Clock clock(static_cast<Phase>(data->job - 1 + kAnalysis));
  __real_dmumps_c(data);
}

}  // extern "C"
// NOLINTEND(bugprone-reserved-identifier,readability-identifier-naming)

namespace {

/// Times all that the solver does after its matrix has been created. The clock is read for each
/// element too, which is part of the time.
class TimedSolver : public direct::MumpsSolver
{
public:
  using MumpsSolver::MumpsSolver;

  void AddElement(const ElementBlocks& element) override
  {
    const Clock clock(kSolver);
    MumpsSolver::AddElement(element);
  }

  int ApplyConstraint(int eq, std::span<const double> prescribed,
                      std::span<ReaVecV* const> sides) override
  {
    const Clock clock(kSolver);
    return MumpsSolver::ApplyConstraint(eq, prescribed, sides);
  }
  using MumpsSolver::ApplyConstraint;

  int Factorise(std::FILE* info) override
  {
    const Clock clock(kSolver);
    return MumpsSolver::Factorise(info);
  }

  void Substitute(const RightHandSides& sides, std::FILE* info) const override
  {
    const Clock clock(kSolver);
    MumpsSolver::Substitute(sides, info);
  }
};

class TimedKit : public direct::DirectKit
{
public:
  std::unique_ptr<DirectSolver> MakeDirect(const Problem& problem,
                                           std::unique_ptr<DirectPlan> /*plan*/) const override
  {
    return std::make_unique<TimedSolver>(problem.numNodes, problem.components.count, busy);
  }

  /// Couplings, order and storage.
  void CreateMatrix(const AnalysisTask& task, BSolver& solver) const override
  {
    const Clock clock(kSolver);
    DirectKit::CreateMatrix(task, solver);
  }

private:
  mutable std::mutex busy;
};

/// The model of a file, analysed several times.
struct Runs
{
  int equations = 0;
  bool direct = true;
  std::vector<Times> times;
};

void RunOnce(const std::string& file, const TimedKit& kit, Runs& runs)
{
  Now() = {};
  Project project(100, kit);
  std::ifstream in(file);
  project.ReadFromAscii(in);
  project.Calc(1, nullptr);
  runs.equations = project.problem.numNodes * project.problem.components.count;
  runs.direct = runs.direct && Now()[kSolver] > 0.0;
  runs.times.push_back(Now());
}

/// Prints one object of JSON in one line, for report.py.
void PrintJson(const std::string& file, const Runs& runs)
{
  std::printf("{\"model\": \"%s\", \"equations\": %d, \"seconds\": {",
              std::filesystem::path(file).stem().c_str(), runs.equations);
  for (int phase = 0; phase < kPhases; ++phase) {
    std::vector<double> seconds;
    for (const Times& times : runs.times)
      seconds.push_back(times[phase]);
    std::printf("%s\"%s\": %.6g", phase ? ", " : "", kPhaseNames[phase], Median(seconds));
  }
  std::printf("}}\n");
  std::fflush(stdout);
}

}  // namespace

int main(int argc, char** argv)
{
  const auto [files, repetitions] =
      ParseTimedFiles(argc, argv, "morlen_direct_phases", kRepetitions);
  const TimedKit kit;
  for (const std::string& file : files) {
    Runs runs;
    for (int k = 0; k < repetitions; ++k)
      RunOnce(file, kit, runs);
    if (!runs.direct) {
      std::fprintf(stderr, "%s: not solved by Solver Direct\n", file.c_str());
      return 1;
    }
    PrintJson(file, runs);
  }
  return 0;
}
