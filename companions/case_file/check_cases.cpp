#include "case_file/check_cases.h"

#include "case_file/study.h"
#include "problem/problem.h"

namespace morlen::cases {

check::Report CheckCases(const std::string& file, std::string_view text)
{
  Problems problems(Problems::LostData::Error);
  const std::unique_ptr<Study> study = ReadStudy(file, text, {}, problems);
  check::Report report;
  report.problems = problems.Sorted();
  for (const check::Located& one : report.problems)
    ++(one.severity == check::Severity::Error ? report.errors : report.warnings);
  if (study)
    report.cases = {study->modelFile.string(), study->cases,
                    static_cast<int>(study->combinations.size()) - study->cases,
                    static_cast<int>(study->envelopes.size())};
  return report;
}

}  // namespace morlen::cases
