#pragma once

#include <string>

namespace morlen {

class TextScan;
struct Problem;

// Readers of single keywords. `value` is the first value of the keyword; a reader takes further
// values from the text.

void ReadNumOfDivisions(TextScan& text, const std::string& value, Problem& problem);
void ReadDoSmoothing(TextScan& text, const std::string& value, Problem& problem);
void ReadCoplanarityAngle(TextScan& text, const std::string& value, Problem& problem);
void ReadSolver(TextScan& text, const std::string& value, Problem& problem);
void ReadShellFormulation(TextScan& text, const std::string& value, Problem& problem);
void ReadGravityDirection(TextScan& text, const std::string& value, Problem& problem);

/// The block `materials`, from after the keyword to its end.
void ReadMaterials(TextScan& text, Problem& problem);

}  // namespace morlen
