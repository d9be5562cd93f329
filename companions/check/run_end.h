#pragma once

#include <functional>
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

/// Runs a step whose first error ends it, and nothing else. Neither the error nor warnings are
/// printed. Returns true when there was no error.
bool Succeeds(const std::function<void()>& step);

}  // namespace morlen::check
