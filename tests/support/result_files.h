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

/// The headers of the blocks of a post-process results file, each cut before "4 1.0", in
/// their order.
std::vector<std::string> KivBlockNames(std::string_view text);

/// A block of a post-process results file: per node or element its points, each with its
/// values. The name is the beginning of the block's header.
std::map<int, std::vector<std::vector<double>>> KivBlock(std::string_view text,
                                                         std::string_view name);

}  // namespace morlen
