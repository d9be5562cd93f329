#include "report/findings_of.h"

#include <algorithm>
#include <iostream>

#include "check/check.h"
#include "common/file_text.h"

namespace morlen {

std::vector<Finding> FindingsOf(std::span<const check::Located> problems, const std::string& file)
{
  std::vector<Finding> findings;
  for (const check::Located& problem : problems)
    findings.push_back({.error = problem.severity == check::Severity::Error,
                        .place = check::PlaceOf(problem, file),
                        .text = check::TextOf(problem),
                        .motion = problem.motion});
  return findings;
}

std::vector<Finding> FindingsIn(const std::filesystem::path& file)
{
  return FindingsOf(check::CheckText(FileText(file).value_or("")).problems,
                    file.filename().string());
}

bool HasErrors(const std::vector<Finding>& findings)
{
  return std::any_of(findings.begin(), findings.end(),
                     [](const Finding& finding) { return finding.error; });
}

void WarnOfErrors(const std::vector<Finding>& findings, const std::string& file)
{
  const auto errors = std::count_if(findings.begin(), findings.end(),
                                    [](const Finding& finding) { return finding.error; });
  if (errors > 0)
    std::cerr << "warning: errors in the problem file, " << errors << ": see morlen-check " << file
              << "\n";
}

}  // namespace morlen
