#pragma once

#include <gtest/gtest.h>

#include <string>

#include "support/run_ended.h"

namespace morlen {

/// Expects the action to end the run with exactly this message.
template <class Action>
void ExpectFatal(Action action, const std::string& message)
{
  EXPECT_EQ(FatalCaught(action), message);
}

}  // namespace morlen
