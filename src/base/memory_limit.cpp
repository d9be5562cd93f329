// The memory that a process can allocate has several limits: those of the process (getrlimit),
// those of its control groups (containers; two versions, whose files have different names) and the
// memory of the machine. Each function here gives one limit, or kNoLimit where it is not set or not
// known. The bytes in use come from /proc and the groups' files. Pages of cached files count as
// free, because the system drops them when memory is short.

#include "base/memory_limit.h"

#include <sys/mman.h>
#include <sys/resource.h>
#include <unistd.h>

#include <algorithm>
#include <cstdint>
#include <fstream>
#include <limits>
#include <string_view>

#include "base/errorwriter.h"

namespace morlen {

namespace {

constexpr std::uint64_t kNoLimit = std::numeric_limits<std::uint64_t>::max();

/// The bytes that a function returns.
enum class Bytes
{
  All,  ///< the whole limit
  Left  ///< the limit less the bytes in use
};

std::uint64_t BytesOf(Bytes which, std::uint64_t limit, std::uint64_t used)
{
  return limit == kNoLimit || which == Bytes::All ? limit : limit - std::min(limit, used);
}

// The number in a file; `otherwise` when there is none ("max", no such file).
std::uint64_t NumberIn(const std::string& file, std::uint64_t otherwise)
{
  std::ifstream in(file);
  std::uint64_t number = 0;
  return in >> number ? number : otherwise;
}

// The number after a key in a file of lines "key number"; `otherwise` without such a line.
std::uint64_t NumberAfter(const std::string& key, const std::string& file, std::uint64_t otherwise)
{
  std::ifstream in(file);
  std::string word;
  for (std::uint64_t number = 0; in >> word >> number; in.ignore(1000, '\n')) {
    if (word == key)
      return number;
  }
  return otherwise;
}

std::uint64_t OfMachine(Bytes which, const MemorySources& sources)
{
  constexpr std::uint64_t kUnit = 1024;
  const char* const key = which == Bytes::All ? "MemTotal:" : "MemAvailable:";
  const std::uint64_t free = NumberAfter(key, sources.processes + "/meminfo", kNoLimit);
  return free > kNoLimit / kUnit ? kNoLimit : free * kUnit;
}

std::uint64_t LimitOf(__rlimit_resource resource)
{
  rlimit limit = {};
  return getrlimit(resource, &limit) != 0 || limit.rlim_cur == RLIM_INFINITY ? kNoLimit
                                                                             : limit.rlim_cur;
}

std::uint64_t OfProcess(Bytes which, const MemorySources& sources)
{
  std::ifstream in(sources.processes + "/self/statm");  // in pages
  std::uint64_t size = 0, resident = 0, shared = 0, text = 0, libraries = 0, data = 0;
  in >> size >> resident >> shared >> text >> libraries >> data;
  const auto page = static_cast<std::uint64_t>(sysconf(_SC_PAGESIZE));
  return std::min(BytesOf(which, LimitOf(RLIMIT_AS), size * page),
                  BytesOf(which, LimitOf(RLIMIT_DATA), data * page));
}

// The names of a group's files in one version of the control groups.
struct GroupFiles
{
  const char* limit;
  const char* usage;
  const char* cache[2];  // keys of memory.stat: pages of cached files
};

constexpr GroupFiles kVersion1 = {
    "memory.limit_in_bytes", "memory.usage_in_bytes", {"total_inactive_file", "total_active_file"}};
constexpr GroupFiles kVersion2 = {"memory.max", "memory.current", {"inactive_file", "active_file"}};

std::uint64_t OfGroup(Bytes which, const std::string& folder, const GroupFiles& files)
{
  const std::uint64_t limit = NumberIn(folder + files.limit, kNoLimit);
  if (limit == kNoLimit)
    return kNoLimit;
  std::uint64_t used = NumberIn(folder + files.usage, 0);
  for (const char* key : files.cache)
    used -= std::min(used, NumberAfter(key, folder + "memory.stat", 0));
  return BytesOf(which, limit, used);
}

// The least of a group and of all groups that contain it, up to the root.
std::uint64_t OfGroups(Bytes which, const std::string& root, std::string path,
                       const GroupFiles& files)
{
  std::uint64_t least = OfGroup(which, root + "/", files);
  while (path.size() > 1) {
    least = std::min(least, OfGroup(which, root + path + "/", files));
    path.resize(path.rfind('/'));
  }
  return least;
}

// True when a list of words, separated by commas, contains the word.
bool Lists(std::string_view list, std::string_view word)
{
  while (!list.empty()) {
    const std::string_view first = list.substr(0, list.find(','));
    if (first == word)
      return true;
    list.remove_prefix(std::min(first.size() + 1, list.size()));
  }
  return false;
}

// The file has lines "number:controllers:path"; the second version names no controllers.
std::uint64_t OfContainer(Bytes which, const MemorySources& sources)
{
  std::ifstream in(sources.processes + "/self/cgroup");
  std::uint64_t least = kNoLimit;
  for (std::string line; std::getline(in, line);) {
    const std::size_t first = line.find(':');
    const std::size_t second = line.find(':', first + 1);
    if (first == std::string::npos || second == std::string::npos ||
        line.compare(second + 1, 1, "/") != 0)
      continue;
    const std::string controllers = line.substr(first + 1, second - first - 1);
    const std::string path = line.substr(second + 1);
    if (controllers.empty())
      least = std::min(least, OfGroups(which, sources.groups, path, kVersion2));
    else if (Lists(controllers, "memory"))
      least = std::min(least, OfGroups(which, sources.groups + "/memory", path, kVersion1));
  }
  return least;
}

std::uint64_t LeastOf(Bytes which, const MemorySources& sources)
{
  return std::min(
      {OfProcess(which, sources), OfContainer(which, sources), OfMachine(which, sources)});
}

}  // namespace

std::uint64_t AvailableMemory(const MemorySources& sources)
{
  return LeastOf(Bytes::Left, sources);
}

std::uint64_t MemoryLimit(const MemorySources& sources)
{
  return LeastOf(Bytes::All, sources);
}

void RequireMemory(std::uint64_t bytes)
{
  constexpr std::uint64_t kSmall = 16 << 20;  // not worth the look-up
  if (bytes > PTRDIFF_MAX || (bytes >= kSmall && bytes > AvailableMemory()))
    Fatal("Not space available on heap");
}

void RequireAddressSpace(std::size_t bytes)
{
  void* const map = mmap(nullptr, bytes, PROT_READ | PROT_WRITE,
                         MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0);
  if (map == MAP_FAILED)
    Fatal("Not space available on heap");
  munmap(map, bytes);
}

}  // namespace morlen
