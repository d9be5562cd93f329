#pragma once

#include <cstddef>
#include <cstring>
#include <span>
#include <string>
#include <type_traits>
#include <vector>

namespace morlen {

/// Ends the run because of bytes that are not those of a BytePutter.
[[noreturn]] void RefuseBytes();

/// Appends values to bytes: plain values, texts, and lists of plain values.
class BytePutter
{
public:
  explicit BytePutter(std::vector<char>& target) : bytes(target) {}

  template <class T>
  void operator()(const T& value)
  {
    static_assert(std::is_trivially_copyable_v<T>);
    Append(&value, sizeof value);
  }
  void operator()(const std::string& text) { PutList(text.data(), text.size()); }
  template <class T>
  void operator()(const std::vector<T>& values)
  {
    PutList(values.data(), values.size());
  }
  /// The count and the values.
  template <class T>
  void PutList(const T* first, std::size_t count)
  {
    static_assert(std::is_trivially_copyable_v<T>);
    (*this)(count);
    Append(first, count * sizeof(T));
  }

private:
  void Append(const void* from, std::size_t size);

  std::vector<char>& bytes;
};

/// Takes values from the bytes of a BytePutter in the same order. Fatal when these end too early.
class ByteGetter
{
public:
  explicit ByteGetter(std::span<const char> bytes) : rest(bytes) {}

  template <class T>
  void operator()(T& value)
  {
    static_assert(std::is_trivially_copyable_v<T>);
    CopyTo(&value, sizeof value);
  }
  void operator()(std::string& text) { GetList(text); }
  template <class T>
  void operator()(std::vector<T>& values)
  {
    static_assert(std::is_trivially_copyable_v<T>);
    GetList(values);
  }
  template <class T>
  T Get()
  {
    T value{};
    (*this)(value);
    return value;
  }
  /// The count of a list whose values have so many bytes.
  std::size_t GetCount(std::size_t bytesOfValue)
  {
    const auto count = Get<std::size_t>();
    if (count > rest.size() / bytesOfValue)
      RefuseBytes();
    return count;
  }
  void CopyTo(void* to, std::size_t size)
  {
    if (size > rest.size())
      RefuseBytes();
    if (size > 0)
      std::memcpy(to, rest.data(), size);
    rest = rest.subspan(size);
  }
  bool AtEnd() const { return rest.empty(); }

private:
  template <class List>
  void GetList(List& list)
  {
    constexpr std::size_t kSize = sizeof(typename List::value_type);
    list.resize(GetCount(kSize));
    CopyTo(list.data(), list.size() * kSize);
  }

  std::span<const char> rest;
};

}  // namespace morlen
