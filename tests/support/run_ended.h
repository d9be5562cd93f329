#pragma once

#include <string>

#include "base/errorwriter.h"

namespace morlen {

/// Thrown in place of the process's end while FatalCaught runs.
struct RunEnded
{
  std::string message;
};

/// The message with which the action ends the run; "(the run went on)" when it does not.
template <class Action>
std::string FatalCaught(Action action)
{
  const auto previous = errorwriter.SetEndOfRun(
      [](std::string_view message) { throw RunEnded{std::string(message)}; });
  std::string message = "(the run went on)";
  try {
    action();
  } catch (const RunEnded& end) {
    message = end.message;
  }
  errorwriter.SetEndOfRun(previous);
  return message;
}

}  // namespace morlen
