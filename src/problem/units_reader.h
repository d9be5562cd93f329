#pragma once

#include <string>

namespace morlen {

class TextScan;
struct Problem;

// Readers of the unit lines. `value` is the first value of the keyword.

void ReadUnitsMesh(TextScan& text, const std::string& value, Problem& problem);
void ReadUnitsMatAndLoad(TextScan& text, const std::string& value, Problem& problem);
void ReadUnitsRes(TextScan& text, const std::string& value, Problem& problem);

/// The block `units_names`, from after the keyword to its end. Fatal when a system is given twice
/// with different contents, or a length unit with two factors.
void ReadUnitsNames(TextScan& text, Problem& problem);

/// Fatal when a system has a factor that is not positive. The lines that use such a system refuse
/// it earlier.
void RequirePositiveFactors(const Problem& problem);

}  // namespace morlen
