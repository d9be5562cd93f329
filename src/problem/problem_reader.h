#pragma once

#include <fstream>

namespace morlen {

class TextScan;
struct Problem;

/// Reads a whole problem file: header, keywords, and the checks at the end. Fatal on the first
/// error.
void ReadProblem(std::ifstream& in, Problem& problem);
void ReadProblem(TextScan& text, Problem& problem);

}  // namespace morlen
