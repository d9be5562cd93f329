#pragma once

#include <filesystem>
#include <memory>
#include <span>
#include <string>
#include <vector>

#include "case_file/case_file.h"
#include "cases/combination.h"
#include "common/model_data.h"
#include "problem/load_set.h"

namespace morlen::cases {

/// An envelope and its members: the cases and combinations over which the extremes are taken.
struct Envelope
{
  std::string name;
  std::vector<int> members;  ///< places in Study::combinations, ascending
};

/// A file of load cases with its model and all loads, ready to be solved.
struct Study
{
  std::filesystem::path modelFile;
  std::vector<std::filesystem::path> inputs;  ///< all files that were read
  std::vector<std::string> titles;            ///< of the cases; may be empty
  int cases = 0;
  /// The cases, each with the factor 1, then the combinations of the file, then those made from its
  /// actions. Names are unique.
  std::vector<Combination> combinations;
  std::vector<Envelope> envelopes;
  std::unique_ptr<Problem> problem;  ///< without loads, not yet prepared
  model::Model model;
  std::vector<LoadSet> loads;  ///< of the cases

  bool IsCase(int combination) const { return combination < cases; }
};

/// The most combinations that actions may make, with those of the file.
constexpr double kMostCombinations = 20000;

/// Reads a file with everything that it names. Null when there are errors. written: names or
/// patterns on the command line, which count as a use of a case.
std::unique_ptr<Study> ReadStudy(const std::string& file, std::string_view text,
                                 std::span<const std::string> written, Problems& problems);

/// The combinations and envelopes that names or patterns select, ascending. Adds those that match
/// nothing to `unmatched`.
struct Selection
{
  std::vector<int> combinations, envelopes;
};
Selection Select(const Study& study, std::span<const std::string> patterns,
                 std::vector<std::string>& unmatched);

/// The factors as text: "1.35 G + 1.5 Q1".
std::string TextOf(const Study& study, const Combination& combination);

}  // namespace morlen::cases
