#include "base/read_observer.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "base/textscan.h"
#include "support/fatal.h"

namespace morlen {

namespace {

/// Keeps what it is told as lines; runs steps as they are.
class Listener : public ReadObserver
{
public:
  Listener() { readObserver = this; }
  ~Listener() override { readObserver = nullptr; }
  Listener(const Listener&) = delete;
  Listener& operator=(const Listener&) = delete;

  bool Attempt(TextScan*, const std::function<void()>& step) override
  {
    step();
    return true;
  }
  bool AttemptOn(ReadItem, int, const std::function<void()>& step) override
  {
    step();
    return true;
  }
  void Notice(ReadEvent event, std::string_view place, std::string_view detail) override
  {
    lines.push_back(std::to_string(static_cast<int>(event)) + "|" + std::string(place) + "|" +
                    std::string(detail));
  }
  void Stored(ReadItem, int) override {}

  std::vector<std::string> lines;
};

std::string Line(ReadEvent event, const std::string& rest)
{
  return std::to_string(static_cast<int>(event)) + "|" + rest;
}

}  // namespace

TEST(ReadObserver, WithoutOneErrorsEndTheRun)
{
  ExpectFatal([] { Attempt(nullptr, [] { Fatal("no\n"); }); }, "no\n");
  ExpectFatal([] { AttemptOn(ReadItem::Node, 1, [] { Fatal("no\n"); }); }, "no\n");
  EXPECT_TRUE(Attempt(nullptr, [] {}));
}

TEST(ReadObserver, HearsWhatASearchSkips)
{
  const Listener listener;
  TextScan text("one two Theend 5");
  FindThisWord(text, "end");
  EXPECT_EQ(listener.lines, (std::vector{Line(ReadEvent::SkippedText, "one two |end"),
                                         Line(ReadEvent::WordPart, "Theend|end")}));
}

TEST(ReadObserver, HearsWhereASearchThatFailsBegins)
{
  const Listener listener;
  TextScan text("one two");
  FatalCaught([&] { FindThisWord(text, "end"); });
  EXPECT_EQ(listener.lines, std::vector{Line(ReadEvent::SearchFailed, "one two|end")});
}

TEST(ReadObserver, HearsOfValuesThatAreNoNumbersAsAWhole)
{
  const Listener listener;
  EXPECT_EQ(NumberOfItem("1.5"), 1.5);
  EXPECT_EQ(NumberOfItem("1,5"), 1.0);
  EXPECT_EQ(listener.lines, std::vector{Line(ReadEvent::NumberPart, "1,5|")});
}

TEST(TextScan, KnowsPlacesInTheText)
{
  const char* content = "ab\ncdef\n";
  TextScan text(content);
  text.SkipLine();
  EXPECT_EQ(text.LineAhead(), "cdef");
  EXPECT_EQ(text.OffsetOf(text.Here()), 3);
  const std::string_view line = text.ReadRestOfLine();
  EXPECT_EQ(text.OffsetOf(line.data() + 2), 5);
  EXPECT_EQ(text.OffsetOf("elsewhere"), -1);
}

}  // namespace morlen
