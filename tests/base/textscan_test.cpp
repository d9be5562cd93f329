#include "base/textscan.h"

#include <gtest/gtest.h>

#include <string>

#include "support/fatal.h"

namespace morlen {

TEST(TextScan, IntegersAsAFormattedStreamReadsThem)
{
  static const struct
  {
    const char* text;
    bool read;
    int value;
    const char* rest;
  } cases[] = {
      {" 12 3", true, 12, " 3"}, {"\n\t-7x", true, -7, "x"}, {"+5", true, 5, ""},
      {"010", true, 10, ""},  // decimal
      {"1.5", true, 1, ".5"},    {"0x10", true, 0, "x10"},   {"2147483647", true, 2147483647, ""},
      {"end", false, 0, "end"},  {"+-1", false, 0, "+-1"},   {"", false, 0, ""},
      {"  ", false, 0, ""},
  };
  for (const auto& c : cases) {
    TextScan text(c.text);
    int value = 0;
    EXPECT_EQ(text.ReadInt(value), c.read) << c.text;
    if (c.read) {
      EXPECT_EQ(value, c.value) << c.text;
    }
    EXPECT_EQ(text.ReadRestOfLine(), c.rest) << c.text;
  }
}

// As a word it would end its block, and the following records would be lost.
TEST(TextScan, NumbersBeyondIntEndTheRun)
{
  for (const std::string number : {"2147483648", "-2147483649", "99999999999"}) {
    const std::string line = " " + number + " 1\n";
    TextScan text(line);
    int value = 0;
    ExpectFatal([&] { text.ReadInt(value); }, "error: the number " + number + " is too large\n");
  }
  const std::string digits = "+" + std::string(100, '9');
  TextScan text(digits);
  int value = 0;
  ExpectFatal([&] { text.ReadInt(value); },
              "error: the number " + std::string(30, '9') + " is too large\n");
}

TEST(TextScan, NumbersAsAFormattedStreamReadsThem)
{
  static const struct
  {
    const char* text;
    bool read;
    double value;
  } cases[] = {
      {" 1.5", true, 1.5},    {"-2e3x", true, -2000.0}, {"+.5", true, 0.5},  {"5.", true, 5.0},
      {"1e-400", true, 0.0},  {"1E+2", true, 100.0},    {"1,5", true, 1.0},  {"1e400", false, 0.0},
      {"-1e400", false, 0.0}, {"nan", false, 0.0},      {"inf", false, 0.0}, {"-inf", false, 0.0},
      {"+nan", false, 0.0},   {".", false, 0.0},        {"--1", false, 0.0}, {"+-1", false, 0.0},
      {"1e", false, 0.0},     {"1e+", false, 0.0},      {"x", false, 0.0},   {"", false, 0.0},
  };
  for (const auto& c : cases) {
    TextScan text(c.text);
    double value = 0.0;
    EXPECT_EQ(text.ReadDouble(value), c.read) << c.text;
    if (c.read) {
      EXPECT_EQ(value, c.value) << c.text;
    }
  }
}

TEST(TextScan, DenormalNumbersAreNumbers)
{
  TextScan text("1e-320");
  double value = 0.0;
  EXPECT_TRUE(text.ReadDouble(value));
  EXPECT_EQ(value, 1e-320);
}

TEST(TextScan, LastNumberOfALineIsTakenWithTheLine)
{
  static const struct
  {
    const char* text;
    bool read;
    int value;
    const char* rest;  // of the line reached
  } cases[] = {
      {" 12\nnext", true, 12, "next"},
      {"\t7 \t\r\nnext", true, 7, "next"},
      {"123456789", true, 123456789, ""},
      {"12 3\n", false, 0, "12 3"},
      {" 1 E=2\n", false, 0, " 1 E=2"},
      {"1.5\n", false, 0, "1.5"},
      {"010\n", false, 0, "010"},
      {"0\n", false, 0, "0"},
      {"-1\n", false, 0, "-1"},
      {"0x1\n", false, 0, "0x1"},
      {"1234567890\n", false, 0, "1234567890"},
      {"=1\n", false, 0, "=1"},
      {"\n5", false, 0, ""},
      {"", false, 0, ""},
  };
  for (const auto& c : cases) {
    TextScan text(c.text);
    int value = 0;
    EXPECT_EQ(text.ReadLastNumber(value), c.read) << c.text;
    EXPECT_EQ(value, c.value) << c.text;
    EXPECT_EQ(text.ReadRestOfLine(), c.rest) << c.text;
  }
  const std::string beyond = std::string(TextScan::kLimit, ' ') + "5\n";
  TextScan text(beyond);
  int value = 0;
  EXPECT_FALSE(text.ReadLastNumber(value));
}

TEST(TextScan, WordsBetweenAnyWhiteSpace)
{
  TextScan text("one\ttwo\r\n three");
  EXPECT_EQ(text.ReadWord(), "one");
  EXPECT_EQ(text.ReadWord(), "two");
  EXPECT_EQ(text.ReadWord(), "three");
  EXPECT_EQ(text.ReadWord(), "");
  EXPECT_TRUE(text.AtEnd());
}

TEST(TextScan, LongWordsAndLinesAreCutAndTheirRestSkipped)
{
  const std::string longWord(3000, 'a');
  const std::string content = longWord + " next " + longWord + "\nline";
  TextScan text(content);
  EXPECT_EQ(text.ReadWord(), std::string(1023, 'a'));
  EXPECT_EQ(text.ReadWord(), "next");
  EXPECT_EQ(text.ReadRestOfLine(), " " + std::string(1022, 'a'));
  EXPECT_EQ(text.ReadWord(), "line");
}

TEST(TextScan, RestOfTheLastLineNeedsNoNewline)
{
  TextScan text("a b\n\nlast");
  EXPECT_EQ(text.ReadRestOfLine(), "a b");
  EXPECT_EQ(text.ReadRestOfLine(), "");
  EXPECT_EQ(text.ReadRestOfLine(), "last");
  EXPECT_EQ(text.ReadRestOfLine(), "");
}

TEST(TextScan, TakeOutSpacesSkipsWhiteSpaceAndDelimiters)
{
  TextScan text(" \n\r\t\v\f:=x");
  EXPECT_EQ(TakeOutSpaces(text), 0);
  EXPECT_EQ(text.ReadWord(), "x");
  EXPECT_EQ(TakeOutSpaces(text), -1);

  TextScan comment("  # text");
  EXPECT_EQ(TakeOutSpaces(comment), 1);
  EXPECT_EQ(comment.ReadRestOfLine(), " text");

  TextScan tab("\t#");
  EXPECT_EQ(TakeOutSpaces(tab), 1);
}

TEST(TextScan, PlaceCountsLinesAndColumnsFromOne)
{
  TextScan text("ab\n  cd 5\n");
  EXPECT_EQ(text.Where().line, 1);
  EXPECT_EQ(text.Where().column, 1);
  text.ReadWord();
  EXPECT_EQ(text.Where().column, 3);
  text.ReadWord();
  EXPECT_EQ(text.Where().line, 2);
  EXPECT_EQ(text.Where().column, 5);
  text.SkipLine();
  EXPECT_EQ(text.Where().line, 3);
  EXPECT_EQ(text.Where().column, 1);
}

TEST(FindThisWord, FindsAWordThatContainsItInAnyCase)
{
  TextScan text("# a\nTheProblems: type");
  FindThisWord(text, "problem");
  EXPECT_EQ(text.ReadWord(), "type");
}

TEST(FindThisWord, TheLastWordWithoutASeparatorDoesNotCount)
{
  static const char* const missing = "can't find word ***problem*** in input file\n";
  for (const char* content : {"a b problem", "", "   ", "nothing here\n"}) {
    TextScan text(content);
    ExpectFatal([&] { FindThisWord(text, "problem"); }, missing);
  }
  TextScan ended("problem\n");
  FindThisWord(ended, "problem");
}

TEST(Records, CommentsAreSkippedAndAWordEndsTheBlock)
{
  TextScan text("# one\n = 3 rest\n#two\n  4\nend things\nafter");
  int number = 0;
  ASSERT_TRUE(ReadRecordNumber(text, number));
  EXPECT_EQ(number, 3);
  EXPECT_EQ(text.ReadRestOfLine(), " rest");
  ASSERT_TRUE(ReadRecordNumber(text, number));
  EXPECT_EQ(number, 4);
  EXPECT_FALSE(ReadRecordNumber(text, number));
  SkipBlockEnd(text);
  EXPECT_EQ(text.ReadWord(), "after");
}

TEST(ItemScanner, CutsKeysAndValues)
{
  ItemScanner items(" E=2e11 nu: 0.3  t = 0.5\tx\t=\t3\tA");
  EXPECT_EQ(items.Key(), "E");
  EXPECT_EQ(items.Value(), "2e11");
  EXPECT_EQ(items.Key(), "nu");
  EXPECT_EQ(items.Value(), "0.3");
  EXPECT_EQ(items.Key(), "t");
  EXPECT_EQ(items.Value(), "0.5");
  EXPECT_EQ(items.Key(), "x");
  EXPECT_EQ(items.Value(), "3");
  EXPECT_EQ(items.Key(), "A");
  EXPECT_EQ(items.Value(), "");
  EXPECT_EQ(items.Key(), "");
}

TEST(TextScan, RecordsEndAtANullCharacter)
{
  using namespace std::string_view_literals;
  EXPECT_EQ(UpToNull("1 2"), "1 2");
  EXPECT_EQ(UpToNull("1 2\0 3\0"sv), "1 2");
  EXPECT_EQ(UpToNull("\0 3"sv), "");
  EXPECT_EQ(UpToNull(""), "");
}

TEST(ItemScanner, ValuesMayHoldTheDelimitersOfKeys)
{
  ItemScanner items("units=a:b=c d\r");
  EXPECT_EQ(items.Key(), "units");
  EXPECT_EQ(items.Value(), "a:b=c");
  EXPECT_EQ(items.Key(), "d");
  EXPECT_EQ(items.Value(), "");
}

TEST(ItemScanner, WhiteSpaceIsNoItem)
{
  for (const char* text : {"", "\t", " \r", "\v\f", " : = \t"}) {
    ItemScanner items(text);
    EXPECT_EQ(items.Key(), "") << text;
  }
}

TEST(ItemScanner, AKeyThatBeginsWithANumberSignEndsTheItems)
{
  ItemScanner items("a 1 #b 2 c 3");
  EXPECT_EQ(items.Key(), "a");
  EXPECT_EQ(items.Value(), "1");
  EXPECT_EQ(items.Key(), "");
  EXPECT_EQ(items.Rest(), "#b 2 c 3");
  ItemScanner value("a # b");
  EXPECT_EQ(value.Key(), "a");
  EXPECT_EQ(value.Value(), "#");
  EXPECT_EQ(value.Key(), "b");
}

TEST(ItemScanner, ItemsEndBeforeTheirComment)
{
  EXPECT_EQ(BeforeComment("a 1 b 2"), "a 1 b 2");
  EXPECT_EQ(BeforeComment("a 1 # b 2"), "a 1 ");
  EXPECT_EQ(BeforeComment("# b 2"), "");
  EXPECT_EQ(BeforeComment("a # b 2"), "a # b 2");  // the value of a
  EXPECT_EQ(BeforeComment("a 1#b 2"), "a 1#b 2");
  EXPECT_EQ(BeforeComment("a\t1\t#b 2"), "a\t1\t");
}

TEST(TextScan, WordsAndLinesAroundAPlace)
{
  const std::string content = "ab\n 4,2\tx";
  TextScan text(content);
  const char* const start = content.data();
  EXPECT_EQ(text.WordAround(start), "ab");
  EXPECT_EQ(text.WordAround(start + 2), "ab");
  EXPECT_EQ(text.WordAround(start + 3), "");
  EXPECT_EQ(text.WordAround(start + 5), "4,2");
  EXPECT_EQ(text.WordAround(start + content.size()), "x");
  EXPECT_EQ(text.LineOf(start + 2), 1);
  EXPECT_EQ(text.LineOf(start + 3), 2);
}

TEST(EulerIndex, TakesOneToThree)
{
  EXPECT_EQ(EulerIndex("Euler1"), 0);
  EXPECT_EQ(EulerIndex("EULER3x"), 2);
  EXPECT_EQ(EulerIndex("units"), -1);
  for (const char* key : {"Euler", "Euler0", "euler4"})
    ExpectFatal([&] { EulerIndex(key); }, "error: Euler angles must be: Euler1,Euler2 or Euler3\n");
}

TEST(Prefix, IgnoresCase)
{
  EXPECT_TRUE(HasPrefix("SkyLineX", "skyline"));
  EXPECT_FALSE(HasPrefix("Sky", "skyline"));
  EXPECT_TRUE(EqualsNoCase("MESH", "mesh"));
  EXPECT_FALSE(EqualsNoCase("meshes", "mesh"));
}

}  // namespace morlen
