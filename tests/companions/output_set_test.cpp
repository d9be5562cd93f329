#include "common/output_set.h"

#include <gtest/gtest.h>

#include "common/atomic_file.h"
#include "support/fatal.h"
#include "support/run.h"

namespace morlen {

TEST(OutputSet, FilesGetTheirNamesTogether)
{
  const TemporaryFolder folder;
  folder.Write("a", "old");
  OutputSet set;
  OutputFile& a = set.Open(folder.Path() / "a");
  a.Stream() << "new";
  testing::internal::CaptureStdout();
  {
    AtomicFile b(folder.Path() / "b", set);
    b.Write("second");
    b.Commit();
  }
  EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
  EXPECT_EQ(folder.Read("a"), "old");
  EXPECT_FALSE(folder.Has("b"));
  set.Flush();
  std::ifstream written(a.WrittenName());
  EXPECT_EQ(std::string(std::istreambuf_iterator<char>(written), {}), "new");
  set.Commit();
  EXPECT_EQ(folder.Files(), (std::map<std::string, std::string>{{"a", "new"}, {"b", "second"}}));
}

TEST(OutputSet, LeavesTheOldFilesWithoutCommit)
{
  const TemporaryFolder folder;
  folder.Write("a", "old");
  {
    OutputSet set;
    set.Open(folder.Path() / "a").Stream() << "new";
    set.Flush();
  }
  EXPECT_EQ(folder.Files(), (std::map<std::string, std::string>{{"a", "old"}}));
}

TEST(OutputSet, RemovesFilesOfEarlierRunsAtTheEnd)
{
  const TemporaryFolder folder;
  folder.Write("stale", "old");
  OutputSet set;
  set.Open(folder.Path() / "a").Stream() << "new";
  set.RemoveAtCommit(folder.Path() / "stale");
  set.RemoveAtCommit(folder.Path() / "absent");
  EXPECT_TRUE(folder.Has("stale"));
  set.Flush();
  set.Commit();
  EXPECT_EQ(folder.Files(), (std::map<std::string, std::string>{{"a", "new"}}));
}

TEST(OutputSet, RefusesProblemFiles)
{
  const TemporaryFolder folder;
  folder.Write("m.dat", "problem type: 2d\n");
  const std::string name = (folder.Path() / "m.dat").string();
  OutputSet set;
  ExpectFatal([&] { set.Open(name); },
              "error: " + name + " is a problem file and would be written over\n");
}

}  // namespace morlen
