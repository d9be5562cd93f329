// The pool of builds with sanitizers, which watch each object by itself.

#include "base/object_pool.h"

namespace morlen {

ObjectPool::ObjectPool(std::size_t objectSize) : size(objectSize) {}

ObjectPool::~ObjectPool() = default;

// All shares stay empty, so that every place is acquired here.
void* ObjectPool::AcquireSlow(Share&)
{
  return ::operator new(size);
}

void ObjectPool::Release(Share&, void* object)
{
  ::operator delete(object);
}

}  // namespace morlen
