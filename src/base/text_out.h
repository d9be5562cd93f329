#pragma once

#include <cstring>
#include <memory>
#include <ostream>
#include <string_view>

#include "base/number_format.h"

namespace morlen {

/// Formats result files fast: text, integers, and numbers exactly as printf's "%g"
/// gives them, gathered into blocks for a stream that the caller owns.
///
/// The text reaches the stream by Flush, Ok or the destructor.
class TextOut
{
public:
  explicit TextOut(std::ostream& target);
  TextOut(const TextOut&) = delete;
  TextOut& operator=(const TextOut&) = delete;
  ~TextOut() { Flush(); }

  TextOut& operator<<(std::string_view text)
  {
    if (text.size() > Free())
      return WriteAcross(text);
    std::memcpy(next, text.data(), text.size());
    next += text.size();
    return *this;
  }
  TextOut& operator<<(const char* text) { return *this << std::string_view(text); }
  TextOut& operator<<(char c)
  {
    *Room(1) = c;
    ++next;
    return *this;
  }
  TextOut& operator<<(int number)
  {
    next = FormatInt(Room(kLongestNumber), number);
    return *this;
  }
  TextOut& operator<<(double number)
  {
    next = FormatGeneral(Room(kLongestNumber), number);
    return *this;
  }

  /// A number as the vectors' stream output writes a component: "  %13.6e".
  TextOut& Scientific(double number);

  void Flush();

  /// Flushes; true when the stream has accepted everything so far.
  bool Ok();

private:
  static constexpr std::size_t kBlock = 1 << 16;

  std::size_t Free() const { return static_cast<std::size_t>(block.get() + kBlock - next); }

  /// Room for the given number of characters, at most kBlock.
  char* Room(std::size_t characters)
  {
    if (characters > Free())
      EmptyBlock();
    return next;
  }

  /// Flush between two texts, where the run may end early. The destructor must not end it.
  void EmptyBlock();

  /// Writes text that does not fit into the rest of the block.
  TextOut& WriteAcross(std::string_view text);

  std::ostream& stream;
  std::unique_ptr<char[]> block;
  char* next;
};

}  // namespace morlen
