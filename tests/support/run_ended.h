#pragma once

#include <string>

#include "base/errorwriter.h"

namespace morlen {

/// Thrown instead of the end of the process during FatalCaught.
struct RunEnded
{
  std::string message;
};

/// The message with which the action ends the run; "(the run went on)" when the run does not end.
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
