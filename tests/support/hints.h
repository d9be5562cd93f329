#pragma once

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "base/errorwriter.h"
#include "support/run_ended.h"

namespace morlen {

/// The hint of the error with which the action ends the run.
template <class Action>
std::string HintCaught(Action action)
{
  EXPECT_NE(FatalCaught(action), "(the run went on)");
  return std::string(errorwriter.Hint());
}

/// Collects the warnings of this thread while it exists.
class WarningsHeard
{
public:
  WarningsHeard() : previous(errorwriter.SetWarningListener(Hear)) { Heard().clear(); }
  WarningsHeard(const WarningsHeard&) = delete;
  WarningsHeard& operator=(const WarningsHeard&) = delete;
  ~WarningsHeard() { errorwriter.SetWarningListener(previous); }

  const std::vector<std::string>& Lines() const { return Heard(); }

private:
  static std::vector<std::string>& Heard()
  {
    static thread_local std::vector<std::string> heard;
    return heard;
  }
  static void Hear(std::string_view warning) { Heard().emplace_back(warning); }

  ErrorWriter::WarningListener previous;
};

}  // namespace morlen
