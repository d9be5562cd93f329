#include "check/words.h"

#include <algorithm>
#include <array>
#include <iterator>
#include <numeric>

#include "base/textscan.h"

namespace morlen::check {
namespace {

constexpr std::string_view kKeywords[] = {"end",
                                          "mesh",
                                          "coordinates",
                                          "elements",
                                          "materials",
                                          "constraints",
                                          "nodal_point_loads",
                                          "local_pressure_loads",
                                          "global_pressure_loads",
                                          "global_projected_pressure_loads",
                                          "face_loads",
                                          "temperature_loads",
                                          "rotules",
                                          "elem_rotules",
                                          "units_names",
                                          "units_mesh",
                                          "units_mat_and_load",
                                          "units_res",
                                          "ConvertTo6Nodes",
                                          "MainStresses",
                                          "MainAndLocalStresses",
                                          "NumOfDivisions",
                                          "DoSmoothing",
                                          "CoplanarityAngle",
                                          "Solver",
                                          "GravityDirection"};

constexpr std::size_t kLongest = 40;  // of the keywords

// The number of letters to insert, drop or replace that make one word the other, in any case
// (V. I. Levenshtein, "Binary codes capable of correcting deletions, insertions, and reversals",
// 1966). `costs` holds one row of the table of all beginnings. b: a
// keyword.
std::size_t Distance(std::string_view a, std::string_view b)
{
  std::array<std::size_t, kLongest + 1> costs;
  std::iota(costs.begin(), costs.end(), std::size_t{0});
  for (std::size_t i = 0; i < a.size(); ++i) {
    std::size_t diagonal = costs[0]++;
    for (std::size_t j = 0; j < b.size(); ++j) {
      const std::size_t replaced =
          diagonal + (EqualsNoCase(a.substr(i, 1), b.substr(j, 1)) ? 0 : 1);
      diagonal = costs[j + 1];
      costs[j + 1] = std::min({replaced, diagonal + 1, costs[j] + 1});
    }
  }
  return costs[b.size()];
}

}  // namespace

bool IsKeyword(std::string_view word)
{
  return std::any_of(std::next(std::begin(kKeywords)), std::end(kKeywords),
                     [word](std::string_view keyword) { return EqualsNoCase(word, keyword); });
}

std::string_view NearestKeyword(std::string_view word)
{
  std::string_view nearest;
  std::size_t least = 3;
  for (const std::string_view keyword : kKeywords) {
    if (word.size() > keyword.size() + 2)
      continue;
    const std::size_t distance = Distance(word, keyword);
    if (distance < least && 2 * distance < keyword.size() + 2) {
      nearest = keyword;
      least = distance;
    }
  }
  return nearest;
}

bool BeginsForeignComment(std::string_view word)
{
  if (word.starts_with("//") || word.starts_with("--") || word.starts_with("/*"))
    return true;
  return !word.empty() && std::string_view("!;%$*'\"").find(word[0]) != std::string_view::npos;
}

}  // namespace morlen::check
