#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <span>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>
#include <vector>

namespace morlen::mpi {

using Bytes = std::vector<std::byte>;

/// Writes values one after another into a buffer. ByteReader reads them in the same order.
class ByteWriter
{
public:
  template <class T>
  void Put(const T& value)
  {
    static_assert(std::is_trivially_copyable_v<T>);
    Append(&value, sizeof value);
  }

  /// The count, then the values.
  template <class T>
  void PutAll(std::span<const T> values)
  {
    static_assert(std::is_trivially_copyable_v<T>);
    Put(static_cast<std::int64_t>(values.size()));
    Append(values.data(), values.size_bytes());
  }
  template <class T>
  void PutAll(const std::vector<T>& values)
  {
    PutAll(std::span<const T>(values));
  }
  void PutText(std::string_view text) { PutAll(std::span<const char>(text)); }

  Bytes Take() { return std::move(bytes); }

private:
  void Append(const void* data, std::size_t size)
  {
    const std::size_t before = bytes.size();
    bytes.resize(before + size);
    if (size > 0)
      std::memcpy(bytes.data() + before, data, size);
  }

  Bytes bytes;
};

/// Reads the values of a ByteWriter. The bytes are borrowed.
class ByteReader
{
public:
  explicit ByteReader(std::span<const std::byte> bytes_) : bytes(bytes_) {}

  template <class T>
  T Get()
  {
    T value;
    Copy(&value, sizeof value);
    return value;
  }
  template <class T>
  std::vector<T> GetAll()
  {
    std::vector<T> values(static_cast<std::size_t>(Get<std::int64_t>()));
    Copy(values.data(), values.size() * sizeof(T));
    return values;
  }
  std::string GetText()
  {
    const std::vector<char> text = GetAll<char>();
    return {text.begin(), text.end()};
  }

private:
  void Copy(void* to, std::size_t size)
  {
    if (size > 0)
      std::memcpy(to, bytes.data(), size);
    bytes = bytes.subspan(size);
  }

  std::span<const std::byte> bytes;
};

}  // namespace morlen::mpi
