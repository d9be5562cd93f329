#pragma once

#include <functional>
#include <optional>
#include <string>

#include "base/errorwriter.h"

namespace morlen::check {

/// Thrown in place of the end of the run.
struct RunEnded
{
  std::string message;
};

/// While it exists, errors of this thread throw RunEnded instead of ending the process.
class ThrownErrors
{
public:
  ThrownErrors();
  ThrownErrors(const ThrownErrors&) = delete;
  ThrownErrors& operator=(const ThrownErrors&) = delete;
  ~ThrownErrors();

private:
  ErrorWriter::EndOfRun previous;
};

/// An error that has ended a step.
struct Failure
{
  std::string message;
  std::string hint;  ///< may be empty
};

/// Runs a step whose first error ends it, and nothing else. The error is not printed.
std::optional<Failure> FailureOf(const std::function<void()>& step);

/// The same without the error. Warnings are not printed either. Returns true when there was no
/// error.
bool Succeeds(const std::function<void()>& step);

}  // namespace morlen::check
