#pragma once

#include <string>
#include <vector>

namespace morlen {

/// One line of the verification manual: a result of the program beside a reference.
struct VerifiedResult
{
  std::string problem;
  std::string source;  ///< of the reference
  std::string quantity;
  double reference = 0.0;
  double result = 0.0;
  double tolerance = 1e-6;  ///< largest difference, as a part of the reference

  bool Holds() const;
};

/// A table of the manual with its heading.
struct VerifiedSection
{
  std::string title;
  std::vector<VerifiedResult> results;
};

/// The sections as the manual has them.
std::string ManualText(const std::vector<VerifiedSection>& sections);

/// Frames, beams and solids whose solution is known in closed form, computed.
std::vector<VerifiedSection> ClosedForms();

/// Fields from which loads were derived: the orders at which the elements approach them.
VerifiedSection ManufacturedSolutions();

}  // namespace morlen
