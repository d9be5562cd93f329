#pragma once

#include <array>
#include <memory>
#include <ostream>
#include <string_view>

/// Formats result files fast: text, integers, and numbers exactly as printf's "%g"
/// gives them, gathered into blocks for a stream that the caller owns.
///
/// What was written reaches the stream by Flush or by the destructor.
class TextOut
{
public:
  explicit TextOut(std::ostream& target);
  TextOut(const TextOut&) = delete;
  TextOut& operator=(const TextOut&) = delete;
  ~TextOut() { Flush(); }

  TextOut& operator<<(std::string_view text);
  TextOut& operator<<(const char* text) { return *this << std::string_view(text); }
  TextOut& operator<<(char c);
  TextOut& operator<<(int number);
  TextOut& operator<<(double number);

  /// A number as the vectors' stream output writes a component: "  %13.6e".
  TextOut& Scientific(double number);

  void Flush();

private:
  static constexpr std::size_t kBlock = 1 << 16;
  static constexpr std::size_t kLongestNumber = 32;

  /// Room for the given number of characters, at most kBlock.
  char* Room(std::size_t characters);

  std::ostream& stream;
  std::unique_ptr<char[]> block;
  std::size_t used = 0;
};
