#include "base/nearest_word.h"

#include <algorithm>
#include <cstddef>
#include <vector>

#include "base/digits.h"

namespace morlen {

namespace {

// The fewest changes that make b of a. Row by row over the beginnings of a and b; the two rows
// before the present one are kept.
std::size_t Changes(std::string_view a, std::string_view b)
{
  const auto same = [&](std::size_t i, std::size_t j) { return ToLower(a[i]) == ToLower(b[j]); };
  std::vector<std::size_t> older(b.size() + 1), old(b.size() + 1), row(b.size() + 1);
  for (std::size_t j = 0; j <= b.size(); ++j)
    row[j] = j;
  for (std::size_t i = 0; i < a.size(); ++i) {
    older.swap(old);
    old.swap(row);
    row[0] = i + 1;
    for (std::size_t j = 0; j < b.size(); ++j) {
      row[j + 1] = std::min({old[j] + (same(i, j) ? 0 : 1), old[j + 1] + 1, row[j] + 1});
      if (i > 0 && j > 0 && same(i, j - 1) && same(i - 1, j))
        row[j + 1] = std::min(row[j + 1], older[j - 1] + 1);
    }
  }
  return row[b.size()];
}

}  // namespace

std::string_view NearestWord(std::string_view word, std::span<const std::string_view> candidates)
{
  constexpr std::size_t kLongest = 60;  // no keyword is as long
  std::string_view nearest;
  std::size_t fewest = word.size() > kLongest ? 0 : word.size() / 3 + 1;
  for (const std::string_view candidate : candidates) {
    const std::size_t changes = fewest == 0 ? 0 : Changes(word, candidate);
    if (changes < fewest) {
      fewest = changes;
      nearest = candidate;
    }
  }
  return nearest;
}

}  // namespace morlen
