#pragma once

#include <array>
#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace morlen {

/// The numbers of a text results file, by node or element.
struct TextResults
{
  std::map<int, std::vector<double>> displacements;
  std::map<int, std::array<std::vector<double>, 2>> endForces;  ///< first and second end
  std::map<int, std::vector<double>> reactions;
};

TextResults ParseTextResults(std::string_view text);

/// The headers of the blocks of a post-process results file in their order, each without the part
/// from "4 1.0" on.
std::vector<std::string> KivBlockNames(std::string_view text);

/// A block of a post-process results file: for each node or element its points, for each point its
/// values. The name is the beginning of the header of the block.
std::map<int, std::vector<std::vector<double>>> KivBlock(std::string_view text,
                                                         std::string_view name);

}  // namespace morlen
