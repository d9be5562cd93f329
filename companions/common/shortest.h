#pragma once

#include <string>

namespace morlen {

/// Appends a number in the fewest digits that give the same number again.
void AppendNumber(std::string& text, double number);
void AppendNumber(std::string& text, int number);

}  // namespace morlen
