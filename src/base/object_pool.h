#pragma once

#include <cstddef>
#include <vector>

#include "base/large_memory.h"

/// Places of one size, cut from slabs that grow with their number. Places given back are
/// used again; with the last of them all slabs are released. Builds with sanitizers have
/// object_pool_plain.cpp instead, which leaves each place to new and delete.
class ObjectPool
{
public:
  /// The size is a multiple of the objects' alignment, which is at most what new gives by itself.
  explicit ObjectPool(std::size_t objectSize);
  ObjectPool(const ObjectPool&) = delete;
  ObjectPool& operator=(const ObjectPool&) = delete;
  ~ObjectPool();

  /// Fatal when there is no memory.
  void* Take();
  void Return(void* object);

private:
  /// What stands in a place given back.
  struct Place
  {
    Place* following;
  };

  void AddSlab();
  void ReleaseSlabs();

  std::size_t size;
  std::size_t taken = 0;
  Place* returned = nullptr;
  char* next = nullptr;  ///< places of the last slab not yet used: next to end
  char* end = nullptr;
  std::size_t slabBytes = 0;  ///< of the last slab
  std::vector<LargeBlock> slabs;
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
