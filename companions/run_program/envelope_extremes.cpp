#include "run_program/envelope_extremes.h"

#include <cmath>
#include <string>
#include <string_view>

namespace morlen::run {

namespace {

/// A result of the summary: the components of which the largest counts, and where they are.
struct Result
{
  const char* label;
  std::string_view components[2];  ///< an empty one is none
  const char* place;
};

constexpr Result kResults[] = {
    {"displacement", {"u"}, "at node"},
    {"N", {"N"}, "in beam"},
    {"M", {"My", "Mz"}, "in beam"},
    {"shell moment", {"M1", "M2"}, "in shell"},
    {"shell force", {"N1", "N2"}, "in shell"},
    {"von Mises", {"von_Mises"}, "at node"},
};

const cases::Peak* LargestOf(std::span<const cases::Peak> peaks, const Result& result)
{
  const cases::Peak* largest = nullptr;
  for (const cases::Peak& peak : peaks)
    for (const std::string_view component : result.components)
      if (peak.component == component &&
          std::fabs(peak.value) > (largest ? std::fabs(largest->value) : 0.0))
        largest = &peak;
  return largest;
}

}  // namespace

std::vector<Extreme> ExtremesOf(const model::Model& model, std::span<const cases::Peak> peaks)
{
  std::vector<Extreme> extremes;
  for (const Result& result : kResults)
    if (const cases::Peak* peak = LargestOf(peaks, result))
      extremes.push_back({result.label, peak->value, ShownUnit(model.units, peak->unit),
                          std::string(result.place) + " " + std::to_string(peak->number) + " (" +
                              peak->combination + ")"});
  return extremes;
}

}  // namespace morlen::run
