// Inputs with very many items of one kind. Memory is proportional to the number of items, not to
// the highest item number, and long chains of loads do not need a deep stack.

#include <gtest/gtest.h>

#include <string>

#include "support/frame.h"
#include "support/run.h"
#include "support/sanitizer.h"

namespace morlen {

namespace {

constexpr long kStack = 256 << 10;

// Records with numbers from 1 + step on, `step` apart.
std::string Records(int count, int step, const std::string& rest)
{
  std::string records;
  for (int i = 1; i <= count; ++i)
    records += std::to_string(1 + i * step) + rest + "\n";
  return records;
}

std::string Repeated(int count, const std::string& record)
{
  std::string records;
  for (int i = 0; i < count; ++i)
    records += record;
  return records;
}

// Runs with a small stack. Expects success with at most 64 MiB and 100 bytes for each byte of
// input.
void ExpectAffordable(const ProblemParts& parts)
{
  ProblemParts shortened = parts;
  shortened.settings += "\nNumOfDivisions 1";
  const std::string problem = shortened.Text();
  const TemporaryFolder folder;
  folder.Write("model.dat", problem);
  const RunResult run = RunProgram(folder, {"model.dat"}, {.stack = kStack});
  EXPECT_EQ(run.status, 0) << run.err;
  if (kSanitized)
    return;
  EXPECT_LE(run.memory, (64 << 20) + 100 * static_cast<long>(problem.size()));
}

}  // namespace

TEST(LargeInput, ElementsWithNumbersFarApart)
{
  ExpectAffordable(ProblemParts()
                       .With(&ProblemParts::elements, "1 1 2 1\n" + Records(50000, 100, " 1 2 1"))
                       .With(&ProblemParts::rest,
                             "local_pressure_loads\n" + Records(50000, 100, " 0 1") + "end\n"));
}

TEST(LargeInput, MaterialsWithNumbersFarApart)
{
  ExpectAffordable(ProblemParts().With(&ProblemParts::materials,
                                       "1 E 1 A 1 Iz 1\n" + Records(100000, 100, " A 1")));
}

TEST(LargeInput, ElementsWithMaterialItems)
{
  ExpectAffordable(
      ProblemParts().With(&ProblemParts::elements, "1 1 2 1\n" + Records(50000, 1, " 1 2 1 A 1")));
}

TEST(LargeInput, LoadsOnOneElement)
{
  ExpectAffordable(ProblemParts().With(
      &ProblemParts::rest, "local_pressure_loads\n" + Repeated(100000, "1 0 1\n") + "end\n"));
}

TEST(LargeInput, LoadsOnOneNode)
{
  ExpectAffordable(ProblemParts().With(&ProblemParts::loads, Repeated(100000, "2 0 1 0\n")));
}

TEST(LargeInput, UnitSystems)
{
  ExpectAffordable(ProblemParts().With(
      &ProblemParts::settings, "units_names\n" + Repeated(20000, "u N m Pa 1 1\n") + "end"));
}

TEST(LargeInput, Comments)
{
  ExpectAffordable(ProblemParts().With(&ProblemParts::settings, Repeated(200000, "#\n")));
}

TEST(LargeInput, AFileWithoutEndIsRefused)
{
  if (kSanitized)
    GTEST_SKIP() << "a sanitizer reserves memory far beyond the limit here";
  const TemporaryFolder folder;
  const RunResult run = RunProgram(folder, {"/dev/zero"}, {.addressSpace = 512L << 20});
  EXPECT_EQ(run.status, 2);
  EXPECT_EQ(run.err, "Not space available on heap");
}

}  // namespace morlen
