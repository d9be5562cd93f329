#include "base/errorwriter.h"

#include <gtest/gtest.h>

#include <barrier>
#include <fstream>
#include <iterator>
#include <new>
#include <string>
#include <string_view>
#include <thread>

#include "support/fatal.h"

namespace morlen {

TEST(ErrorWriter, MessageIsThePartsInOrder)
{
  ExpectFatal([] { Fatal("error: element ", 7, " at ", 1.5, "\n"); }, "error: element 7 at 1.5\n");
}

TEST(ErrorWriter, TextInsertedBeforeComesFirst)
{
  ExpectFatal(
      [] {
        errorwriter.Stream() << "first\n";
        Fatal("second");
      },
      "first\nsecond");
}

TEST(ErrorWriter, MessageBeyondTheBufferIsCut)
{
  const std::string message = FatalCaught([] { Fatal(std::string(5000, 'x')); });
  EXPECT_EQ(message, std::string(2048, 'x'));
}

TEST(ErrorWriter, NextMessageStartsEmptyAfterACutOne)
{
  FatalCaught([] { Fatal(std::string(5000, 'x')); });
  ExpectFatal([] { Fatal("again"); }, "again");
}

TEST(ErrorWriter, HintBelongsToTheNextErrorOnly)
{
  ExpectFatal(
      [] {
        Explain("forgotten");
        Explain("write ", 2.5);
        Fatal("error: 2,5\n");
      },
      "error: 2,5\n");
  EXPECT_EQ(errorwriter.Hint(), "write 2.5");
  ExpectFatal([] { Fatal("another\n"); }, "another\n");
  EXPECT_EQ(errorwriter.Hint(), "");
}

TEST(ErrorWriter, DroppedHintIsNotPrinted)
{
  Explain("of an error that has not come");
  errorwriter.DropHint();
  ExpectFatal([] { Fatal("another\n"); }, "another\n");
  EXPECT_EQ(errorwriter.Hint(), "");
}

TEST(ErrorWriterDeathTest, HintFollowsOnALineOfItsOwn)
{
  const auto fail = [](const char* message) {
    Explain("use a point");
    Fatal(message);
  };
  EXPECT_EXIT(fail("error: 2,5\n"), testing::ExitedWithCode(2),
              "^error: 2,5\nhint: use a point\n$");
  // The message ends at its first null character.
  const auto cut = [] {
    Explain("a hint");
    Fatal("name=", std::string_view("\0\n", 2));
  };
  EXPECT_EXIT(cut(), testing::ExitedWithCode(2), "^name=\nhint: a hint\n$");
  EXPECT_EXIT(fail("no newline"), testing::ExitedWithCode(2), "^no newline\nhint: use a point\n$");
}

TEST(ErrorWriter, WarningGoesToTheListener)
{
  static std::string heard;
  const auto previous = errorwriter.SetWarningListener([](std::string_view text) { heard = text; });
  errorwriter.WriteWarning("3 lines are skipped");
  errorwriter.SetWarningListener(previous);
  EXPECT_EQ(heard, "3 lines are skipped");
}

TEST(ErrorWriter, WarningIsALineOnStandardError)
{
  testing::internal::CaptureStderr();
  errorwriter.WriteWarning("3 lines are skipped");
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "warning: 3 lines are skipped\n");
}

// Both threads are in the middle of their messages at the same time, and each ends by its own end.
TEST(ErrorWriter, ThreadsHaveTheirOwnMessagesAndEnds)
{
  struct First
  {
    std::string message;
  };
  struct Second
  {
    std::string message;
  };
  static constexpr int kRounds = 200;
  std::barrier together(2);
  const auto failures = [&together](auto end, auto caught, const std::string& name) {
    errorwriter.SetEndOfRun(end);
    int right = 0;
    for (int i = 0; i < kRounds; ++i) {
      const std::string number = std::to_string(i);
      try {
        errorwriter.Stream() << name;
        together.arrive_and_wait();
        Fatal(' ', number);
      } catch (const decltype(caught)& end_) {
        right += end_.message == name + ' ' + number ? 1 : 0;
      }
    }
    return right;
  };
  int first = 0;
  int second = 0;
  std::thread other([&] {
    second = failures([](std::string_view text) { throw Second{std::string(text)}; }, Second(),
                      "second");
  });
  const auto previous = errorwriter.SetEndOfRun(nullptr);
  first = failures([](std::string_view text) { throw First{std::string(text)}; }, First(), "first");
  other.join();
  errorwriter.SetEndOfRun(previous);
  EXPECT_EQ(first, kRounds);
  EXPECT_EQ(second, kRounds);
}

TEST(ErrorWriter, AThreadBeginsWithoutAnEnd)
{
  const ErrorWriter::EndOfRun end = [](std::string_view) {};
  const auto previous = errorwriter.SetEndOfRun(end);
  ErrorWriter::EndOfRun found = end;
  std::thread([&] { found = errorwriter.SetEndOfRun(nullptr); }).join();
  EXPECT_EQ(found, nullptr);
  EXPECT_EQ(errorwriter.SetEndOfRun(previous), end) << "the thread left this one alone";
}

TEST(ErrorWriterDeath, PrintsToStandardErrorAndEndsWithStatus2)
{
  EXPECT_EXIT(Fatal("Invalid ", 3), testing::ExitedWithCode(2), "^Invalid 3$");
}

TEST(ErrorWriterDeath, TheErrorFileBelongsToItsThread)
{
  EXPECT_EXIT(
      {
        std::thread([] { errorwriter.SetErrorFile(stdout); }).join();
        Fatal("on standard error\n");
      },
      testing::ExitedWithCode(2), "^on standard error");
}

TEST(ErrorWriterDeath, PrintsToTheErrorFile)
{
  const std::string name = testing::TempDir() + "errorwriter_test.txt";
  EXPECT_EXIT(
      {
        errorwriter.SetErrorFile(std::fopen(name.c_str(), "w"));
        Fatal("in the file\n");
      },
      testing::ExitedWithCode(2), "^$");
  std::ifstream file(name);
  const std::string content(std::istreambuf_iterator<char>(file), {});
  EXPECT_EQ(content, "in the file\n");
}

TEST(ErrorWriter, FailedAllocationIsFatal)
{
  ExpectFatal([] { std::get_new_handler()(); }, "Not space available on heap");
}

}  // namespace morlen
