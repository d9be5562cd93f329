#include "variants/judged.h"

#include <algorithm>
#include <map>
#include <optional>
#include <sstream>
#include <tuple>

#include "variants/outcomes.h"

namespace morlen::variants {

using check::Code;
using check::Located;
using check::Severity;

Judged::Judged(const std::string& text) : run(RunText(text)), report(check::CheckText(text)) {}

bool Judged::HasResultsOf(const Judged& other) const
{
  return run.Succeeded() && run.results == other.run.results &&
         run.postResults == other.run.postResults;
}

bool Judged::HasEndOf(const Judged& other) const
{
  return run.Succeeded() ? HasResultsOf(other)
                         : !other.run.Succeeded() && run.message == other.run.message;
}

bool Judged::HasError(Code code) const
{
  return Has(Severity::Error, code);
}

bool Judged::HasWarning(Code code) const
{
  return Has(Severity::Warning, code);
}

bool Judged::Has(Severity severity, Code code) const
{
  return std::any_of(report.problems.begin(), report.problems.end(),
                     [&](const Located& p) { return p.severity == severity && p.code == code; });
}

bool Judged::HasFindingIn(std::size_t line) const
{
  return std::any_of(report.problems.begin(), report.problems.end(),
                     [&](const Located& p) { return p.line == static_cast<int>(line); });
}

bool Judged::HasFindingsOf(const Judged& other) const
{
  const auto same = [](const Located& a, const Located& b) {
    return std::tie(a.severity, a.code, a.line) == std::tie(b.severity, b.code, b.line);
  };
  return std::equal(report.problems.begin(), report.problems.end(), other.report.problems.begin(),
                    other.report.problems.end(), same);
}

std::string Judged::Summary() const
{
  std::string text = run.Succeeded() ? "results" : run.message;
  for (const std::string& warning : run.warnings)
    text += "\n  warning: " + warning;
  for (const Located& problem : report.problems)
    text +=
        std::string("\n  ") + check::NameOf(problem.code) + ": " + check::LineOf(problem, "check");
  return text;
}

namespace {

const Judged& BaseOf(const Site& site)
{
  static std::map<const BaseModel*, Judged> bases;
  return bases.try_emplace(site.model, site.model->text).first->second;
}

// Collects the first difference.
class Verdict
{
public:
  void Expect(bool holds, const char* expectation)
  {
    if (!holds && text.empty())
      text = expectation;
  }
  const std::string& Text() const { return text; }

private:
  std::string text;
};

void ExpectLost(const Judged& judged, Code code, Verdict& verdict)
{
  verdict.Expect(judged.HasError(code), "the check's error of data lost");
  // The program itself says that it skips records.
  if (code == Code::RecordsLost && judged.run.Succeeded())
    verdict.Expect(!judged.run.warnings.empty(), "a warning of the program");
}

std::string Difference(const Judged& judged, const Site& site, const Expected& expected)
{
  Verdict verdict;
  const Judged& base = BaseOf(site);
  switch (expected.outcome) {
    case Outcome::Same:
      verdict.Expect(judged.HasResultsOf(base), "the results of the base model");
      verdict.Expect(judged.report.problems.empty(), "no finding of the check");
      verdict.Expect(judged.run.warnings.empty(), "no warning of the program");
      break;
    case Outcome::Doubtful:
      verdict.Expect(judged.HasResultsOf(base), "the results of the base model");
      verdict.Expect(!judged.report.problems.empty(), "a finding of the check");
      break;
    case Outcome::Cut:
    case Outcome::CutDoubtful: {
      const Judged cut(WithoutRest(site));
      verdict.Expect(judged.HasEndOf(cut), "the end of the run without the rest of the line");
      if (expected.outcome == Outcome::Cut)
        verdict.Expect(judged.HasFindingsOf(cut), "the findings without the rest of the line");
      else
        verdict.Expect(judged.HasFindingIn(site.line + 1), "a finding in the line");
      break;
    }
    case Outcome::Refused:
      verdict.Expect(judged.run.message == expected.message, "the message");
      verdict.Expect(!judged.run.hint.empty(), "a hint");
      verdict.Expect(judged.report.errors > 0, "an error of the check");
      break;
    case Outcome::Ignored:
      verdict.Expect(judged.HasResultsOf(base), "the results of the base model");
      ExpectLost(judged, expected.code, verdict);
      break;
    case Outcome::Lost:
      ExpectLost(judged, expected.code, verdict);
      break;
  }
  return verdict.Text();
}

std::string Described(const Judged& judged, const Site& site, const Expected& expected)
{
  std::ostringstream out;
  if (!expected.message.empty())
    out << "\n  message wanted: " << expected.message;
  if (expected.outcome == Outcome::Lost || expected.outcome == Outcome::Ignored)
    out << "\n  code wanted: " << check::NameOf(expected.code);
  out << "\n  run: " << (judged.HasResultsOf(BaseOf(site)) ? "the same " : "") << judged.Summary();
  return out.str();
}

}  // namespace

std::string Judge(const Variant& variant)
{
  const std::optional<Expected> expected = ExpectedOf(variant.site);
  if (!expected)
    return "no rule has this variant";
  const Judged judged(variant.text);
  const std::string difference = Difference(judged, variant.site, *expected);
  return difference.empty() ? ""
                            : "wanted: " + difference + Described(judged, variant.site, *expected);
}

}  // namespace morlen::variants
