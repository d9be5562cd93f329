#include "base/text_out.h"

#include <charconv>
#include <cstring>

TextOut::TextOut(std::ostream& target)
    : stream(target), block(std::make_unique_for_overwrite<char[]>(kBlock))
{
}

char* TextOut::Room(std::size_t characters)
{
  if (used + characters > kBlock)
    Flush();
  return block.get() + used;
}

TextOut& TextOut::operator<<(std::string_view text)
{
  if (text.size() > kBlock) {
    Flush();
    stream.write(text.data(), static_cast<std::streamsize>(text.size()));
    return *this;
  }
  std::memcpy(Room(text.size()), text.data(), text.size());
  used += text.size();
  return *this;
}

TextOut& TextOut::operator<<(char c)
{
  *Room(1) = c;
  ++used;
  return *this;
}

TextOut& TextOut::operator<<(int number)
{
  char* start = Room(kLongestNumber);
  used +=
      static_cast<std::size_t>(std::to_chars(start, start + kLongestNumber, number).ptr - start);
  return *this;
}

TextOut& TextOut::operator<<(double number)
{
  char* start = Room(kLongestNumber);
  const auto result =
      std::to_chars(start, start + kLongestNumber, number, std::chars_format::general, 6);
  used += static_cast<std::size_t>(result.ptr - start);
  return *this;
}

TextOut& TextOut::Scientific(double number)
{
  constexpr std::size_t kWidth = 13;
  char digits[kLongestNumber];
  const auto result =
      std::to_chars(digits, digits + kLongestNumber, number, std::chars_format::scientific, 6);
  const std::size_t length = static_cast<std::size_t>(result.ptr - digits);
  *this << "  ";
  for (std::size_t i = length; i < kWidth; ++i)
    *this << ' ';
  return *this << std::string_view(digits, length);
}

void TextOut::Flush()
{
  stream.write(block.get(), static_cast<std::streamsize>(used));
  used = 0;
}
