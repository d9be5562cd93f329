#include "base/text_parts.h"

#include <gtest/gtest.h>

namespace morlen {

TEST(TextParts, LinesAndWordsAreViewsOfTheText)
{
  EXPECT_EQ(FirstLine("a b\nc"), "a b");
  EXPECT_EQ(FirstLine(""), "");
  EXPECT_EQ(FirstWord(" \t\r\nab\vc"), "ab");
  EXPECT_EQ(FirstWord(" \n"), "");
  std::string_view text = " ab\tcd";
  EXPECT_EQ(ConsumeWord(text), "ab");
  EXPECT_EQ(text, "\tcd");
  EXPECT_EQ(ConsumeWord(text), "cd");
  EXPECT_EQ(ConsumeWord(text), "");
  EXPECT_EQ(text, "");
}

TEST(TextParts, QuotedTextsAreOneShortLine)
{
  EXPECT_EQ(Quoted(std::string(41, 'x')), "'" + std::string(40, 'x') + "...'");
  EXPECT_EQ(Quoted(std::string(40, 'x')), "'" + std::string(40, 'x') + "'");
  EXPECT_EQ(Quoted(" \ta\tb \r\nc"), "'a b'");
  EXPECT_EQ(Quoted("a\x01z"), "'a?z'");
  EXPECT_EQ(Quoted("\xC3\xA4"), "'\xC3\xA4'");
  EXPECT_EQ(Quoted(""), "''");
}

TEST(TextParts, CommentsOfOtherLanguages)
{
  for (const char* word : {"//", "/*x", "--", "!", ";x", "%", "$", "**", "'x", "\"x"})
    EXPECT_TRUE(BeginsForeignComment(word)) << word;
  for (const char* word : {"", "#", "-1", "/", "x!", "1"})
    EXPECT_FALSE(BeginsForeignComment(word)) << word;
}

TEST(TextParts, TheMarkOfAnEditorIsLeftOut)
{
  EXPECT_EQ(WithoutByteOrderMark("\xef\xbb\xbfx"), "x");
  EXPECT_EQ(WithoutByteOrderMark("\xef\xbbx"), "\xef\xbbx");
}

}  // namespace morlen
