#include "base/text_out.h"

#include "base/interruption.h"

namespace morlen {

TextOut::TextOut(std::ostream& target)
    : stream(target), block(std::make_unique_for_overwrite<char[]>(kBlock)), next(block.get())
{
}

void TextOut::EmptyBlock()
{
  CheckInterruption();
  Flush();
}

TextOut& TextOut::WriteAcross(std::string_view text)
{
  EmptyBlock();
  if (text.size() <= kBlock)
    return *this << text;
  stream.write(text.data(), static_cast<std::streamsize>(text.size()));
  return *this;
}

TextOut& TextOut::Scientific(double number)
{
  constexpr std::size_t kWidth = 13;
  char digits[kLongestNumber];
  const auto length = static_cast<std::size_t>(FormatScientific(digits, number) - digits);
  *this << "  ";
  for (std::size_t i = length; i < kWidth; ++i)
    *this << ' ';
  return *this << std::string_view(digits, length);
}

void TextOut::Flush()
{
  stream.write(block.get(), next - block.get());
  next = block.get();
}

bool TextOut::Ok()
{
  Flush();
  return static_cast<bool>(stream.flush());
}

}  // namespace morlen
