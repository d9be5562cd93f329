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
  std::string_view table;
  std::string_view components[2];  ///< an empty one is none
  const char* place;
};

constexpr Result kResults[] = {
    {"displacement of nodes", "displacements", {"u"}, "at node"},
    {"N", "beam_forces", {"N"}, "in beam"},
    {"M", "beam_forces", {"My", "Mz"}, "in beam"},
    {"shell moment", "shell_forces", {"M1", "M2"}, "in shell"},
    {"shell force", "shell_forces", {"N1", "N2"}, "in shell"},
    {"von Mises", "stresses", {"von_Mises"}, "at node"},
};

const cases::Peak* LargestOf(std::span<const cases::Peak> peaks, const Result& result)
{
  const cases::Peak* largest = nullptr;
  for (const cases::Peak& peak : peaks)
    for (const std::string_view component : result.components)
      if (peak.table == result.table && peak.component == component &&
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
