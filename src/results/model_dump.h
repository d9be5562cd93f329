#pragma once

#include <fstream>

namespace morlen {

struct Problem;

/// Lists the whole model. Not used by the analysis itself.
void PrintTo(const Problem& problem, std::ofstream& out);

}  // namespace morlen
