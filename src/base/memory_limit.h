#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

namespace morlen {

/// Folders in which the system describes its memory; tests pass folders with other files.
struct MemorySources
{
  std::string processes = "/proc";
  std::string groups = "/sys/fs/cgroup";
};

/// The bytes that the process can still allocate: the smallest rest of its limits (address space,
/// data), of the limits of its control groups (both versions) and of the machine's memory.
/// A limit that cannot be read counts as none.
std::uint64_t AvailableMemory(const MemorySources& sources = {});

/// The bytes that the process could allocate if nothing were in use: the smallest of the same
/// limits.
std::uint64_t MemoryLimit(const MemorySources& sources = {});

/// Fatal ("Not space available on heap") when the process cannot allocate this many more bytes, or
/// when no array can be so large. Call it before a large array is allocated: the system may grant
/// memory that it does not have, and end the process when the array is filled.
void RequireMemory(std::uint64_t bytes);

/// Fatal with the same text when so many bytes of address space, at least 1, cannot be mapped now.
/// Exact, unlike RequireMemory: for libraries that do not check their own allocations.
void RequireAddressSpace(std::size_t bytes);

}  // namespace morlen
