#include "check/findings.h"

#include <algorithm>
#include <iterator>
#include <tuple>

#include "check/joined.h"

namespace morlen::check {
namespace {

// In the order of the codes.
constexpr const char* kNames[] = {
    "refused",
    "unknown-keyword",
    "word-missing",
    "number-partly-read",
    "value-at-free-component",
    "key-without-value",
    "key-misread",
    "lone-width",
    "records-lost",
    "unit-order",
    "negative-weight",
    "face-missing",
    "key-lost",
    "items-contradict",
    "text-skipped",
    "text-ignored",
    "key-ignored",
    "value-glued",
    "word-by-part",
    "word-by-prefix",
    "key-by-prefix",
    "record-continued",
    "not-decimal",
    "word-in-comment",
    "element-repeated",
    "defined-twice",
    "item-repeated",
    "unknown-reference",
    "model-refused",
    "section-incomplete",
    "poisson-ratio",
    "asymmetric-material",
    "axes-refused",
    "solver-refused",
    "element-without-size",
    "turned-element",
    "sliver",
    "coincident-nodes",
    "near-vertical-beam",
    "separate-parts",
    "free-motion",
    "mechanism",
    "unused-node",
    "unused-material",
    "unused-units",
    "weight-without-direction",
    "shell-edge-supported",
    "shell-fold",
    "spring-under-conversion",
    "unused-case",
};
static_assert(std::size(kNames) == static_cast<std::size_t>(Code::kCount));

auto KeyOf(const Finding& problem)
{
  return std::make_tuple(problem.offset == kWholeFile, problem.offset, problem.severity,
                         std::string_view(problem.message));
}

}  // namespace

const char* NameOf(Code code)
{
  return kNames[static_cast<std::size_t>(code)];
}

bool IsDataLost(Code code)
{
  return code >= Code::NumberPartlyRead && code <= Code::ItemsContradict;
}

void Motion::Normalise()
{
  constexpr double kNone = 1e-6;
  double longest = 0.0;
  for (const Vec3& vector : vectors)
    longest = std::max(longest, Length(vector));
  std::size_t kept = 0;
  for (std::size_t i = 0; i < nodes.size(); ++i) {
    if (!(Length(vectors[i]) > kNone * longest))
      continue;
    nodes[kept] = nodes[i];
    for (int k = 0; k < 3; ++k)
      vectors[kept][k] = vectors[i][k] / longest;
    ++kept;
  }
  nodes.resize(kept);
  vectors.resize(kept);
}

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
      located.push_back({problem.severity,
                         problem.code,
                         0,
                         0,
                         problem.message,
                         problem.hint,
                         {},
                         problem.motion});
      continue;
    }
    const std::size_t place = static_cast<std::size_t>(problem.offset);
    for (std::size_t end = text.find('\n', lineStart); end < place;
         end = text.find('\n', lineStart)) {
      lineStart = end + 1;
      ++line;
    }
    located.push_back({problem.severity,
                       problem.code,
                       line,
                       static_cast<int>(place - lineStart) + 1,
                       problem.message,
                       problem.hint,
                       {},
                       problem.motion});
  }
  return located;
}

std::string PlaceOf(const Located& problem, const std::string& file)
{
  const std::string& name = problem.file.empty() ? file : problem.file;
  return problem.line == 0
             ? name
             : name + ":" + std::to_string(problem.line) + ":" + std::to_string(problem.column);
}

std::string TextOf(const Located& problem)
{
  std::string text = IsDataLost(problem.code) ? "data lost: " : "";
  text += problem.message;
  if (!problem.hint.empty())
    text += " (hint: " + problem.hint + ")";
  return text;
}

std::string LineOf(const Located& problem, const std::string& file)
{
  return PlaceOf(problem, file) + ": " + SeverityName(problem.severity) + ": " + TextOf(problem);
}

const char* SeverityName(Severity severity)
{
  return severity == Severity::Error ? "error" : "warning";
}

}  // namespace morlen::check
