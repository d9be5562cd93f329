#pragma once

#include <filesystem>
#include <span>
#include <string>
#include <vector>

#include "common/command_line.h"
#include "common/run_record.h"
#include "run_program/extremes.h"

namespace morlen::run {

/// Files of other runs that have, or had, names of this one.
struct Neighbours
{
  std::vector<std::filesystem::path> older;  ///< results in other formats, which stay
  std::string replaced;  ///< another input, whose report and record are replaced; empty for none
};

/// The largest results of an envelope.
struct EnvelopeExtremes
{
  std::string name;
  std::vector<Extreme> extremes;
};

/// The content of the summary of a run that is done.
struct Summary
{
  RunFacts facts;
  double balance = 0.0;   ///< the residual of loads and reactions
  std::string balanceOf;  ///< the load case that has it; empty for a problem file
  std::string advice;     ///< on a bad balance; empty for a good one
  std::vector<Extreme> extremes;
  std::vector<EnvelopeExtremes> envelopes;
  int checkWarnings = 0;
  int analysisWarnings = 0;
  Neighbours neighbours;
  double seconds = 0.0;
};

/// The balance and the estimated error above which results are not reliable.
constexpr double kLargestError = 1e-4;

/// The first names of a list, and how many there are more.
std::string Listed(std::span<const std::filesystem::path> names);

/// Found when the balance or the estimated error is too large, or is no number.
ExitStatus StatusOf(const Summary& summary);

/// The warnings on a bad balance and a bad estimate, a line each.
std::string WarningsOf(const Summary& summary);

/// The summary as lines of text.
std::string TextOf(const Summary& summary);

}  // namespace morlen::run
