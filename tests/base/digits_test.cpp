#include "base/digits.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <string>

#include "base/number_text.h"

namespace {

// Eight characters: some of the digits, then others and more digits.
std::string EightCharacters(int digits, char behind)
{
  std::string text = std::string("90817265").substr(0, static_cast<std::size_t>(digits));
  for (char next = behind; text.size() < 8; next = next == behind ? '7' : behind)
    text += next;
  return text;
}

TEST(LeadingDigits, EndAtAnyOtherCharacter)
{
  for (int digits = 0; digits <= 8; ++digits) {
    for (int behind = 0; behind < 256; ++behind) {
      if (IsDigit(static_cast<char>(behind)))
        continue;
      const std::string text = EightCharacters(digits, static_cast<char>(behind));
      const std::string number = text.substr(0, static_cast<std::size_t>(digits));
      const DigitRun run = LeadingDigits(text.data());
      EXPECT_EQ(run.count, digits) << behind;
      EXPECT_EQ(run.number, std::strtoull(number.c_str(), nullptr, 10)) << text;
      const DigitRun plain = DigitsOneByOne(text.data());
      EXPECT_EQ(plain.count, run.count) << text;
      EXPECT_EQ(plain.number, run.number) << text;
    }
  }
}

TEST(LeadingDigits, KeepEveryDigitInItsPlace)
{
  for (const char* text : {"00000000", "99999999", "10000000", "00000001", "01020304", "12345678"})
    EXPECT_EQ(LeadingDigits(text).number, std::strtoull(text, nullptr, 10)) << text;
}

TEST(ScanPlainInt, GivesTheSameWithAndWithoutTextBehind)
{
  for (const std::string number :
       {"0", "-0", "7", "-7", "0042", "1234567", "-1234567", "12345678", "-12345678", "999999999",
        "-999999999", "1234567890", "-", "", "--1", "+1", "a"}) {
    for (const std::string behind : {"", " ", " 1 2 3 4 5", "x23456789", "\n", "-1234567890"}) {
      const std::string text = number + behind;
      const char* plain = text.data();
      const char* fast = text.data();
      int expected = -5;
      int value = -5;
      const bool isNumber = ScanAnyPlainInt(plain, text.data() + text.size(), expected);
      EXPECT_EQ(ScanPlainInt(fast, text.data() + text.size(), value), isNumber) << text;
      EXPECT_EQ(value, expected) << text;
      EXPECT_EQ(fast, plain) << text;
    }
  }
}

}  // namespace
