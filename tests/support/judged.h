#pragma once

#include <string>

#include "support/precise.h"

namespace morlen {

/// The outcome of a run in this process, and the errors of its results against the reference.
struct Judged
{
  std::string message;  ///< the message that ended the run; empty when the model was solved
  std::string info;     ///< the information stream
  bool warned = false;  ///< a warning in the information stream or on standard error
  bool direct = false;  ///< solved by the direct solver
  double seconds = 0.0;
  Errors errors;

  bool IsSolved() const { return message.empty(); }
  /// True when the message says "too rough": the model can be solved only with more digits.
  bool IsTooRough() const { return message.find("too rough") != std::string::npos; }
  /// True for the message of a refused pivot, of the iteration, or of a solution that does not
  /// balance its loads.
  bool IsSolverRefusal() const
  {
    return message.find("error when solving system") != std::string::npos;
  }
  /// The outcome and the errors in one line.
  std::string Text() const;
};

/// Runs the structure. Without a reference the errors are 0.
Judged Judge(const Structure& structure, const std::string& settings,
             const PreciseResults* exact = nullptr);

/// A test name made of the letters and digits of a text, with a capital for each word.
std::string TestName(const std::string& text);

}  // namespace morlen
