#pragma once

#include <cstddef>
#include <list>
#include <mutex>
#include <utility>

#include "base/large_memory.h"

namespace morlen {

/// Places of one size for the objects of a class, in all threads.
///
/// A thread borrows a run of places at a time and serves itself from it without a lock; an object
/// may be released by another thread than the one that acquired its place. Released places are
/// used again. When the last object is released, the pool resets but keeps its slabs: fresh pages
/// would have to be zeroed again.
///
/// Builds with sanitizers have object_pool_plain.cpp instead, which leaves each place to new and
/// delete. Pools are static: an object that takes its place from one must not be.
class ObjectPool
{
  /// Free places in a row, written into the first of them.
  struct Run
  {
    Run* following;
    char* end;
  };

public:
  /// The free places of one thread. It has no destructor, because to register one for the end of
  /// a thread would allocate. When a thread ends before its objects are released, at most one run
  /// and the places that it released stay unused.
  struct Share
  {
    char* next = nullptr;  ///< the run in use: free places from next to end; null before the first
    char* end = nullptr;
    Run* released = nullptr;  ///< free places that this thread has released
    std::ptrdiff_t held = 0;  ///< places acquired less places released
  };

  /// The size is a multiple of the objects' alignment, which is at most that of plain new.
  explicit ObjectPool(std::size_t objectSize);
  ObjectPool(const ObjectPool&) = delete;
  ObjectPool& operator=(const ObjectPool&) = delete;
  ~ObjectPool();

  /// The share is that of the calling thread. Fatal when there is no memory.
  void* Acquire(Share& share)
  {
    if (share.next == share.end)
      return AcquireSlow(share);
    ++share.held;
    return std::exchange(share.next, share.next + size);
  }
  void Release(Share& share, void* object);

private:
  struct Slab
  {
    LargeBlock memory;
    std::size_t bytes;
  };

  static void UseFirst(Run*& list, Share& share);
  void* AcquireSlow(Share& share);
  bool Lend(Share& share);
  void TakeBack(Share& share);
  void AddSlab();

  std::size_t size;
  std::mutex busy;           ///< guards all below
  std::ptrdiff_t alive = 0;  ///< objects, less those that the shares count
  int borrowers = 0;         ///< shares with places
  Run* released = nullptr;   ///< free places that came back
  char* next = nullptr;      ///< free places of the slab used last: next to end
  char* end = nullptr;
  std::list<Slab> slabs;
  std::list<Slab>::iterator unused;  ///< the first slab that no place was cut from
};

/// The pool for objects of type T.
template <class T>
class StaticPool
{
public:
  static void* Acquire() { return Pool().Acquire(share); }
  static void Release(void* object) { Pool().Release(share, object); }

private:
  static ObjectPool& Pool()
  {
    static_assert(alignof(T) <= __STDCPP_DEFAULT_NEW_ALIGNMENT__);
    static ObjectPool pool(sizeof(T));
    return pool;
  }

  static inline constinit thread_local ObjectPool::Share share{};
};

/// Base class of a class T whose objects are many: its new and delete take their places from
/// a pool. Classes derived from T take theirs elsewhere.
template <class T>
class Pooled
{
public:
  static void* operator new(std::size_t size)
  {
    return size == sizeof(T) ? StaticPool<T>::Acquire() : ::operator new(size);
  }
  static void operator delete(void* object, std::size_t size)
  {
    if (size == sizeof(T))
      StaticPool<T>::Release(object);
    else
      ::operator delete(object);
  }
};

}  // namespace morlen
