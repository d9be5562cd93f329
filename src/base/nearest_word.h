#pragma once

#include <span>
#include <string_view>

namespace morlen {

/// The candidate that a misspelt word means most likely: the one with the fewest changes (letters
/// added, left out, replaced, or exchanged with their neighbour; case does not count). Empty when
/// more than a third of the letters would change.
std::string_view NearestWord(std::string_view word, std::span<const std::string_view> candidates);

}  // namespace morlen
