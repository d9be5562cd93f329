#include "support/verification.h"

#include <cmath>
#include <cstdio>

namespace morlen {

namespace {

std::string Number(double value)
{
  char text[32];
  std::snprintf(text, sizeof text, "%.5g", value);
  return text;
}

// In percent. A deviation that four digits do not show counts as 0.
std::string Percent(double part)
{
  char text[32];
  std::snprintf(text, sizeof text, "%+.3f %%", 100.0 * part);
  return std::fabs(part) < 5e-6 ? "0" : text;
}

std::string Row(const VerifiedResult& r)
{
  return "| " + r.problem + " | " + r.quantity + " | " + r.source + " | " + Number(r.reference) +
         " | " + Number(r.result) + " | " + Percent((r.result - r.reference) / r.reference) +
         " |\n";
}

}  // namespace

bool VerifiedResult::Holds() const
{
  return std::fabs(result - reference) <= tolerance * std::fabs(reference);
}

std::string ManualText(const std::vector<VerifiedSection>& sections)
{
  std::string text;
  for (const VerifiedSection& section : sections) {
    text += "### " + section.title +
            "\n\n| problem | quantity | reference from | reference | result | difference |\n"
            "|---|---|---|---|---|---|\n";
    for (const VerifiedResult& result : section.results)
      text += Row(result);
    text += "\n";
  }
  return text;
}

}  // namespace morlen
