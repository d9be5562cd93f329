#include "base/object_pool.h"

#include <algorithm>

ObjectPool::ObjectPool(std::size_t objectSize) : size(std::max(objectSize, sizeof(Place)))
{
  constexpr std::size_t kAlignment = __STDCPP_DEFAULT_NEW_ALIGNMENT__;
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
  constexpr std::size_t kFirstPlaces = 64;
  constexpr std::size_t kLargest = std::size_t{1} << 21;
  slabPlaces = std::clamp(8 * slabPlaces, kFirstPlaces, std::max(kLargest / size, kFirstPlaces));
  // The largest are whole pages.
  const bool whole = slabPlaces == kLargest / size;
  const std::size_t bytes = whole ? std::max(kLargest, slabPlaces * size) : slabPlaces * size;
  slabs.push_back(AllocateLarge(bytes));
  next = slabs.back().get();
  end = next + slabPlaces * size;
}

void ObjectPool::ReleaseSlabs()
{
  slabs.clear();
  returned = nullptr;
  next = end = nullptr;
  slabPlaces = 0;
}
