#include "base/nearest_word.h"

#include <gtest/gtest.h>

#include <string_view>

namespace morlen {

TEST(NearestWord, FindsTheFewestChanges)
{
  constexpr std::string_view kWords[] = {"materials", "constraints", "mesh", "rotules"};
  static const struct
  {
    const char* word;
    const char* nearest;
  } cases[] = {
      {"material", "materials"},
      {"MATERIALS", "materials"},
      {"materails", "materials"},
      {"constrains", "constraints"},
      {"contraints", "constraints"},
      {"mehs", "mesh"},
      {"rottules", "rotules"},
      {"banana", ""},
      {"m", ""},
      {"", ""},
      {"mxyz", ""},
  };
  for (const auto& c : cases)
    EXPECT_EQ(NearestWord(c.word, kWords), c.nearest) << c.word;
  EXPECT_EQ(NearestWord("mesh", {}), "");
}

}  // namespace morlen
