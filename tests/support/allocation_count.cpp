#include "support/allocation_count.h"

#include <cstdlib>
#include <new>

namespace {

thread_local long count = 0;

}  // namespace

namespace morlen {

long AllocationCount()
{
  return count;
}

}  // namespace morlen

// The other forms of both operators call these.
#ifndef __SANITIZE_ADDRESS__

void* operator new(std::size_t size)
{
  ++count;
  if (void* const place = std::malloc(size == 0 ? 1 : size))
    return place;
  throw std::bad_alloc();
}

void* operator new(std::size_t size, std::align_val_t alignment)
{
  ++count;
  const auto unit = static_cast<std::size_t>(alignment);
  if (void* const place = std::aligned_alloc(unit, (size + unit - 1) / unit * unit))
    return place;
  throw std::bad_alloc();
}

void operator delete(void* place) noexcept
{
  std::free(place);
}

void operator delete(void* place, std::size_t) noexcept
{
  std::free(place);
}

void operator delete(void* place, std::align_val_t) noexcept
{
  std::free(place);
}

void operator delete(void* place, std::size_t, std::align_val_t) noexcept
{
  std::free(place);
}

#endif
