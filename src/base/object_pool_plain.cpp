// The pool of builds with sanitizers, which watch each object by itself.

#include "base/object_pool.h"

namespace morlen {

ObjectPool::ObjectPool(std::size_t objectSize) : size(objectSize) {}

ObjectPool::~ObjectPool() = default;

void* ObjectPool::TakeOther()
{
  return ::operator new(size);
}

void ObjectPool::Return(void* object)
{
  ::operator delete(object);
}

}  // namespace morlen
