#include "base/number_format.h"

#include <gtest/gtest.h>

#include <bit>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <limits>
#include <random>
#include <string>

#include "base/powers_of_ten.h"

namespace morlen {

namespace {

template <class Number>
std::string Printed(const char* format, Number number)
{
  char text[64];
  const int length = std::snprintf(text, sizeof text, format, number);
  return {text, static_cast<std::size_t>(length)};
}

template <class Number>
std::string Written(char* (*write)(char*, Number), Number number)
{
  char text[kLongestNumber];
  return {text, write(text, number)};
}

void ExpectAsPrinted(double number)
{
  ASSERT_EQ(Written(FormatGeneral, number), Printed("%g", number));
  ASSERT_EQ(Written(FormatScientific, number), Printed("%.6e", number));
}

// The number, its neighbours, and all of them with the other sign.
void ExpectAroundAsPrinted(double number)
{
  constexpr double kInfinity = std::numeric_limits<double>::infinity();
  for (const double x :
       {number, std::nextafter(number, kInfinity), std::nextafter(number, -kInfinity)}) {
    ExpectAsPrinted(x);
    ExpectAsPrinted(-x);
  }
}

double Parsed(const std::string& text)
{
  double number = 0.0;
  std::from_chars(text.data(), text.data() + text.size(), number);
  return number;
}

constexpr int kMany = 250000;  // of each of the kinds below

}  // namespace

TEST(NumberFormat, AnyBitsAsPrinted)
{
  std::mt19937_64 random(1);
  for (int i = 0; i < kMany; ++i)
    ExpectAsPrinted(std::bit_cast<double>(random()));
}

TEST(NumberFormat, NumbersOfAllMagnitudesAsPrinted)
{
  std::mt19937_64 random(2);
  std::uniform_real_distribution<double> magnitude(-30.0, 30.0);
  for (int i = 0; i < kMany; ++i)
    ExpectAsPrinted((i % 2 ? -1.0 : 1.0) * std::pow(10.0, magnitude(random)));
}

// Many of them end in a 5 after the digits kept; the nearest double is slightly above or below.
TEST(NumberFormat, ShortDecimalsAsPrinted)
{
  std::mt19937_64 random(3);
  std::uniform_int_distribution<int> digits(0, 99999999);
  std::uniform_int_distribution<int> exponent(-25, 15);
  for (int i = 0; i < kMany; ++i) {
    const int number = digits(random) / 10 * 10 + (i % 2 ? 5 : 0);
    ExpectAsPrinted(Parsed(std::to_string(number) + "e" + std::to_string(exponent(random))));
  }
}

TEST(NumberFormat, TiesGoToTheEvenDigitAsPrinted)
{
  ExpectAsPrinted(0.5);
  ExpectAsPrinted(2.5);
  ExpectAsPrinted(1234565.0);
  EXPECT_EQ(Written(FormatGeneral, 1234565.0), "1.23456e+06");
  EXPECT_EQ(Written(FormatGeneral, 1234575.0), "1.23458e+06");
  EXPECT_EQ(Written(FormatGeneral, 100000.5), "100000");
  EXPECT_EQ(Written(FormatScientific, 12345675.0), "1.234568e+07");
  std::mt19937_64 random(4);
  std::uniform_int_distribution<int> quarters(0, 80000000);
  for (int i = 0; i < kMany; ++i)
    ExpectAsPrinted(quarters(random) / (i % 2 ? 4.0 : 1024.0));
}

TEST(NumberFormat, PowersOfTenAndTheirNeighboursAsPrinted)
{
  for (int exponent = -323; exponent <= 308; ++exponent) {
    for (const char* digits : {"1", "2", "5", "9.99999", "9.999995", "9.9999995", "9.99999949"})
      ExpectAroundAsPrinted(Parsed(digits + ("e" + std::to_string(exponent))));
  }
}

TEST(NumberFormat, PowersOfTwoAndTheirNeighboursAsPrinted)
{
  for (int exponent = -1074; exponent <= 1023; ++exponent)
    ExpectAroundAsPrinted(std::ldexp(1.0, exponent));
}

TEST(NumberFormat, SpecialNumbersAsPrinted)
{
  using Limits = std::numeric_limits<double>;
  for (const double number :
       {0.0, Limits::denorm_min(), Limits::min(), Limits::max(), Limits::infinity(), 0.1 + 0.2,
        123456.0, 1234567.0, 999999.5, 0.0001, 0.00001, 1000.0, 1e300, Limits::quiet_NaN()}) {
    ExpectAsPrinted(number);
    ExpectAsPrinted(-number);
  }
}

TEST(NumberFormat, WholeNumbersAsPrinted)
{
  for (int number = -20000; number <= 20000; ++number) {
    ASSERT_EQ(Written(FormatInt, number), Printed("%d", number));
    ExpectAsPrinted(number);
  }
  std::mt19937 random(5);
  for (int i = 0; i < kMany; ++i) {
    const int number = static_cast<int>(random()) >> (i % 32);
    ASSERT_EQ(Written(FormatInt, number), Printed("%d", number));
    ExpectAsPrinted(number);
  }
  for (const int number : {99999999, 100000000, -99999999, -100000000,
                           std::numeric_limits<int>::max(), std::numeric_limits<int>::min()})
    EXPECT_EQ(Written(FormatInt, number), Printed("%d", number));
}

TEST(PowersOfTen, WholeOnesAreExact)
{
  std::uint64_t fives = 1;  // 10^p = 5^p · 2^p
  for (int p = 0; p <= 27; ++p, fives *= 5) {
    const PowerOfTen power = GivePowerOfTen(p);
    const int shift = std::countl_zero(fives);
    EXPECT_EQ(power.mantissa, fives << shift) << p;
    EXPECT_EQ(power.exponent, p - shift) << p;
  }
}

TEST(PowersOfTen, AgreeWithTheDoubles)
{
  for (int p = -307; p <= 308; ++p) {
    const PowerOfTen power = GivePowerOfTen(p);
    const double number = Parsed("1e" + std::to_string(p));
    const double ratio = std::ldexp(static_cast<double>(power.mantissa), power.exponent) / number;
    EXPECT_NEAR(ratio, 1.0, 3e-16) << p;
    EXPECT_EQ(FloorLog2OfPower(p), std::ilogb(number)) << p;
  }
}

TEST(PowersOfTen, ExponentsOfThePowersOfTwo)
{
  for (int b = -1022; b <= 1023; ++b) {
    const std::string text = Printed("%.17e", std::ldexp(1.0, b));
    EXPECT_EQ(FloorLog10OfPower(b), std::stoi(text.substr(text.find('e') + 1))) << b;
  }
}

}  // namespace morlen
