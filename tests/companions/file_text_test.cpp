#include "common/file_text.h"

#include <gtest/gtest.h>

#include "support/run.h"

namespace morlen {

TEST(FileText, GivesAllBytes)
{
  const TemporaryFolder folder;
  const std::string large(200000, 'x');  // more than one block
  const std::string bytes = std::string("a\0\r\n\xFF", 5) + large;
  folder.Write("file", bytes);
  EXPECT_EQ(FileText(folder.Path() / "file"), bytes);
  folder.Write("empty", "");
  EXPECT_EQ(FileText(folder.Path() / "empty"), "");
}

TEST(FileText, GivesNothingForFoldersAndMissingFiles)
{
  const TemporaryFolder folder;
  EXPECT_EQ(FileText(folder.Path()), std::nullopt);
  EXPECT_EQ(FileText(folder.Path() / "missing"), std::nullopt);
}

}  // namespace morlen
