#pragma once

#include <iosfwd>
#include <span>

#include "cases/result_layout.h"

namespace morlen {

/// Writes the column of a case or a combination in the formats of the program.
class CaseWriter
{
public:
  /// The loads of the column are in the problem, which has none, until the writer ends.
  CaseWriter(Problem& problem, const ElementFamilies& families, const ResultLayout& layout,
             std::span<const double> column);

  void WriteText(std::ostream& out) const;
  void WritePost(std::ostream& out) const;

private:
  const Problem& problem;
  const ElementFamilies& families;
  Solution solution;
  LoadSet spanLoads;
  LoadsInPlace inPlace;
};

}  // namespace morlen
