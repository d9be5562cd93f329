#pragma once

#include <string>
#include <string_view>

namespace morlen {

// What is done with the text of a problem file, whatever it is. The fuzzers make such texts;
// the tests repeat those that are kept.

/// How a text was taken.
struct Outcome
{
  std::string message;  ///< the last of the run; "(the run went on)" without one
  bool finite = true;   ///< whether the results hold nothing but numbers
  bool IsRight() const { return finite && !message.empty(); }
};

/// Reads the text as a problem file.
Outcome ReadText(std::string_view text);

/// The whole run on the text, in this process: reads it, solves it and writes both result files.
/// Two settings are bounded, so that a small text takes a small time: the divisions of beams
/// and the iterations of the sparse solver.
Outcome AnalyseText(std::string_view text);

}  // namespace morlen
