#pragma once

#include <cstddef>
#include <new>
#include <vector>

namespace morlen {

/// Asks the system for large pages for an array, where it has them: they need far fewer page
/// faults when the array is filled, and fewer address look-ups when it is read. The array must
/// begin at a multiple of kLargePage.
void AskForLargePages(void* array, std::size_t bytes);

inline constexpr std::size_t kLargePage = std::size_t{1} << 21;

/// Memory for arrays that may be much larger than the caches; small arrays use plain new.
template <class T>
struct LargeArrayAllocator
{
  using value_type = T;

  LargeArrayAllocator() = default;
  template <class U>
  explicit LargeArrayAllocator(const LargeArrayAllocator<U>&)
  {
  }

  static bool IsLarge(std::size_t count) { return count >= 2 * kLargePage / sizeof(T); }

  T* allocate(std::size_t count)
  {
    if (!IsLarge(count))
      return static_cast<T*>(::operator new(count * sizeof(T)));
    void* const array = ::operator new (count * sizeof(T), std::align_val_t{kLargePage});
    AskForLargePages(array, count * sizeof(T));
    return static_cast<T*>(array);
  }

  void deallocate(T* array, std::size_t count)
  {
    if (IsLarge(count))
      ::operator delete (array, std::align_val_t{kLargePage});
    else
      ::operator delete(array);
  }

  bool operator==(const LargeArrayAllocator&) const { return true; }
};

template <class T>
using LargeArray = std::vector<T, LargeArrayAllocator<T>>;

}  // namespace morlen
