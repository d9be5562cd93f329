#include <algorithm>
#include <tuple>

#include "base/nearest_word.h"
#include "case_file/case_file.h"
#include "check/joined.h"

namespace morlen::cases {
namespace {

auto KeyOf(const check::Located& p)
{
  return std::make_tuple(std::string_view(p.file), p.line == 0, p.line, p.column, p.severity,
                         std::string_view(p.message));
}

}  // namespace

void Problems::Error(Place place, std::string message, std::string hint)
{
  Add({check::Severity::Error, check::Code::Refused, place.line, place.column, std::move(message),
       std::move(hint)});
}

void Problems::Warn(check::Code code, Place place, std::string message)
{
  Add({check::Severity::Warning, code, place.line, place.column, std::move(message), ""});
}

void Problems::Add(check::Located problem)
{
  if (lost == LostData::Warning && check::IsDataLost(problem.code))
    problem.severity = check::Severity::Warning;
  errors += problem.severity == check::Severity::Error ? 1 : 0;
  all.push_back(std::move(problem));
}

std::vector<check::Located> Problems::Sorted() const
{
  std::vector<check::Located> sorted = all;
  std::stable_sort(sorted.begin(), sorted.end(),
                   [](const auto& a, const auto& b) { return KeyOf(a) < KeyOf(b); });
  const auto same = [](const auto& a, const auto& b) { return KeyOf(a) == KeyOf(b); };
  sorted.erase(std::unique(sorted.begin(), sorted.end(), same), sorted.end());
  return sorted;
}

std::string DidYouMean(std::string_view word, const std::vector<std::string_view>& candidates)
{
  const std::string_view nearest = NearestWord(word, candidates);
  return nearest.empty() ? std::string() : check::Joined("; did you mean '", nearest, "'?");
}

}  // namespace morlen::cases
