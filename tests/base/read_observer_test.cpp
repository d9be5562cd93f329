#include "base/read_observer.h"

#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <thread>
#include <vector>

#include "base/textscan.h"
#include "support/fatal.h"

namespace morlen {

namespace {

/// Keeps the notices as lines; runs steps as they are.
class Listener : public ReadObserver
{
public:
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
  void Entered(ReadTopic topic) override { topics.push_back(topic); }
  void Stored(ReadItem, int) override {}

  std::vector<std::string> lines;
  std::vector<ReadTopic> topics;

private:
  const ObserverScope scope{*this};
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

TEST(ReadObserver, HearsOfTextThatASearchSkips)
{
  const Listener listener;
  TextScan text("one two Theend 5");
  FindThisWord(text, "end");
  EXPECT_EQ(listener.lines, (std::vector{Line(ReadEvent::SkippedText, "one two |end"),
                                         Line(ReadEvent::WordPart, "Theend|end")}));
}

TEST(ReadObserver, HearsWhereAFailedSearchBegins)
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

TEST(ReadObserver, TellsSearchesApart)
{
  const Listener listener;
  TextScan text("a end b elements c end");
  FindBlockEnd(text);
  FindWordAfterBlock(text, "elements");
  text.ReadWord();
  FatalCaught([&] { FindBlockEnd(text); });  // nothing follows the word
  EXPECT_EQ(listener.lines, (std::vector{Line(ReadEvent::SkippedToBlockEnd, "a |end"),
                                         Line(ReadEvent::WordPart, "end|end"),
                                         Line(ReadEvent::SkippedAfterBlock, " b |elements"),
                                         Line(ReadEvent::WordPart, "elements|elements"),
                                         Line(ReadEvent::SearchFailed, " end|end")}));
}

TEST(ReadObserver, ScopesNest)
{
  const Listener outer;
  {
    const Listener inner;
    EXPECT_EQ(readObserver, &inner);
  }
  EXPECT_EQ(readObserver, &outer);
}

// Each thread searches texts, notes and fails many times over, with nothing between the two but
// the process.
TEST(ReadObserver, BelongsToOneThread)
{
  constexpr int kTimes = 2000;
  const Listener ofThisThread;
  struct Heard
  {
    std::vector<std::string> lines;
    int failures = 0;
  };
  const auto listen = [](const std::string& word, Heard& heard) {
    EXPECT_EQ(readObserver, nullptr);
    const Listener listener;
    for (int i = 0; i < kTimes; ++i) {
      const std::string text = word + " end";
      TextScan scan(text);
      const std::string message = FatalCaught([&] { FindThisWord(scan, "end"); });
      heard.failures += message == "can't find word ***end*** in input file\n";
      NoteNumber(word);
    }
    heard.lines = listener.lines;
  };
  Heard first, second;
  std::thread a(listen, "1x", std::ref(first));
  std::thread b(listen, "22y", std::ref(second));
  a.join();
  b.join();
  const auto expected = [](const std::string& word) {
    std::vector<std::string> lines;
    for (int i = 0; i < kTimes; ++i) {
      lines.push_back(Line(ReadEvent::SearchFailed, word + " end|end"));
      lines.push_back(Line(ReadEvent::NumberPart, word + "|"));
    }
    return lines;
  };
  EXPECT_EQ(first.failures, kTimes);
  EXPECT_EQ(second.failures, kTimes);
  EXPECT_EQ(first.lines, expected("1x"));
  EXPECT_EQ(second.lines, expected("22y"));
  EXPECT_TRUE(ofThisThread.lines.empty());
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

TEST(ReadObserver, HearsOfWordsThatAreNotOneNumber)
{
  Listener listener;
  const std::string record = "1 2,1 3e 1-4 5 6mm # 7x";
  NoteNumbers(std::string_view(record).substr(0, 16), std::string_view(record).substr(16));
  EXPECT_EQ(
      listener.lines,
      (std::vector{Line(ReadEvent::NumberPart, "2,1|"), Line(ReadEvent::NumberPart, "3e|"),
                   Line(ReadEvent::NumberPart, "1-4|"), Line(ReadEvent::NumberPart, "6mm|")}));
}

}  // namespace morlen
