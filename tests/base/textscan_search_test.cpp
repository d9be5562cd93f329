#include <gtest/gtest.h>

#include <chrono>
#include <string>
#include <vector>

#include "base/textscan.h"
#include "support/fatal.h"
#include "support/hints.h"

namespace morlen {

namespace {

bool IsAnything(std::string_view)
{
  return true;
}

}  // namespace

TEST(FindThisWord, TakesTheFirstWordOutsideComments)
{
  static const struct
  {
    const char* content;
    const char* rest;  // of the line reached
  } cases[] = {
      {"# old type 2d\ntype 3d", " 3d"},
      {"#type 2d\ntype 3d", " 3d"},
      {"a # b\n# type 2d\n\n # more\n c mytype 3d", " 3d"},
      {"a#type 2d\ntype 3d", " 2d"},              // no comment: the '#' does not begin the word
      {"# type 2d\nother\n", " 2d"},              // only the comment has it
      {"#type 2d\nother\n", " 2d"},               // also glued to the '#'
      {"# type 2d\nmesh\nelemtype 3d\n", " 2d"},  // another block follows first
      {"# type 2d\nEnd\nelemtype 3d\n", " 2d"},   // or the end of one
      {"# type 2d\nmeshes\nelemtype 3d\n", " 3d"},
      {"mesh\n# type 2d\n type 3d\n", " 3d"},  // the block is in front of both
      {"# type 1\n# type 2\nmesh\n", " 1"},    // the first comment that has it
      {"# type 1\n# mesh\ntype 2\n", " 2"},    // a block that is commented out begins nothing
  };
  for (const auto& c : cases) {
    TextScan text(c.content);
    FindThisWord(text, "type");
    EXPECT_EQ(text.ReadRestOfLine(), c.rest) << c.content;
  }
}

TEST(FindThisWord, TheWordSearchedForIsNoBlockOnTheWay)
{
  TextScan text("# the elements\nelements\n1 2");
  FindThisWord(text, "elements");
  EXPECT_EQ(text.LineOf(text.Here()), 2);
}

TEST(FindThisWord, KnowsThatItIsStillInAComment)
{
  TextScan text("problem #1 type 3d of\nmesh elemtype Linear\n");
  FindThisWord(text, "problem");
  FindThisWord(text, "type");
  EXPECT_EQ(text.ReadWord(), "3d");
  TextScan both("# problem type 2d\nmesh\n");
  FindThisWord(both, "problem");
  FindThisWord(both, "type");
  EXPECT_EQ(both.ReadWord(), "2d");
}

TEST(FindThisWord, GluedValuesAreReadNext)
{
  static const struct
  {
    const char* content;
    const char* next;
  } cases[] = {
      {"nnode=2 x", "=2"}, {"nnode:2 x", ":2"}, {"nnode:=2 x", ":=2"}, {"theNNODE=2 x", "=2"},
      {"nnode= x", "x"},   {"nnode x", "x"},    {"nnode2 x", "x"},     {"nnodes=2 x", "x"},
  };
  for (const auto& c : cases) {
    TextScan text(c.content);
    FindThisWord(text, "nnode", IsAnything);
    EXPECT_EQ(text.ReadWord(), c.next) << c.content;
  }
  TextScan whole("nnode=2 x");
  FindThisWord(whole, "nnode");
  EXPECT_EQ(whole.ReadWord(), "x");
  TextScan refused("nnode=2 x");
  FindThisWord(refused, "nnode", [](std::string_view glued) { return glued != "2"; });
  EXPECT_EQ(refused.ReadWord(), "x");
}

TEST(FindThisWord, AGluedLastWordWithoutASeparatorDoesNotCount)
{
  TextScan text("nnode=2");
  ExpectFatal([&] { FindThisWord(text, "nnode", IsAnything); },
              "can't find word ***nnode*** in input file\n");
}

TEST(FindThisWord, AFailureIsExplained)
{
  TextScan last("a b\nproblem");
  EXPECT_EQ(HintCaught([&] { FindThisWord(last, "problem"); }),
            "the file ends directly after 'problem': end the last line");
  TextScan open("x\nmaterials\n1 E 1\n");
  open.ReadWord();
  open.EnterBlock(open.ReadWord());
  EXPECT_EQ(HintCaught([&] { FindBlockEnd(open); }),
            "the block 'materials', which begins in line 2, has no 'end'");
  EXPECT_TRUE(open.AtEnd());
}

TEST(FindDigit, TakesTheFirstDigitOutsideComments)
{
  static const struct
  {
    const char* content;
    const char* rest;
  } cases[] = {
      {" = 3 x", "3 x"},
      {"# 2 or 3\n 3 x", "3 x"},
      {"# 2 or so\nabc4 x", "4 x"},
      {"# 2 or so\ncoordinates\n1 0 0", "2 or so"},  // the next number is another one
      {"# 2 or so\nelemtype x nnode=3", "2 or so"},  // the same
      {"# 2 or so\nnone", "2 or so"},
      {"#2 or so\nend 3", "2 or so"},
  };
  for (const auto& c : cases) {
    TextScan text(c.content);
    EXPECT_TRUE(FindDigit(text)) << c.content;
    EXPECT_EQ(text.ReadRestOfLine(), c.rest) << c.content;
  }
  TextScan none("# no digit\nx");
  EXPECT_FALSE(FindDigit(none));
}

TEST(FindDigit, StaysInTheCommentOfItsWord)
{
  TextScan text("# dimension = 3\nelemtype Linear nnode = 2\n");
  FindThisWord(text, "dimension");
  ASSERT_TRUE(FindDigit(text));
  int value = 0;
  EXPECT_TRUE(text.ReadInt(value));
  EXPECT_EQ(value, 3);
}

TEST(ReadValue, SkipsDelimiters)
{
  static const struct
  {
    const char* glued;
    const char* content;
    const char* value;
  } cases[] = {
      {"=7", "8", "7"}, {"", " = 8 9", "8"}, {"=", "\t:\t8\t9", "8"},
      {":", "=8", "8"}, {"", "", ""},        {"", "= :", ""},
  };
  for (const auto& c : cases) {
    TextScan text(c.content);
    EXPECT_EQ(ReadValue(text, c.glued), c.value) << c.content;
  }
}

TEST(TextScan, LinesOfPlaces)
{
  const std::string content = "a\nb\n\nc\n";
  TextScan text(content);
  EXPECT_EQ(text.LineOf(text.WholeText().data() + 5), 4);
  EXPECT_EQ(text.LineOf(text.WholeText().data() + 2), 2);
  EXPECT_EQ(text.LineOf(text.WholeText().data()), 1);
  EXPECT_EQ(text.LineOf(text.WholeText().data() + 8), 5);
}

TEST(SkippedLines, AreReportedWithTheirBlock)
{
  static const struct
  {
    const char* content;
    std::vector<std::string> warnings;
  } cases[] = {
      {"materials\nend\n", {}},
      {"materials\n\n # comment\nend of it\n", {}},
      {"materials\nx 1\n2 3\n# no\n4 5\nend\n",
       {"the block 'materials' in line 1 ends at 'x' in line 2, which is no number: 3 lines are "
        "not read, in lines 2 to 5"}},
      {"materials\nx end\n",
       {"the block 'materials' in line 1 ends at 'x' in line 2, which is no number: 1 line is "
        "not read, in line 2"}},
      {"materials\nconstraints\n1 11\nrotules\nend\n",
       {"the block 'materials' in line 1 ends at 'constraints' in line 2, which is no number: 3 "
        "lines are not read, in lines 2 to 4. It has no 'end': 'end' in line 5 is taken for it, "
        "and these blocks are lost: 'constraints' (line 2), 'rotules' (line 4)"}},
      // A keyword counts at the beginning of a line only.
      {"elements\nfin elements\nend\n",
       {"the block 'elements' in line 1 ends at 'fin' in line 2, which is no number: 1 line is "
        "not read, in line 2"}},
  };
  for (const auto& c : cases) {
    const WarningsHeard warnings;
    TextScan text(c.content);
    text.EnterBlock(text.ReadWord());
    SkipBlockEnd(text);
    EXPECT_EQ(warnings.Lines(), c.warnings) << c.content;
  }
}

TEST(SkippedLines, BetweenBlocksAreReported)
{
  const WarningsHeard warnings;
  TextScan text("end coordinates\n1 2\nelements\n");
  FindBlockEnd(text);
  FindWordAfterBlock(text, "elements");
  EXPECT_EQ(warnings.Lines(),
            std::vector<std::string>{"1 line is not read before 'elements' in line 3, in line 2"});
}

TEST(SkippedLines, OfAHeadAreReportedOnlyWithABlock)
{
  const WarningsHeard warnings;
  TextScan text("mesh\nof columns, dimension 2\nmaterials\n1 E 1\nend\nmesh elemtype\n");
  text.EnterBlock(text.ReadWord());
  FindThisWord(text, "dimension");
  EXPECT_TRUE(warnings.Lines().empty());
  FindThisWord(text, "elemtype");
  EXPECT_EQ(warnings.Lines(),
            std::vector<std::string>{
                "5 lines are not read before 'elemtype' in line 6, in lines 2 to 6. These blocks "
                "are lost: 'materials' (line 3), 'mesh' (line 6)"});
}

// Blocks whose "end" is only in a comment: were each search to go on to the end of the file, this
// would take minutes.
TEST(FindThisWord, ManySearchesCostTheirTextOnly)
{
  const std::string block = "materials\n1 E 1\n# end\n";
  constexpr int kBlocks = 20000;
  std::string content;
  for (int i = 0; i < kBlocks; ++i)
    content += block;
  TextScan text(content);
  const auto start = std::chrono::steady_clock::now();
  for (int i = 0; i < kBlocks; ++i) {
    text.EnterBlock(text.ReadWord());
    text.SkipLine();
    text.SkipLine();
    SkipBlockEnd(text);
  }
  EXPECT_TRUE(text.AtEnd());
  const std::chrono::duration<double> seconds = std::chrono::steady_clock::now() - start;
  EXPECT_LT(seconds.count(), 5.0);
}

}  // namespace morlen
