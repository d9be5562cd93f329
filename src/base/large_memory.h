#pragma once

#include <cstddef>
#include <memory>
#include <new>

namespace morlen {

/// Memory of a LargeBlock on its way back.
struct ReleaseLarge
{
  std::align_val_t alignment{};
  void operator()(char* memory) const { ::operator delete[](memory, alignment); }
};

/// Memory without a type, aligned for any; from 2 MB on in pages of that size where the
/// system has them: it hands these out many times faster than the same in small pages, and
/// finds places in them faster.
using LargeBlock = std::unique_ptr<char[], ReleaseLarge>;

/// Not initialised. Fatal when there is no memory.
LargeBlock AllocateLarge(std::size_t bytes);

}  // namespace morlen
