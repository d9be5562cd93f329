#pragma once

#include <fstream>

namespace morlen {

struct Problem;

/// Lists the whole model.
void PrintTo(const Problem& problem, std::ofstream& out);

}  // namespace morlen
