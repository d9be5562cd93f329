#pragma once

#include <iterator>
#include <memory>
#include <type_traits>

#include "numeric/voidplex.h"

namespace morlen {

// VoidPlex with types. Only this file casts its untyped pointers. A container
// is read back with the very type it was filled with (for a hierarchy, its base).

/// An object of a container and its number.
template <class T>
struct Numbered
{
  int number;
  T& object;
};

/// Loop over the objects of a container in increasing order of their numbers, each
/// given as Item: T& or Numbered<T>.
///
/// Loops over one container are independent of each other and of its look-ups.
/// During a loop places may be filled and emptied, but the container must not be cleared.
template <class T, class Item>
class PlexRange
{
public:
  class Iterator
  {
  public:
    explicit Iterator(const VoidPlex& container) : plex(&container), chunk(container.Head())
    {
      ++*this;
    }

    Iterator& operator++()
    {
      object = static_cast<T*>(plex->NextFrom(chunk, number));
      return *this;
    }

    Item operator*() const
    {
      if constexpr (std::is_reference_v<Item>)
        return *object;
      else
        return {number, *object};
    }

    bool operator==(std::default_sentinel_t) const { return object == nullptr; }

  private:
    const VoidPlex* plex;
    VoidChunk* chunk;
    int number = 0;
    T* object = nullptr;
  };

  explicit PlexRange(const VoidPlex& container) : plex(&container) {}
  Iterator begin() const { return Iterator(*plex); }
  std::default_sentinel_t end() const { return {}; }

private:
  const VoidPlex* plex;
};

/// for (Elem& elem : Each<Elem>(plex)) ...
template <class T>
class Each : public PlexRange<T, T&>
{
public:
  using PlexRange<T, T&>::PlexRange;
};

/// for (auto [number, node] : EachNumbered<Node>(plex)) ...
template <class T>
class EachNumbered : public PlexRange<T, Numbered<T>>
{
public:
  using PlexRange<T, Numbered<T>>::PlexRange;
};

/// The object with this number; null when there is none, whatever the number.
template <class T>
T* Find(const VoidPlex& plex, int number)
{
  return static_cast<T*>(plex.At(number));
}

/// Hands an object over to the container's owner. Fatal, and the object is deleted,
/// when the number is below 1 or taken.
template <class T>
T& Store(VoidPlex& plex, int number, std::unique_ptr<T> object)
{
  plex.set_at(number, object.get());
  return *object.release();
}

/// As Store, but the number may be taken: the object that had it is returned.
template <class T>
std::unique_ptr<T> Replace(VoidPlex& plex, int number, std::unique_ptr<T> object)
{
  std::unique_ptr<T> replaced(static_cast<T*>(plex.replace_at(number, object.get())));
  static_cast<void>(object.release());  // owned by the container
  return replaced;
}

/// Deletes the objects and clears the container.
template <class T>
void DeleteAll(VoidPlex& plex)
{
  for (T& object : Each<T>(plex))
    delete &object;
  plex.clear();
}

}  // namespace morlen
