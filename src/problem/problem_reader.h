#pragma once

#include <fstream>
#include <string_view>
#include <vector>

namespace morlen {

class TextScan;
struct Problem;

/// Reads a whole problem file: header, keywords, and the checks at the end. Fatal on the first
/// error.
void ReadProblem(std::ifstream& in, Problem& problem);
void ReadProblem(TextScan& text, Problem& problem);

/// All keywords of the top level, and those of the lists of a mesh.
std::vector<std::string_view> Keywords();

}  // namespace morlen
