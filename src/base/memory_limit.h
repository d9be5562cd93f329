#pragma once

#include <cstdint>
#include <string>

namespace morlen {

/// Where the system tells about memory; tests put files of their own there.
struct MemorySources
{
  std::string processes = "/proc";
  std::string groups = "/sys/fs/cgroup";
};

/// The bytes that the process can still take: the least of what its limits (address space,
/// data), the limits of its control groups (both versions of them) and the machine leave.
/// What cannot be found out sets no limit.
std::uint64_t AvailableMemory(const MemorySources& sources = {});

/// The bytes that a process may take here when nothing else runs: the same limits, whatever is in
/// use at the moment.
std::uint64_t MemoryLimit(const MemorySources& sources = {});

/// Fatal ("Not space available on heap") when the process cannot take this much more memory,
/// or when no array can be so large.
/// Called before a large array is allocated: the system may grant it, and end the process
/// when it is filled.
void RequireMemory(std::uint64_t bytes);

}  // namespace morlen
