#include "base/errorwriter.h"

#include <gtest/gtest.h>

#include <fstream>
#include <iterator>
#include <new>
#include <string>
#include <vector>

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

TEST(ErrorWriterDeath, PrintsToStandardErrorAndEndsWithStatus2)
{
  EXPECT_EXIT(Fatal("Invalid ", 3), testing::ExitedWithCode(2), "^Invalid 3$");
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
