#pragma once

#include <cstddef>
#include <utility>
#include <vector>

#include "base/large_memory.h"

namespace morlen {

/// Places of one size, cut from slabs that grow with their number. Places given back are
/// used again. With the last of them the pool begins anew, in the slabs that it has: memory that
/// the system hands out first has to be cleared, which takes as long as filling it. Builds with
/// sanitizers have object_pool_plain.cpp instead, which leaves each place to new and delete.
///
/// Pools are static: an object that takes its place from one must not be.
class ObjectPool
{
public:
  /// The size is a multiple of the objects' alignment, which is at most what new gives by itself.
  explicit ObjectPool(std::size_t objectSize);
  ObjectPool(const ObjectPool&) = delete;
  ObjectPool& operator=(const ObjectPool&) = delete;
  ~ObjectPool();

  /// Fatal when there is no memory.
  void* Take()
  {
    if (next == end || returned)
      return TakeOther();
    ++taken;
    return std::exchange(next, next + size);
  }
  void Return(void* object);

private:
  /// What stands in a place given back.
  struct Place
  {
    Place* following;
  };

  struct Slab
  {
    LargeBlock memory;
    std::size_t bytes;
  };

  void* TakeOther();
  void AddSlab();
  void StartAnew();

  std::size_t size;
  std::size_t taken = 0;
  Place* returned = nullptr;
  char* next = nullptr;  ///< places of the slab used last that are free since then: next to end
  char* end = nullptr;
  std::size_t used = 0;  ///< slabs that places were taken from, the first of all
  std::vector<Slab> slabs;
};

/// Base class of a class T whose objects are many: its new and delete take their places from
/// a pool. Classes derived from T take theirs elsewhere.
template <class T>
class Pooled
{
public:
  static void* operator new(std::size_t size)
  {
    return size == sizeof(T) ? Pool().Take() : ::operator new(size);
  }
  static void operator delete(void* object, std::size_t size)
  {
    if (size == sizeof(T))
      Pool().Return(object);
    else
      ::operator delete(object);
  }

private:
  static ObjectPool& Pool()
  {
    static_assert(alignof(T) <= __STDCPP_DEFAULT_NEW_ALIGNMENT__);
    static ObjectPool pool(sizeof(T));
    return pool;
  }
};

}  // namespace morlen
