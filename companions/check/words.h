#pragma once

#include <string_view>

namespace morlen::check {

/// True for the words that begin a block or a setting of a problem file, in any case.
bool IsKeyword(std::string_view word);

/// The keyword, or "end", that a misspelt word probably means; empty when none is near.
std::string_view NearestKeyword(std::string_view word);

}  // namespace morlen::check
