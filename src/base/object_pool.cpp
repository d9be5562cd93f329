// A pool has slabs, which it cuts into runs of places. Each thread has a share: the run from which
// it serves itself, and the places that it has released, which it uses again first.
//
// A share counts the objects that its thread holds: acquired less released. At 0 or below, all its
// places go back to the pool, and the count is added to that of the pool. Without borrowers the
// pool's count is that of all objects, and at 0 every place of every slab is free.

#include "base/object_pool.h"

#include <algorithm>

#include "base/large_array.h"

namespace morlen {

namespace {

constexpr std::size_t kFirstSlab = std::size_t{1} << 12;
constexpr std::size_t kLargestSlab = kLargePage;
constexpr std::size_t kRun = std::size_t{1} << 12;  // bytes: locks are rare, and little is lost

}  // namespace

ObjectPool::ObjectPool(std::size_t objectSize) : size(objectSize), unused(slabs.end())
{
  constexpr std::size_t kAlignment = alignof(Run);
  size = std::max((size + kAlignment - 1) / kAlignment * kAlignment, sizeof(Run));
}

ObjectPool::~ObjectPool() = default;

// Takes the first run off a list and makes it the run in use.
void ObjectPool::UseFirst(Run*& list, Share& share)
{
  Run* const run = std::exchange(list, list->following);
  share.next = reinterpret_cast<char*>(run);
  share.end = run->end;
}

void* ObjectPool::AcquireSlow(Share& share)
{
  if (share.released) {
    UseFirst(share.released, share);
  } else {
    while (!Lend(share))
      AddSlab();
  }
  return Acquire(share);
}

void ObjectPool::Release(Share& share, void* object)
{
  share.released = new (object) Run{share.released, static_cast<char*>(object) + size};
  if (--share.held <= 0)
    TakeBack(share);
}

// Gives a share without places a run. False when the pool has none.
bool ObjectPool::Lend(Share& share)
{
  const std::lock_guard lock(busy);
  const bool isNew = !share.end;
  if (released) {
    UseFirst(released, share);
  } else {
    if (next == end) {
      if (unused == slabs.end())
        return false;
      next = unused->memory.get();
      end = next + unused->bytes / size * size;
      ++unused;
    }
    const std::size_t most = std::max(kRun / size, std::size_t{1}) * size;
    share.next = next;
    next += std::min(most, static_cast<std::size_t>(end - next));
    share.end = next;
  }
  borrowers += isNew ? 1 : 0;
  return true;
}

void ObjectPool::TakeBack(Share& share)
{
  const std::lock_guard lock(busy);
  alive += share.held;
  borrowers -= share.end ? 1 : 0;
  if (alive == 0 && borrowers == 0) {
    released = nullptr;
    next = end = nullptr;
    unused = slabs.begin();
  } else {
    if (share.next != share.end)
      share.released = new (share.next) Run{share.released, share.end};
    Run* last = share.released;
    while (last->following)
      last = last->following;
    last->following = released;
    released = share.released;
  }
  share = {};
}

// Allocates before it locks: a failed allocation may jump out of here.
void ObjectPool::AddSlab()
{
  std::size_t bytes = 0;
  {
    const std::lock_guard lock(busy);
    const std::size_t before = slabs.empty() ? 0 : slabs.back().bytes;
    bytes = std::max(std::clamp(4 * before, kFirstSlab, kLargestSlab), size);
  }
  std::list<Slab> added;
  added.push_back({AllocateLarge(bytes), bytes});
  const std::lock_guard lock(busy);
  if (unused == slabs.end())
    unused = added.begin();
  slabs.splice(slabs.end(), added);
}

}  // namespace morlen
