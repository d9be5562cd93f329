#pragma once

#include <string>
#include <string_view>

namespace morlen::check {

/// What the place of a number may hold.
enum class Expected : bool
{
  Number,      ///< any number
  WholeNumber  ///< a number of a node or element, a count
};

/// What is wrong with a word that is not a number from end to end, how the program reads it, and
/// what its author probably meant.
std::string AboutMisreadNumber(std::string_view word, Expected expected);

/// True for the words by which a material's values are found, as "A" or "Iy". Keys that begin with
/// one of them have its meaning.
bool IsMaterialKey(std::string_view rule);

/// True when a longer key means the same as the word for which it is read, as "Area" for "A".
bool MeansWhatItMatches(std::string_view key, std::string_view rule);

/// The key of a material that the author of a misread key probably meant; empty when unknown.
std::string_view LikelyKey(std::string_view key);

}  // namespace morlen::check
