#pragma once

#include <unistd.h>

#include <utility>

namespace morlen {

/// An open file of the system, closed by the destructor. -1 for none.
class Descriptor
{
public:
  explicit Descriptor(int descriptor = -1) : number(descriptor) {}
  Descriptor(Descriptor&& other) noexcept : number(std::exchange(other.number, -1)) {}
  Descriptor& operator=(Descriptor&& other) noexcept
  {
    std::swap(number, other.number);
    return *this;
  }
  ~Descriptor()
  {
    if (number >= 0)
      close(number);
  }

  int Number() const { return number; }
  explicit operator bool() const { return number >= 0; }

private:
  int number;
};

}  // namespace morlen
