#include "base/object_pool.h"

#include <algorithm>

#include "base/large_array.h"

ObjectPool::ObjectPool(std::size_t objectSize) : size(objectSize)
{
  constexpr std::size_t kAlignment = alignof(Place);
  size = (size + kAlignment - 1) / kAlignment * kAlignment;
}

ObjectPool::~ObjectPool() = default;

void* ObjectPool::Take()
{
  if (!returned && next == end)
    AddSlab();
  ++taken;
  if (returned) {
    Place* const place = returned;
    returned = place->following;
    return place;
  }
  char* const place = next;
  next += size;
  return place;
}

void ObjectPool::Return(void* object)
{
  if (--taken == 0) {
    ReleaseSlabs();
    return;
  }
  returned = new (object) Place{returned};
}

void ObjectPool::AddSlab()
{
  constexpr std::size_t kFirst = std::size_t{1} << 12;
  constexpr std::size_t kLargest = kLargePage;
  slabBytes = std::clamp(4 * slabBytes, kFirst, kLargest);
  const std::size_t bytes = std::max(slabBytes, size);
  slabs.push_back(AllocateLarge(bytes));
  next = slabs.back().get();
  end = next + bytes / size * size;
}

void ObjectPool::ReleaseSlabs()
{
  slabs.clear();
  returned = nullptr;
  next = end = nullptr;
  slabBytes = 0;
}
