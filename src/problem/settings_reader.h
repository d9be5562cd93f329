#pragma once

#include <string>

namespace morlen {

class TextScan;
struct Problem;

// Readers of single keywords. `value` is the first value of the keyword; a reader takes further
// values from the text.

void ReadUnitsMesh(TextScan& text, const std::string& value, Problem& problem);
void ReadUnitsMatAndLoad(TextScan& text, const std::string& value, Problem& problem);
void ReadUnitsRes(TextScan& text, const std::string& value, Problem& problem);
void ReadNumOfDivisions(TextScan& text, const std::string& value, Problem& problem);
void ReadDoSmoothing(TextScan& text, const std::string& value, Problem& problem);
void ReadCoplanarityAngle(TextScan& text, const std::string& value, Problem& problem);
void ReadSolver(TextScan& text, const std::string& value, Problem& problem);
void ReadGravityDirection(TextScan& text, const std::string& value, Problem& problem);

/// The blocks `units_names` and `materials`, from after the keyword to their end.
void ReadUnitsNames(TextScan& text, Problem& problem);
void ReadMaterials(TextScan& text, Problem& problem);

}  // namespace morlen
