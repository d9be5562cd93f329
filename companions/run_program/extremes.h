#pragma once

#include <string>
#include <vector>

#include "common/model_data.h"
#include "common/result_data.h"

namespace morlen::run {

/// The value of a result that has the largest size.
struct Extreme
{
  std::string label;  ///< "displacement", "N", "M" ...
  double value = 0.0;
  std::string unit;
  std::string place;  ///< "at node 81", "in beam 12"
};

/// The largest results of a model, as the result files have them: the length of the displacement,
/// of nodes and along beams; N and the bending moment of beams; the principal moment and membrane
/// force of shells at their points; von Mises' stress of solids. Empty results are left out.
std::vector<Extreme> ExtremesOf(const model::Model& model, const results::Results& results);

/// A unit for the summary: one that the problem file does not name is the name of a quantity, in
/// brackets.
std::string ShownUnit(const model::Units& units, const std::string& text);

/// Replaces each extreme by that of another case with the same label where that is larger, and
/// adds `suffix` to its place.
void MergeExtremes(std::vector<Extreme>& largest, std::vector<Extreme> others,
                   const std::string& suffix);

/// "0.00438 m at node 81"
std::string TextOf(const Extreme& extreme);

}  // namespace morlen::run
