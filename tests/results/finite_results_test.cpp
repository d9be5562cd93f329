// No result file has a number that is not finite, even when the solution is finite and only loads,
// lengths or units are too large for the values computed from it.

#include "results/finite_results.h"

#include <gtest/gtest.h>

#include <string>

#include "support/frame.h"
#include "support/run.h"

namespace morlen {

namespace {

const char* const kNoSolution =
    "error when solving system. Probably boundary conditions are not correct\n";

// A beam of the given length with both ends clamped: all displacements are 0 under any load.
ProblemParts Clamped(const std::string& length = "1")
{
  return ProblemParts()
      .With(&ProblemParts::coordinates, "1 0 0\n2 " + length + " 0")
      .With(&ProblemParts::constraints, "1 111 0 0 0\n2 111 0 0 0");
}

ProblemParts WithLoad(const std::string& block, const std::string& record,
                      const std::string& length = "1")
{
  return Clamped(length).With(&ProblemParts::rest, block + "\n" + record + "\nend\n");
}

void ExpectRefused(const ProblemParts& problem, const std::string& message = kNoSolution)
{
  SCOPED_TRACE(problem.Text());
  const RunResult run = RunOnProblem(problem.Text());
  EXPECT_EQ(run.status, 2);
  EXPECT_EQ(run.err, message);
}

void ExpectAccepted(const ProblemParts& problem)
{
  SCOPED_TRACE(problem.Text());
  EXPECT_EQ(RunOnProblem(problem.Text()).status, 0);
}

}  // namespace

TEST(FiniteResults, LargeReactions)
{
  ExpectAccepted(Clamped().With(&ProblemParts::loads, "1 0 1e308 0"));
  ExpectRefused(Clamped().With(&ProblemParts::loads, "1 0 1e308 0\n1 0 1e308 0"));
  ExpectRefused(WithLoad("local_pressure_loads", "1 0 1e308\n1 0 1e308"));
}

TEST(FiniteResults, LargeMomentsAndDeflectionsOfSpans)
{
  ExpectAccepted(WithLoad("local_pressure_loads", "1 0 1e290"));
  ExpectAccepted(WithLoad("local_pressure_loads", "1 0 1e200", "1e20"));
  ExpectRefused(WithLoad("local_pressure_loads", "1 0 1e300", "1e10"));
  ExpectRefused(WithLoad("local_pressure_loads", "1 0 1e50", "1e100"));
  ExpectRefused(WithLoad("local_pressure_loads", "1 0 1e-10", "1e140"));
}

TEST(FiniteResults, LargeStrains)
{
  ExpectAccepted(WithLoad("temperature_loads", "1 1e100 1e100"));
  ExpectRefused(WithLoad("temperature_loads", "1 1e200 1e200"));
}

TEST(FiniteResults, LargeRotationsOfLongBeams)
{
  ProblemParts problem = Clamped("1e100").With(&ProblemParts::materials, "1 E 1e-14 A 1 Iz 1e-14");
  ExpectAccepted(problem.With(&ProblemParts::constraints, "1 111 0 0 1e100\n2 111 0 0 0"));
  ExpectRefused(problem.With(&ProblemParts::constraints, "1 111 0 0 1e250\n2 111 0 0 0"));
}

TEST(FiniteResults, CoordinatesInOtherUnits)
{
  const auto problem = [](const std::string& x) {
    return Clamped()
        .With(&ProblemParts::coordinates, "1 0 0\n2 1 0\n3 " + x + " 0")
        .With(&ProblemParts::constraints, "1 111 0 0 0\n2 111 0 0 0\n3 111 0 0 0")
        .With(&ProblemParts::settings, "units_names\na N km Pa 1 1000\nend\nunits_mesh km");
  };
  ExpectAccepted(problem("1e305"));
  ExpectRefused(problem("1e307"), "error: node 3 has a coordinate that is not finite\n");
}

}  // namespace morlen
