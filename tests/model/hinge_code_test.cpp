#include "model/hinge_code.h"

#include <gtest/gtest.h>

namespace morlen {
namespace {

TEST(HingeCode, DigitsAreTheEndsInOrder)
{
  static const struct
  {
    int value;
    bool firstHinged, secondHinged;
  } cases[] = {{11, false, false}, {10, false, true}, {1, true, false}, {0, true, true}};
  for (const auto& c : cases) {
    const HingeCode code(c.value);
    EXPECT_EQ(code.FirstHinged(), c.firstHinged) << c.value;
    EXPECT_EQ(code.SecondHinged(), c.secondHinged) << c.value;
    EXPECT_EQ(code.IsContinuous(), c.value == 11) << c.value;
    EXPECT_EQ(code.Value(), c.value);
  }
}

TEST(HingeCode, IsContinuousUnlessGiven)
{
  EXPECT_EQ(HingeCode(), HingeCode(11));
  EXPECT_NE(HingeCode(), HingeCode(10));
  EXPECT_TRUE(HingeCode().IsContinuous());
}

TEST(HingeCode, OnlyFourNumbersAreCodes)
{
  for (int value = -20; value <= 120; ++value) {
    const bool isCode = value == 11 || value == 10 || value == 1 || value == 0;
    EXPECT_EQ(HingeCode::IsValid(value), isCode) << value;
  }
}

// An end is hinged when the code or the flag says so.
TEST(HingeCode, MergedAddsHingesAndKeepsThoseItHas)
{
  for (const int value : {11, 10, 1, 0}) {
    for (const bool first : {false, true}) {
      for (const bool second : {false, true}) {
        const HingeCode code(value);
        const HingeCode merged = code.Merged(first, second);
        EXPECT_EQ(merged.FirstHinged(), code.FirstHinged() || first) << value;
        EXPECT_EQ(merged.SecondHinged(), code.SecondHinged() || second) << value;
        EXPECT_TRUE(HingeCode::IsValid(merged.Value())) << merged.Value();
      }
    }
  }
}

}  // namespace
}  // namespace morlen
