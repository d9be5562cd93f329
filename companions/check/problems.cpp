#include "check/problems.h"

#include <algorithm>
#include <tuple>

#include "check/joined.h"

namespace morlen::check {
namespace {

auto KeyOf(const Problem& problem)
{
  return std::make_tuple(problem.offset == kWholeFile, problem.offset, problem.severity,
                         std::string_view(problem.message));
}

}  // namespace

std::vector<Located> Locate(std::vector<Problem> problems, std::string_view text)
{
  std::stable_sort(problems.begin(), problems.end(),
                   [](const Problem& a, const Problem& b) { return KeyOf(a) < KeyOf(b); });
  const auto same = [](const Problem& a, const Problem& b) { return KeyOf(a) == KeyOf(b); };
  problems.erase(std::unique(problems.begin(), problems.end(), same), problems.end());
  std::vector<Located> located;
  std::size_t lineStart = 0;
  int line = 1;
  for (const Problem& problem : problems) {
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
