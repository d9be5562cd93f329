#include "check/findings.h"

#include <algorithm>
#include <tuple>

#include "check/joined.h"

namespace morlen::check {
namespace {

auto KeyOf(const Finding& problem)
{
  return std::make_tuple(problem.offset == kWholeFile, problem.offset, problem.severity,
                         std::string_view(problem.message));
}

}  // namespace

std::vector<Located> Locate(std::vector<Finding> findings, std::string_view text)
{
  std::stable_sort(findings.begin(), findings.end(),
                   [](const Finding& a, const Finding& b) { return KeyOf(a) < KeyOf(b); });
  const auto same = [](const Finding& a, const Finding& b) { return KeyOf(a) == KeyOf(b); };
  findings.erase(std::unique(findings.begin(), findings.end(), same), findings.end());
  std::vector<Located> located;
  std::size_t lineStart = 0;
  int line = 1;
  for (const Finding& problem : findings) {
    if (problem.offset == kWholeFile) {
      located.push_back({problem.severity, 0, 0, problem.message});
      continue;
    }
    const std::size_t place = static_cast<std::size_t>(problem.offset);
    for (std::size_t end = text.find('\n', lineStart); end < place;
         end = text.find('\n', lineStart)) {
      lineStart = end + 1;
      ++line;
    }
    located.push_back(
        {problem.severity, line, static_cast<int>(place - lineStart) + 1, problem.message});
  }
  return located;
}

std::string PlaceOf(const Located& problem, const std::string& file)
{
  return problem.line == 0
             ? file
             : file + ":" + std::to_string(problem.line) + ":" + std::to_string(problem.column);
}

std::string LineOf(const Located& problem, const std::string& file)
{
  return PlaceOf(problem, file) + ": " + SeverityName(problem.severity) + ": " + problem.message;
}

const char* SeverityName(Severity severity)
{
  return severity == Severity::Error ? "error" : "warning";
}

}  // namespace morlen::check
