#pragma once

#include <string>

#include "support/precise.h"

namespace morlen {

/// How a run in this process ended, and how far its results are from the reference.
struct Judged
{
  std::string message;  ///< that ended the run; empty when it was solved
  std::string info;     ///< the information stream
  bool warned = false;  ///< there or on standard error
  bool direct = false;  ///< which solver it was
  double seconds = 0.0;
  Errors errors;

  bool IsSolved() const { return message.empty(); }
  /// "too rough" in the message: solvable, but not with the digits there are.
  bool IsTooRough() const { return message.find("too rough") != std::string::npos; }
  /// The message of a pivot, of the iteration, or of a solution that does not hold its loads.
  bool IsSolverRefusal() const
  {
    return message.find("error when solving system") != std::string::npos;
  }
  /// One line: how it ended, and the errors.
  std::string Text() const;
};

/// Runs the structure; without a reference the errors stay 0.
Judged Judge(const Structure& structure, const std::string& settings,
             const PreciseResults* exact = nullptr);

/// A name of a test from a text: its letters and digits, words with capitals.
std::string TestName(const std::string& text);

}  // namespace morlen
