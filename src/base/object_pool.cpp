#include "base/object_pool.h"

#include <algorithm>

#include "base/large_array.h"

namespace morlen {

ObjectPool::ObjectPool(std::size_t objectSize) : size(objectSize)
{
  constexpr std::size_t kAlignment = alignof(Place);
  size = (size + kAlignment - 1) / kAlignment * kAlignment;
}

ObjectPool::~ObjectPool() = default;

// A place given back, or the first of another slab.
void* ObjectPool::TakeOther()
{
  if (returned) {
    ++taken;
    return std::exchange(returned, returned->following);
  }
  if (used == slabs.size())
    AddSlab();
  const Slab& slab = slabs[used++];
  next = slab.memory.get();
  end = next + slab.bytes / size * size;
  return Take();
}

void ObjectPool::Return(void* object)
{
  if (--taken == 0)
    StartAnew();
  else
    returned = new (object) Place{returned};
}

void ObjectPool::AddSlab()
{
  constexpr std::size_t kFirst = std::size_t{1} << 12;
  constexpr std::size_t kLargest = kLargePage;
  const std::size_t before = slabs.empty() ? 0 : slabs.back().bytes;
  const std::size_t bytes = std::max(std::clamp(4 * before, kFirst, kLargest), size);
  slabs.push_back({AllocateLarge(bytes), bytes});
}

void ObjectPool::StartAnew()
{
  returned = nullptr;
  next = end = nullptr;
  used = 0;
}

}  // namespace morlen
