#include "rows.h"

#include <charconv>

#include "base/interruption.h"

namespace morlen::python {

namespace {

// The longest number has 24 characters: -2.2250738585072014e-308.
constexpr std::size_t kLongest = 32;

template <class T>
void Append(std::string& text, std::span<const T> numbers)
{
  char digits[kLongest];
  for (const T number : numbers) {
    digits[0] = ' ';
    const bool first = text.empty() || text.back() == '\n';
    char* const end = std::to_chars(digits + 1, digits + kLongest, number).ptr;
    text.append(digits + (first ? 1 : 0), end);
  }
}

}  // namespace

std::string Rows(std::span<const std::int64_t> whole, const std::string& word,
                 std::span<const double> real, std::size_t rows)
{
  std::string text;
  for (std::size_t i = 0; i < rows; ++i) {
    CheckInterruption();
    const std::size_t ints = whole.size() / rows;
    const std::size_t reals = real.size() / rows;
    Append(text, whole.subspan(i * ints, ints));
    if (!word.empty())
      text += ' ' + word;
    Append(text, real.subspan(i * reals, reals));
    text += '\n';
  }
  return text;
}

}  // namespace morlen::python
