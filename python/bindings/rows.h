#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>

namespace morlen::python {

/// Records of a problem file: in each row first its whole numbers, then a word, which may be empty,
/// then its real numbers with the fewest digits that give the same number again. Both lists are row
/// by row.
std::string Rows(std::span<const std::int64_t> whole, const std::string& word,
                 std::span<const double> real, std::size_t rows);

}  // namespace morlen::python
