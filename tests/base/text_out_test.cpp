#include "base/text_out.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <fstream>
#include <limits>
#include <sstream>
#include <string>

#include "base/stprintf.h"

namespace morlen {

namespace {

std::string Printed(const char* format, double number)
{
  char text[64];
  std::snprintf(text, sizeof text, format, number);
  return text;
}

template <class Write>
std::string Written(Write write)
{
  std::ostringstream stream;
  TextOut out(stream);
  write(out);
  out.Flush();
  return stream.str();
}

}  // namespace

TEST(TextOut, NumbersAsPrintfGives)
{
  for (const double number :
       {0.0, -0.0, 1.0, -1.5, 123456.0, 1234567.0, 0.0001, 0.00001, 999999.5, 1e300, -1e-300,
        0.1 + 0.2, 5e-324, std::numeric_limits<double>::max()}) {
    EXPECT_EQ(Written([&](TextOut& out) { out << number; }), Printed("%g", number));
    EXPECT_EQ(Written([&](TextOut& out) { out.Scientific(number); }), Printed("  %13.6e", number));
  }
}

TEST(TextOut, TextAndIntegers)
{
  EXPECT_EQ(Written([](TextOut& out) { out << "node " << 12 << ' ' << -7 << '\n'; }),
            "node 12 -7\n");
}

TEST(TextOut, BlocksAreJoinedWithoutLoss)
{
  std::string expected;
  const std::string written = Written([&](TextOut& out) {
    const std::string large(200000, 'x');
    for (int i = 0; i < 50000; ++i) {
      out << i << ' ';
      expected += std::to_string(i) + ' ';
    }
    out << large << "end";
    expected += large + "end";
  });
  EXPECT_EQ(written, expected);
}

TEST(TextOut, TellsWhetherTheStreamHasTakenEverything)
{
  std::ostringstream stream;
  TextOut out(stream);
  out << "text";
  EXPECT_TRUE(out.Ok());
  EXPECT_EQ(stream.str(), "text");
  stream.setstate(std::ios::badbit);
  out << "more";
  EXPECT_FALSE(out.Ok());
}

TEST(TextOut, DoesNotReachAFullDevice)
{
  std::ofstream device("/dev/full");
  TextOut out(device);
  out << 1.5;
  EXPECT_FALSE(out.Ok());
}

TEST(Stprintf, FormatsOntoAStream)
{
  std::ostringstream stream;
  stprintf(stream, "%5i|%-6s|%g", 42, "ab", 0.5);
  EXPECT_EQ(stream.str(), "   42|ab    |0.5");
}

TEST(Progress, DoesNothingWithoutAStream)
{
  Progress(nullptr, "text %i\n", 1);
}

}  // namespace morlen
