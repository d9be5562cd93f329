#pragma once

#include <span>
#include <vector>

namespace morlen {

struct Problem;

/// A problem as bytes, for copies and for storage between runs of the same version on machines of
/// the same kind. The problem may have been prepared for an analysis.
std::vector<char> ImageOf(const Problem& problem);

/// Fills an empty problem. Fatal for bytes that are not a whole image of this version.
void ReadImage(std::span<const char> image, Problem& problem);

/// Lets the materials that elements own take the values that their records do not give from the
/// numbered materials again, after changes of these.
void RecomposeMaterials(const Problem& problem);

}  // namespace morlen
