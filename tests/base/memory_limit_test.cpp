// The memory left, computed from copies of the system's files.

#include "base/memory_limit.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <string>

#include "support/fatal.h"
#include "support/run.h"

namespace morlen {

namespace {

constexpr std::uint64_t kMega = 1 << 20;
constexpr std::uint64_t kGiga = 1 << 30;

// A folder with the files of a machine that has 8 GiB available.
class MemoryLimitTest : public testing::Test
{
protected:
  MemoryLimitTest()
  {
    folder.Write("proc/meminfo",
                 "MemTotal:       16777216 kB\nMemFree:         1048576 kB\n"
                 "MemAvailable:    8388608 kB\nBuffers:          123456 kB\n");
  }

  std::uint64_t Available() const
  {
    const std::string root = folder.Path().string();
    return AvailableMemory({root + "/proc", root + "/groups"});
  }

  // Adds a group of the second version with these files.
  void WriteGroup(const std::string& path, const std::string& most, std::uint64_t current)
  {
    folder.Write("groups" + path + "/memory.max", most + "\n");
    folder.Write("groups" + path + "/memory.current", std::to_string(current) + "\n");
  }

  TemporaryFolder folder;
};

}  // namespace

TEST_F(MemoryLimitTest, IsWhatTheMachineHas)
{
  EXPECT_EQ(Available(), 8 * kGiga);
}

TEST_F(MemoryLimitTest, LimitDoesNotDependOnWhatIsInUse)
{
  const std::string root = folder.Path().string();
  const MemorySources sources = {root + "/proc", root + "/groups"};
  EXPECT_EQ(MemoryLimit(sources), 16 * kGiga);
  folder.Write("proc/self/cgroup", "0::/one\n");
  WriteGroup("/one", std::to_string(3 * kGiga), kGiga);
  EXPECT_EQ(MemoryLimit(sources), 3 * kGiga);
  EXPECT_EQ(Available(), 2 * kGiga);
}

TEST_F(MemoryLimitTest, NothingIsLimitedWhereNothingIsKnown)
{
  const std::string nowhere = folder.Path().string() + "/nowhere";
  EXPECT_EQ(AvailableMemory({nowhere, nowhere}), UINT64_MAX);
}

TEST_F(MemoryLimitTest, IsWhatTheContainerLeaves)
{
  folder.Write("proc/self/cgroup", "0::/one/two\n");
  WriteGroup("/one/two", std::to_string(2 * kGiga), kGiga / 2);
  EXPECT_EQ(Available(), 3 * kGiga / 2);
}

TEST_F(MemoryLimitTest, AnOuterContainerCounts)
{
  folder.Write("proc/self/cgroup", "0::/one/two\n");
  WriteGroup("/one/two", "max", kGiga / 2);
  WriteGroup("/one", std::to_string(kGiga), kGiga / 4);
  EXPECT_EQ(Available(), 3 * kGiga / 4);
  WriteGroup("", std::to_string(kGiga / 2), 0);
  EXPECT_EQ(Available(), kGiga / 2);
}

TEST_F(MemoryLimitTest, PagesOfFilesGiveWay)
{
  folder.Write("proc/self/cgroup", "0::/\n");
  WriteGroup("", std::to_string(kGiga), kGiga);
  EXPECT_EQ(Available(), 0u);
  folder.Write("groups/memory.stat",
               "anon 123\ninactive_file 104857600\nactive_file 209715200\nother 5\n");
  EXPECT_EQ(Available(), 300 * kMega);
}

TEST_F(MemoryLimitTest, AFullContainerLeavesNothing)
{
  folder.Write("proc/self/cgroup", "0::/\n");
  WriteGroup("", std::to_string(kGiga), kGiga + 1);
  EXPECT_EQ(Available(), 0u);
}

TEST_F(MemoryLimitTest, TheFirstVersionOfGroupsIsKnown)
{
  folder.Write("proc/self/cgroup",
               "12:cpuset,memory:/one\n4:memory_other:/none\n1:name=systemd:/two\n0::/\n");
  folder.Write("groups/memory/one/memory.limit_in_bytes", "3221225472\n");
  folder.Write("groups/memory/one/memory.usage_in_bytes", "2147483648\n");
  folder.Write("groups/memory/one/memory.stat",
               "cache 5\ntotal_inactive_file 524288000\ntotal_active_file 0\n");
  EXPECT_EQ(Available(), kGiga + 500 * kMega);
}

TEST_F(MemoryLimitTest, BrokenLinesSetNoLimit)
{
  folder.Write("proc/self/cgroup", "\n::\n0:\n0::\n0::relative\nmemory\n");
  folder.Write("proc/self/statm", "not a number");
  EXPECT_EQ(Available(), 8 * kGiga);
  folder.Write("proc/meminfo", "MemAvailable: none\n");
  EXPECT_EQ(Available(), UINT64_MAX);
}

TEST(RequireMemory, RefusesWhatNoMachineHas)
{
  RequireMemory(0);
  RequireMemory(1000000);
  ExpectFatal([] { RequireMemory(UINT64_MAX); }, "Not space available on heap");
  ExpectFatal([] { RequireMemory(std::uint64_t{1} << 60); }, "Not space available on heap");
}

TEST(RequireAddressSpace, RefusesWhatCannotBeMapped)
{
  RequireAddressSpace(1);
  RequireAddressSpace(100 * kMega);
  ExpectFatal([] { RequireAddressSpace(std::size_t{1} << 60); }, "Not space available on heap");
}

}  // namespace morlen
