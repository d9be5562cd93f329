#pragma once

#include <optional>
#include <string>

#include "check/findings.h"
#include "variants/variant.h"

namespace morlen::variants {

enum class Outcome
{
  Same,         ///< the results of the base model, and the check finds nothing
  Doubtful,     ///< the results of the base model, and the check has a finding
  Cut,          ///< as without the rest of the line: the same end of the run, the same findings
  CutDoubtful,  ///< as without the rest of the line, and the check has a finding there
  Refused,      ///< this message with a hint, and the check has an error
  Lost,         ///< read in another sense: the check has an error that says that data is lost
  Ignored       ///< the same with the results of the base model
};

struct Expected
{
  Outcome outcome;
  std::string message = {};  ///< with Refused
  check::Code code = {};     ///< with Lost and Ignored
};

/// What must come of a variant; none when no rule has its site.
std::optional<Expected> ExpectedOf(const Site& site);

}  // namespace morlen::variants
