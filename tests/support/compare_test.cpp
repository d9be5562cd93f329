#include "support/compare.h"

#include <gtest/gtest.h>

namespace morlen {

TEST(Compare, AcceptsNumbersThatAreClose)
{
  static const struct
  {
    const char* actual;
    const char* expected;
  } cases[] = {
      {"", ""},
      {"1  0.333333 2\n", "1  0.333333 2\n"},
      {"a 1.0000005\n", "a 1\n"},
      {"1 1e-14\n", "1 0\n"},
      {"1  -0 1e-10 5\n", "1  0 0 5\n"},                    // below the floor of the line
      {"1  1e-6 0.1\n2  3e4 1\n", "1  0 0.1\n2  3e4 1\n"},  // of the block
  };
  for (const auto& c : cases)
    EXPECT_EQ(Difference(c.actual, c.expected), "") << c.actual;
}

TEST(Compare, FindsDifferences)
{
  static const struct
  {
    const char* actual;
    const char* expected;
  } cases[] = {
      {"1  0.5\n", "1 0.5\n"},            // blanks
      {"1 0.5 \n", "1 0.5\n"},            // at the end of a line
      {"1 0.5\n\n", "1 0.5\n"},           // lines
      {"1 0.5", "1 0.5\n"},               // the last newline
      {"Reaction 1\n", "Reactions 1\n"},  // text
      {"1 0.500001\n", "1 0.5\n"},        // numbers
      {"1 1e-11\nA 9\n", "1 0\nA 9\n"},   // a block ends at a line with text
      {"1 1e12\n", "2 1e12\n"},           // whole numbers have no floor
      {"1 nan\n", "1 0\n"},
  };
  for (const auto& c : cases)
    EXPECT_NE(Difference(c.actual, c.expected), "") << c.actual;
}

TEST(Compare, NamesTheFirstLineThatDiffers)
{
  EXPECT_EQ(Difference("a\nb 1\n", "a\nb 2\n"), "line 2\n  is       \"b 1\"\n  expected \"b 2\"\n");
  EXPECT_EQ(Difference("a\nb\n", "a\nb\nc"), "line 3\n  is       \"\"\n  expected \"c\"\n");
  EXPECT_EQ(Difference("a\n", "a"), "2 lines, expected 1\n");
}

}  // namespace morlen
