#include "common/utf8.h"

#include <gtest/gtest.h>

namespace morlen {

TEST(CharacterCount, CountsCharactersOfSeveralBytesOnce)
{
  EXPECT_EQ(CharacterCount(""), 0U);
  EXPECT_EQ(CharacterCount("kN*m"), 4U);
  EXPECT_EQ(CharacterCount("m\xC2\xB2 \xE2\x82\xAC \xF0\x9F\x98\x80"), 6U);
}

TEST(ToUtf8, KeepsCharactersAndReplacesOtherBytes)
{
  static const struct
  {
    std::string given, expected;
  } cases[] = {
      {"", ""},
      {"kN*m ~", "kN*m ~"},
      {"m\xC2\xB2 \xE2\x82\xAC \xF0\x9F\x98\x80", "m\xC2\xB2 \xE2\x82\xAC \xF0\x9F\x98\x80"},
      {"m\xB2", "m?"},                            // Latin-1
      {"\xC2", "?"},                              // cut off
      {"\xE2\x82", "??"},                         // cut off
      {"\xC0\xAF", "??"},                         // '/' in too many bytes
      {"\xE0\x80\xAF", "???"},                    // '/' in too many bytes
      {"\xED\xA0\x80", "???"},                    // a surrogate
      {"\xF4\x90\x80\x80", "????"},               // beyond the last character
      {"\xE2\x28\xA1", "?(?"},                    // no continuation
      {std::string("a\0b\x1B\x7F", 5), "a?b??"},  // control characters
      {"\xF4\x8F\xBF\xBF", "\xF4\x8F\xBF\xBF"},   // the last character
  };
  for (const auto& c : cases)
    EXPECT_EQ(ToUtf8(c.given), c.expected) << c.expected;
}

TEST(IsUtf8, AcceptsWellFormedTextOnly)
{
  for (const char* text : {"", "abc\t\n", "m\xC2\xB2", "\xF4\x8F\xBF\xBF"})
    EXPECT_TRUE(IsUtf8(text)) << text;
  for (const char* text : {"m\xB2", "\xC2", "a\xE2\x82", "\xE0\x80\xAF", "\xED\xA0\x80"})
    EXPECT_FALSE(IsUtf8(text)) << text;
}

}  // namespace morlen
