#pragma once

#include <string_view>
#include <vector>

namespace morlen {

class TextScan;
struct Problem;

/// Reads the loads of a load case into a problem that has been read and not yet prepared: blocks
/// `nodal_point_loads`, the blocks of element loads, and `constraints` for settlements (see
/// ReadSettlements). They add to the loads that the problem has. Fatal for other words.
void ReadLoadBlocks(TextScan& text, Problem& problem);

/// The keywords of these blocks.
std::vector<std::string_view> LoadKeywords();

}  // namespace morlen
