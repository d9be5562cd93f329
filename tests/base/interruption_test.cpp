#include "base/interruption.h"

#include <gtest/gtest.h>

#include <string>
#include <thread>
#include <utility>

#include "base/stprintf.h"
#include "support/solved.h"

namespace morlen {
namespace {

struct Interrupted
{
};

thread_local int calls = 0;
thread_local int last = 0;

// Ends the run at the call with the number `last`.
void Count()
{
  if (++calls == last)
    throw Interrupted();
}

class InterruptionScope
{
public:
  explicit InterruptionScope(int lastCall) : before(std::exchange(interruptionTest, Count))
  {
    calls = 0;
    last = lastCall;
  }
  ~InterruptionScope() { interruptionTest = before; }

private:
  InterruptionTest before;
};

const std::string kModel = R"(problem type: 2d
mesh dimension = 2 elemtype Linear nnode = 2
coordinates
1 0 0
2 1 0
3 2 0
end coordinates
elements
1 1 2 1
2 2 3 1
end elements
materials
1 E = 1 A = 1 Iz = 1
end materials
constraints
1 111 0 0 0
end constraints
nodal_point_loads
3 0 1 0
end nodal_point_loads
)";

TEST(Interruption, ProgressAsks)
{
  const InterruptionScope scope(1);
  EXPECT_THROW(Progress(nullptr, "x\n"), Interrupted);
}

TEST(Interruption, BelongsToTheThread)
{
  const InterruptionScope scope(1);
  std::thread([] { EXPECT_EQ(interruptionTest, nullptr); }).join();
}

TEST(Interruption, ARunCanEndAtEveryCall)
{
  int all = 0;
  {
    const InterruptionScope scope(0);
    const Solved solved(kModel);
    all = calls;
  }
  EXPECT_GT(all, 10);
  for (int call = 1; call <= all; ++call) {
    const InterruptionScope scope(call);
    EXPECT_THROW(Solved{kModel}, Interrupted) << call;
  }
  EXPECT_NEAR(Solved(kModel).Displacement(3)[1], 8.0 / 3.0, 1e-12);
}

}  // namespace
}  // namespace morlen
