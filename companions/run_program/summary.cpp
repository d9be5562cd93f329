#include "run_program/summary.h"

#include <algorithm>
#include <cstdio>
#include <span>

#include "common/utf8.h"

namespace morlen::run {

namespace {

// A line of the summary: its values begin in one column.
std::string Line(const std::string& label, const std::string& value)
{
  constexpr std::size_t kColumn = 14;
  std::string line = label + ":";
  const std::size_t width = CharacterCount(line);
  line.append(std::max(width + 1, kColumn) - width, ' ');
  return line + value + "\n";
}

std::string Short(double value)
{
  char text[32];
  std::snprintf(text, sizeof text, "%.2g", value);
  return text;
}

std::string TimeText(double seconds)
{
  constexpr double kLong = 10.0;
  char text[32];
  std::snprintf(text, sizeof text, seconds < kLong ? "%.2g s" : "%.0f s", seconds);
  return text;
}

std::string SolverText(const RunFacts& facts)
{
  std::string text = facts.solver + ", " + std::to_string(facts.equations) + " equations";
  if (facts.iterations > 0)
    text += ", " + std::to_string(facts.iterations) + " iterations";
  return text;
}

bool IsGood(double error)
{
  return error <= kLargestError;
}

// The extremes of an envelope, one below the other.
std::string EnvelopeLines(const EnvelopeExtremes& envelope)
{
  std::string text;
  for (const Extreme& extreme : envelope.extremes) {
    const std::string value = extreme.label + " " + TextOf(extreme);
    const std::string first = Line("envelope " + envelope.name, value);
    const std::size_t column = CharacterCount(first) - CharacterCount(value) - 1;
    text += text.empty() ? first : std::string(column, ' ') + value + "\n";
  }
  return text;
}

std::string EnvelopeLines(std::span<const EnvelopeExtremes> envelopes)
{
  constexpr std::size_t kMost = 4;
  std::string text;
  for (const EnvelopeExtremes& envelope : envelopes.first(std::min(envelopes.size(), kMost)))
    text += EnvelopeLines(envelope);
  if (envelopes.size() > kMost)
    text += Line("envelopes", std::to_string(envelopes.size() - kMost) + " more in the report");
  return text;
}

std::string WarningCount(const Summary& summary)
{
  if (summary.checkWarnings == 0 && summary.analysisWarnings == 0)
    return "none";
  return std::to_string(summary.checkWarnings) + " of the check, " +
         std::to_string(summary.analysisWarnings) + " of the analysis";
}

}  // namespace

std::string Listed(std::span<const std::filesystem::path> names)
{
  constexpr std::size_t kMost = 4;
  std::string text;
  for (const std::filesystem::path& name : names.first(std::min(names.size(), kMost)))
    text += (text.empty() ? "" : ", ") + name.string();
  return names.size() > kMost ? text + " and " + std::to_string(names.size() - kMost) + " more"
                              : text;
}

ExitStatus StatusOf(const Summary& summary)
{
  return IsGood(summary.balance) && IsGood(summary.facts.estimatedError) ? ExitStatus::Done
                                                                         : ExitStatus::Found;
}

std::string WarningsOf(const Summary& summary)
{
  std::string text;
  if (!IsGood(summary.balance))
    text += "warning: loads and reactions are not in equilibrium" +
            (summary.balanceOf.empty() ? "" : " in case " + summary.balanceOf) + "." +
            (summary.advice.empty() ? "" : " " + summary.advice) + "\n";
  if (!IsGood(summary.facts.estimatedError))
    text += "warning: the displacements have an estimated error of " +
            Short(summary.facts.estimatedError) + ", more than " + Short(kLargestError) + "\n";
  return text;
}

std::string TextOf(const Summary& summary)
{
  const RunFacts& facts = summary.facts;
  std::string text = Line("solver", SolverText(facts));
  text += Line("why", facts.why);
  text += Line("accuracy", "residual " + Short(facts.residual) + ", estimated error " +
                               Short(facts.estimatedError));
  text += Line("balance", "residual " + Short(summary.balance) + " of loads and reactions" +
                              (summary.balanceOf.empty() ? "" : ", in case " + summary.balanceOf));
  for (const Extreme& extreme : summary.extremes)
    text += Line(extreme.label, TextOf(extreme));
  text += EnvelopeLines(summary.envelopes);
  text += Line("warnings", WarningCount(summary));
  const auto& [older, replaced] = summary.neighbours;
  if (!older.empty())
    text += Line("older files",
                 Listed(older) + (older.size() == 1 ? " is" : " are") + " not of this run");
  if (!replaced.empty())
    text += Line("replaced", "the report and the record of " + replaced);
  return text + Line("time", TimeText(summary.seconds));
}

}  // namespace morlen::run
