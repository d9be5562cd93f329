#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace morlen {

/// The output of a run on a text in this process.
struct TextRun
{
  std::string message;                ///< of the error; "(the run went on)" without one
  std::string hint;                   ///< of the error; empty without one
  std::vector<std::string> warnings;  ///< without "warning: "
  std::string results;                ///< the text results; empty after an error
  std::string postResults;            ///< the post-process results; empty after an error

  bool Succeeded() const { return !results.empty(); }
};

/// The whole run on the text of a problem file: reads it, solves it and writes both results. Two
/// settings are bounded, so that a small text takes a small time: the divisions of beams and the
/// iterations of the sparse solver.
TextRun RunText(std::string_view text);

/// Reads the text as a problem file, and no more: there are no results.
TextRun RunReading(std::string_view text);

}  // namespace morlen
