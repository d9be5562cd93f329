#include "run_program/input_check.h"

#include <algorithm>
#include <iostream>

namespace morlen::run {

namespace {

std::string Counted(int count, const char* noun)
{
  return std::to_string(count) + " " + noun + (count == 1 ? "" : "s");
}

}  // namespace

void PrintProblems(const check::Report& report, const std::string& name)
{
  std::string lines;
  for (const check::Located& problem : report.problems)
    lines += check::LineOf(problem, name) + "\n";
  std::cerr << lines << std::flush;
}

bool StopsAt(const check::Report& report, bool strict)
{
  return report.errors > 0 || (strict && report.warnings > 0) ||
         std::any_of(report.problems.begin(), report.problems.end(),
                     [](const check::Located& p) { return check::IsDataLost(p.code); });
}

std::string CountsOf(const check::Report& report)
{
  return Counted(report.errors, "error") + ", " + Counted(report.warnings, "warning");
}

}  // namespace morlen::run
