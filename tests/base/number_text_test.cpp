#include "base/number_text.h"

#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <random>
#include <string>
#include <string_view>

#include "base/textscan.h"

namespace morlen {

namespace {

TEST(NumberText, ScanDoubleReadsAsScanf)
{
  static const char* const texts[] = {"0",
                                      "1",
                                      "-1",
                                      "+1.5",
                                      " \t\n\v\f\r2.5",
                                      "3.25rest",
                                      "1.",
                                      ".5",
                                      "-.5e1",
                                      "1e3",
                                      "1E+3",
                                      "1e-3",
                                      "1.5.2",
                                      "1,5",
                                      "007",
                                      "1x",
                                      "2 3",
                                      "12e2e3",
                                      "0x10",
                                      "0X1.8p1",
                                      "-0x.8",
                                      "0x1P-3z",
                                      "0x1p3",
                                      "+0xAbC",
                                      "2.1e11",
                                      "1e308",
                                      "4.9e-324",
                                      "5e-2147483648",
                                      "1-2",
                                      "1+2",
                                      "-0",
                                      "00x1",
                                      "1e5.5",
                                      "0.1",
                                      "123456789012345678901",
                                      "",
                                      " ",
                                      "-",
                                      "+",
                                      ".",
                                      "-.",
                                      "e5",
                                      ".e5",
                                      "- 5",
                                      "+-5",
                                      "--5",
                                      "abc",
                                      "x1",
                                      "0.30000000000000004",
                                      "1.7976931348623157e308"};
  for (const char* text : texts) {
    double expected = -7.0;
    int length = 0;
    const bool isNumber = std::sscanf(text, "%lf%n", &expected, &length) == 1;
    std::string_view rest = text;
    double value = -7.0;
    EXPECT_EQ(ScanDouble(rest, value), isNumber) << text;
    EXPECT_EQ(value, expected) << text;
    EXPECT_EQ(std::signbit(value), std::signbit(expected)) << text;
    EXPECT_EQ(rest.data() - text, isNumber ? length : 0) << text;
  }
}

TEST(NumberText, AnExponentNeedsDigits)
{
  for (const char* text : {"1e", "1e ", "1ex", "-2.5E", "1e+", "1e-x", "0x1p", "0x1p-"}) {
    std::string_view rest = text;
    double value = 3.0;
    EXPECT_FALSE(ScanDouble(rest, value)) << text;
    EXPECT_EQ(rest, text);
  }
}

TEST(NumberText, ScanDoubleRefusesWhatIsNotFinite)
{
  const std::string long400(400, '9');
  for (const std::string& text :
       {std::string("nan"), std::string("NAN(1)"), std::string("inf"), std::string("-Infinity"),
        std::string("1e400"), std::string("-1e309"), std::string("1e99999999999999999999"),
        std::string("0.001e999"), long400, long400 + "e-50", std::string("0x1p1024"),
        std::string("0x1p+99999999999")}) {
    std::string_view rest = text;
    double value = 3.0;
    EXPECT_FALSE(ScanDouble(rest, value)) << text;
    EXPECT_EQ(value, 3.0) << text;
    EXPECT_EQ(rest, text);
    EXPECT_EQ(ToDouble(text), 0.0) << text;
  }
}

TEST(NumberText, TooSmallNumbersAreZeroOrDenormal)
{
  const std::string zeros(400, '0');
  const std::string nines(200, '9');
  static const struct
  {
    std::string text;
    double expected;
  } cases[] = {{"1e-400", 0.0},
               {"-1e-400", -0.0},
               {"1e-99999999999999999999", 0.0},
               {"0." + zeros + "1", 0.0},
               {"." + zeros + "1e1", 0.0},
               {nines + "e-600", 0.0},
               {"1e-310", 1e-310},
               {"0e99999", 0.0},
               {"0x1p-2000", 0.0},
               {"0x0.0001p-1080", 0.0},
               {"0." + zeros + "1e401", 1.0}};
  for (const auto& c : cases) {
    std::string_view rest = c.text;
    double value = 3.0;
    EXPECT_TRUE(ScanDouble(rest, value)) << c.text;
    EXPECT_EQ(value, c.expected) << c.text;
    EXPECT_EQ(std::signbit(value), std::signbit(c.expected)) << c.text;
    EXPECT_EQ(rest, "") << c.text;
  }
}

TEST(NumberText, ScanIntReadsAsScanf)
{
  static const struct
  {
    const char* format;
    int base;
    int maxDigits;
  } conversions[] = {{"%i%n", 0, 0}, {"%d%n", 10, 0}, {"%2d%n", 10, 2}, {"%1d%n", 10, 1}};
  static const char* const texts[] = {
      "0",   "1",    "10",    "11",         "012",         "-3",  "+4",   "  56", "7x",   "123",
      "-12", "0x1F", "0X1f",  "-0x10",      "08",          "019", "+010", "00x1", "",     " ",
      "-",   "+",    "+-1",   "- 1",        "a",           "x1",  "ff",   "1.5",  "1e5",  "1 0",
      "0 1", "101",  "\t\n9", "2147483647", "-2147483648", "1a",  "1-2",  "1+2",  "0x1x", "0b1"};
  for (const auto& c : conversions) {
    for (const char* text : texts) {
      int expected = -7;
      int length = 0;
      const bool isNumber = std::sscanf(text, c.format, &expected, &length) == 1;
      std::string_view rest = text;
      int value = -7;
      EXPECT_EQ(ScanInt(rest, value, c.base, c.maxDigits), isNumber) << c.format << ' ' << text;
      EXPECT_EQ(value, expected) << c.format << ' ' << text;
      EXPECT_EQ(rest.data() - text, isNumber ? length : 0) << c.format << ' ' << text;
    }
  }
}

TEST(NumberText, ScanIntPrefixNeedsDigits)
{
  static const struct
  {
    const char* text;
    int maxDigits;
  } cases[] = {{"0x", 0}, {"-0X", 0}, {"0xg", 0}, {"0x1F", 2}, {"-0x1F", 3}};
  for (const auto& c : cases) {
    std::string_view rest = c.text;
    int value = 3;
    EXPECT_FALSE(ScanInt(rest, value, 0, c.maxDigits)) << c.text;
    EXPECT_EQ(rest, c.text);
  }
}

TEST(NumberText, ScanIntRefusesWhatDoesNotFit)
{
  for (const char* text : {"2147483648", "-2147483649", "4294967295", "4294967296",
                           "99999999999999999999999", "0x80000000", "0x100000001"}) {
    std::string_view rest = text;
    int value = 3;
    EXPECT_FALSE(ScanInt(rest, value, 0, 0)) << text;
    EXPECT_EQ(value, 3) << text;
    EXPECT_EQ(rest, text);
  }
}

TEST(NumberText, ToDoubleTakesTheNumberInFront)
{
  static const struct
  {
    const char* text;
    double expected;
  } cases[] = {{"2.1e11", 2.1e11}, {"30deg", 30.0}, {"1e", 1.0},   {"", 0.0},    {"abc", 0.0},
               {"inf", 0.0},       {"nan", 0.0},    {"=3", 0.0},   {"-4", -4.0}, {"0x", 0.0},
               {"1e400", 0.0},     {"0x1p", 1.0},   {"0x1p3", 8.0}};
  for (const auto& c : cases)
    EXPECT_EQ(ToDouble(c.text), c.expected) << c.text;
}

// A number in one of the ways in which files write them.
std::string RandomNumber(std::mt19937_64& random)
{
  const auto below = [&](int n) { return static_cast<int>(random() % static_cast<unsigned>(n)); };
  std::string text(below(3) == 0 ? "-" : "");
  if (below(4) == 0) {
    char digits[64];
    const double number = std::bit_cast<double>(random());
    std::snprintf(digits, sizeof digits, "%.*g", 1 + below(19), std::fabs(number));
    return text + (std::isfinite(number) ? digits : "0");
  }
  const int length = 1 + below(below(2) ? 12 : 25);
  const int point = below(length + 2);  // may lie before or after all digits, or be missing
  const int zeros = below(3) == 0 ? below(length) : 0;
  for (int i = 0; i < length; ++i) {
    if (i == point)
      text += '.';
    text += static_cast<char>('0' + (i < zeros ? 0 : below(10)));
  }
  if (point == length)
    text += '.';
  if (below(2) == 0) {
    static const char* const signs[] = {"", "+", "-"};
    text += below(2) ? "e" : "E";
    text += signs[below(3)] + std::to_string(below(below(2) ? 10 : 320));
  }
  return text;
}

TEST(NumberText, AMillionNumbersBitForBitAsStrtod)
{
  std::mt19937_64 random(1);
  for (int i = 0; i < 1000000; ++i) {
    const std::string number = RandomNumber(random);
    const std::string text = number + (i % 2 ? " 7" : "");
    const double expected = std::strtod(text.c_str(), nullptr);
    std::string_view rest = text;
    double value = -7.0;
    double streamed = -7.0;
    TextScan scan(text);
    ASSERT_EQ(ScanDouble(rest, value), std::isfinite(expected)) << text;
    ASSERT_EQ(scan.ReadDouble(streamed), std::isfinite(expected)) << text;
    if (!std::isfinite(expected))
      continue;
    ASSERT_EQ(std::bit_cast<std::uint64_t>(value), std::bit_cast<std::uint64_t>(expected)) << text;
    ASSERT_EQ(std::bit_cast<std::uint64_t>(streamed), std::bit_cast<std::uint64_t>(expected))
        << text;
    ASSERT_EQ(text.size() - rest.size(), number.size()) << text;
    ASSERT_EQ(scan.Where().column, static_cast<int>(number.size()) + 1) << text;
  }
}

TEST(NumberText, PlainNumbersEndWithTheText)
{
  const std::string text = "12.5e1234";
  for (std::size_t length : {1, 2, 3, 4}) {
    const Scanned<double> number = ScanPlainDouble(text.data(), text.data() + length);
    EXPECT_EQ(number.value, length == 1 ? 1.0 : length == 4 ? 12.5 : 12.0);
    EXPECT_EQ(number.stop, text.data() + length);
  }
  const Scanned<int> number = ScanPlainInt(text.data(), text.data() + 1);
  EXPECT_EQ(number.value, 1);
  EXPECT_EQ(number.stop, text.data() + 1);
}

TEST(NumberText, TheFastPathLeavesOtherNumbersToTheFullGrammar)
{
  for (const std::string text :
       {"", "-", "+1", " 1", ".", "-.", "e5", "1e", "1e+", "1e1e", "1x", "0x10", "1e23", "1e1000",
        "9007199254740993", "12345678901234567890", "0.00000000000000000001", "inf", "nan"})
    EXPECT_EQ(ScanPlainDouble(text.data(), text.data() + text.size()).stop, nullptr) << text;
}

// Every number of digits before every other character, with any bytes after it.
TEST(NumberText, DecimalsEndAtTheFirstCharacterThatIsNoDigit)
{
  std::mt19937_64 random(2);
  for (int count = 0; count <= 12; ++count) {
    for (int other = 0; other < 256; ++other) {
      const char c = static_cast<char>(other);
      if (IsDigit(c) || c == 'e' || c == 'E' || c == 'x' || c == 'X')
        continue;
      std::string text = "0.";
      for (int i = 0; i < count; ++i)
        text += static_cast<char>('0' + random() % 10);
      const double expected = std::strtod(text.c_str(), nullptr);
      text += c;
      for (int i = 0; i < 9; ++i)
        text += static_cast<char>(random());
      const Scanned<double> number = ScanPlainDouble(text.data(), text.data() + text.size());
      ASSERT_EQ(number.stop, text.data() + 2 + count) << count << ' ' << other;
      ASSERT_EQ(number.value, expected) << count << ' ' << other;
    }
  }
}

// Of a decimal number only the digits before "x", and too large numbers with the place after them.
TEST(NumberText, ParsersTellWhereANumberEndsAndWhetherItFits)
{
  static const struct
  {
    std::string_view text;
    std::ptrdiff_t decimal, any;  // lengths; -1: no number
    bool fits;
    double value;  // of the longer one
  } doubles[] = {{"0x10 ", 1, 4, true, 16.0},   {"1e400 ", 5, 5, false, 0.0},
                 {"-1e-400", 7, 7, true, 0.0},  {"2e", 1, 1, true, 2.0},
                 {"+1e2e3", 4, 4, true, 100.0}, {"inf", -1, -1, true, 0.0},
                 {"+-1", -1, -1, true, 0.0},    {" 1", -1, -1, true, 0.0}};
  for (const auto& c : doubles) {
    const char* const begin = c.text.data();
    const char* const end = begin + c.text.size();
    const Scanned<double> decimal = ParseDouble(begin, end, Radix::Decimal);
    const Scanned<double> any = ParseDouble(begin, end, Radix::DecimalOrHex);
    EXPECT_EQ(decimal.stop, c.decimal < 0 ? nullptr : begin + c.decimal) << c.text;
    EXPECT_EQ(any.stop, c.any < 0 ? nullptr : begin + c.any) << c.text;
    EXPECT_EQ(any.fits, c.fits) << c.text;
    EXPECT_EQ(any.value, c.value) << c.text;
  }
  static const struct
  {
    std::string_view text;
    int base;
    std::ptrdiff_t length;
    bool fits;
    int value;
  } ints[] = {{"-2147483648,", 10, 11, true, -2147483647 - 1},
              {"2147483648,", 10, 10, false, 0},
              {"99999999999 ", 10, 11, false, 0},
              {"010", 10, 3, true, 10},
              {"010", 0, 3, true, 8},
              {"-0x1fg", 0, 5, true, -31},
              {"0x1f", 10, 1, true, 0},
              {"+-1", 10, -1, true, 0}};
  for (const auto& c : ints) {
    const char* const begin = c.text.data();
    const Scanned<int> number = ParseInt(begin, begin + c.text.size(), c.base);
    EXPECT_EQ(number.stop, c.length < 0 ? nullptr : begin + c.length) << c.text;
    EXPECT_EQ(number.fits, c.fits) << c.text;
    EXPECT_EQ(number.value, c.value) << c.text;
  }
}

// Whatever follows a number, and however much of it.
TEST(NumberText, PlainIntegersGoToTheFirstOtherCharacter)
{
  for (const std::string digits :
       {"0", "7", "42", "0042", "1234567", "12345678", "123456789", "999999999", "1234567890",
        "0000000001", "18446744073709551617"}) {
    for (const std::string& number : {digits, "-" + digits}) {
      for (const std::string after : {"", " ", " 1 2 3 4 5 6", "x23456789", "\n", "-1234567890"}) {
        const std::string text = number + after;
        const Scanned<int> scanned = ScanPlainInt(text.data(), text.data() + text.size());
        const bool isPlain = digits.size() <= 9;
        EXPECT_EQ(scanned.stop, isPlain ? text.data() + number.size() : nullptr) << text;
        EXPECT_EQ(scanned.value, isPlain ? std::atoi(number.c_str()) : 0) << text;
      }
    }
  }
  for (const std::string text :
       {"", "-", "--1", "+1", " 1", "x", "- 1", "+1234567890", "/123456789", ":123456789"})
    EXPECT_EQ(ScanPlainInt(text.data(), text.data() + text.size()).stop, nullptr) << text;
}

}  // namespace

}  // namespace morlen
