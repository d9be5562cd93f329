#pragma once

#include <string>
#include <vector>

namespace morlen {

/// One line of the verification manual: a result of the program and its reference value.
struct VerifiedResult
{
  std::string problem;
  std::string source;  ///< of the reference
  std::string quantity;
  double reference = 0.0;
  double result = 0.0;
  double tolerance = 1e-6;  ///< largest difference relative to the reference

  bool Holds() const;
};

/// A table of the manual with its heading.
struct VerifiedSection
{
  std::string title;
  std::vector<VerifiedResult> results;
};

/// The sections in the format of the manual.
std::string ManualText(const std::vector<VerifiedSection>& sections);

/// Computes frames, beams and solids whose solution is known in closed form.
std::vector<VerifiedSection> ClosedForms();

/// Envelopes of load cases, and the number of combinations.
VerifiedSection LoadCases();

/// The orders of convergence of the elements to manufactured solutions.
VerifiedSection ManufacturedSolutions();

}  // namespace morlen
