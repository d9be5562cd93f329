#include "base/record_hint.h"

#include <gtest/gtest.h>

#include <string>

#include "base/errorwriter.h"
#include "support/fatal.h"

namespace morlen {

namespace {

std::string HintFor(const RecordText& record, const RecordForm& form)
{
  FatalCaught([&] {
    ExplainNumbers(record, form);
    Fatal("no\n");
  });
  return std::string(errorwriter.Hint());
}

}  // namespace

TEST(RecordHint, WordsThatAreNumbersHaveNoFault)
{
  for (const char* word : {"1", "-2.5e-3", ".5", "5.", "+7"})
    EXPECT_EQ(FaultOfNumber(word), "") << word;
  for (const char* word : {"1", "-2", "+7", "010"})
    EXPECT_EQ(FaultOfNumber(word, NumberKind::kWhole), "") << word;
}

TEST(RecordHint, SlipsAreNamedAndMended)
{
  static const struct
  {
    const char* word;
    const char* fault;
  } cases[] = {
      {"2,1", ": the decimal sign is a point, write 2.1"},
      {"2,1e8", ": the decimal sign is a point, write 2.1e8"},
      {"2.1d8", ": an exponent begins with e, write 2.1e8"},
      {"2.1D+8", ": an exponent begins with e, write 2.1e+8"},
      {"2,1D8", ": the decimal sign is a point, and an exponent begins with e, write 2.1e8"},
      {"1O.5", ": it has the letter O for a zero, write 10.5"},
      {"\xE2\x88\x92"
       "5",
       ": it has a dash for a minus sign, write -5"},
      {"1;2", ": numbers are separated by blanks, write 1 2"},
      {"1,2,3", ": numbers are separated by blanks, write 1 2 3"},
      {"1-4", ": a range is not known, write every number, separated by blanks"},
      {"6mm", ": nothing is written after a number without a blank"},
      {"1,", ": numbers are separated by blanks, write 1"},
      {"2.1*10^8", ": an exponent begins with e, write 2.1e8"},
      {"1,000,000.5", ": digits are written without separators, write 1000000.5"},
      {"1'000", ": digits are written without separators, write 1000"},
      {"1'00", ": nothing is written after a number without a blank"},
      {"x", ""},
      {"!", ": a comment begins with '#'"},
      {"//1", ": a comment begins with '#'"},
  };
  for (const auto& c : cases)
    EXPECT_EQ(FaultOfNumber(c.word), "'" + std::string(c.word) + "' is not a number" + c.fault);
}

TEST(RecordHint, WholeNumbersHaveNoDecimals)
{
  static const struct
  {
    const char* word;
    const char* fault;
  } cases[] = {
      {"1e2", ": write 100"},
      {"2.0", ": write 2"},
      {"1.5", ""},
      {"1e99", ""},
      {"4,2", ": numbers are separated by blanks, write 4 2"},
      {"4,100", ": numbers are separated by blanks, write 4 100"},
      {"4,", ": numbers are separated by blanks, write 4"},
      {"12x", ": nothing is written after a number without a blank"},
  };
  for (const auto& c : cases)
    EXPECT_EQ(FaultOfNumber(c.word, NumberKind::kWhole),
              "'" + std::string(c.word) + "' is not a whole number" + c.fault);
}

TEST(RecordHint, ValuesAreCounted)
{
  EXPECT_EQ(HintFor(" 1 2", {.values = 3}), "3 values are expected, 2 values are there");
  EXPECT_EQ(HintFor("\t1", {.values = 3}), "3 values are expected, only 1 value is there");
  EXPECT_EQ(HintFor(" 1 # 2 3", {.values = 3}),
            "3 values are expected, only 1 value is there before the comment");
  EXPECT_EQ(HintFor("", {.values = 2}), "2 values are expected, 0 values are there");
  EXPECT_EQ(HintFor(" 1 2;3", {.values = 3}),
            "'2;3' is not a number: numbers are separated by blanks, write 2 3");
}

TEST(RecordHint, FlagsAreDigits)
{
  const RecordForm form = {.flags = 3, .values = 3};
  const std::string flags =
      "3 flags of one digit are expected: 0 free, 1 prescribed, 2 spring, such as 111";
  EXPECT_EQ(HintFor(" 113 0 0 0", form), "'3' is no flag: " + flags);
  EXPECT_EQ(HintFor(" x 0 0 0", form), "'x' is no flag: " + flags);
  EXPECT_EQ(HintFor(" 11", form), flags + ", and then 3 values");
  EXPECT_EQ(HintFor(" 111 0 0", form),
            "3 flags and 3 values are expected, 2 values are there after the flags '111'");
  EXPECT_EQ(HintFor(" 1 1 1 0", form),
            "3 flags and 3 values are expected, only 1 value is there after the flags '1 1 1'");
  EXPECT_EQ(HintFor(" 111 0 x 0", form), "'x' is not a number");
}

TEST(RecordHint, FacesAreWholeNumbers)
{
  EXPECT_EQ(HintFor(" 1.5 1 2 3", {.withFace = true, .values = 3}),
            "'1.5' is not a whole number (the index of a face)");
  EXPECT_EQ(HintFor(" 1 2 3", {.withFace = true, .values = 3}),
            "the index of a face and 3 values are expected, 3 numbers are there");
}

TEST(RecordHint, TheLineAndTheNumberOfTheRecordAreNamed)
{
  const std::string content = "a\nb\n1e2 3 4\n";
  const TextScan text(content);
  const std::string_view record = std::string_view(content).substr(5);  // after the 1
  EXPECT_EQ(HintFor({record, &text}, {.values = 3}),
            "line 3: '1e2' is not a whole number: write 100");
}

TEST(RecordHint, AKeyWithoutAValue)
{
  const auto hint = [](const char* key) {
    FatalCaught([&] {
      ExplainNoValue(key);
      Fatal("no\n");
    });
    return std::string(errorwriter.Hint());
  };
  EXPECT_EQ(hint("units"), "the key 'units' has no value");
  EXPECT_EQ(hint("0.5"), "the number '0.5' is one too many");
}

TEST(RecordHint, AKeyAtTheEndOfANumber)
{
  const std::string content = "a\n5 1 -1d3 2=x";
  const TextScan text(content);
  const std::string_view all = content;
  EXPECT_EQ(FaultBefore({all.substr(all.find("d3"), 2), &text}),
            "'-1d3' is not a number: an exponent begins with e, write -1e3");
  EXPECT_EQ(FaultBefore({all.substr(all.find("x"), 1), &text}), "");
  EXPECT_EQ(FaultBefore({all.substr(0, 1), &text}), "");
  EXPECT_EQ(FaultBefore("d3"), "");
}

TEST(RecordHint, NumbersBeginWithOne)
{
  const auto hint = [](const char* content) {
    const TextScan text(content);
    FatalCaught([&] {
      ExplainIndex(text, content + 1);
      Fatal("no\n");
    });
    return std::string(errorwriter.Hint());
  };
  EXPECT_EQ(hint("0 1 2"), "line 1: numbers begin with 1");
  EXPECT_EQ(hint("0.5 1"), "line 1: '0.5' is not a whole number");
}

}  // namespace morlen
