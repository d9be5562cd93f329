#pragma once

#include <cstddef>
#include <memory>
#include <new>

namespace morlen {

/// The deleter of LargeBlock.
struct ReleaseLarge
{
  std::align_val_t alignment{};
  void operator()(char* memory) const { ::operator delete[](memory, alignment); }
};

/// Memory without a type, aligned for any type. From 2 MB on it is in pages of that size, where
/// the system has them: it provides these many times faster than the same amount in small pages,
/// and access to them is faster.
using LargeBlock = std::unique_ptr<char[], ReleaseLarge>;

/// Memory that is not initialised. Fatal when there is none.
LargeBlock AllocateLarge(std::size_t bytes);

}  // namespace morlen
