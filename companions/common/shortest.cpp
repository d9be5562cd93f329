#include "common/shortest.h"

#include <charconv>

namespace morlen {

namespace {

template <class Number>
void Append(std::string& text, Number number)
{
  char digits[32];
  text.append(digits, std::to_chars(digits, digits + sizeof digits, number).ptr);
}

}  // namespace

void AppendNumber(std::string& text, double number)
{
  Append(text, number);
}

void AppendNumber(std::string& text, int number)
{
  Append(text, number);
}

}  // namespace morlen
