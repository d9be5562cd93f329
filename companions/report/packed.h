#pragma once

#include <nlohmann/json.hpp>
#include <span>
#include <vector>

#include "common/tables.h"

namespace morlen {

/// Numbers as {"type": name of a number, "data": base64 of little-endian values}. The type is "i4"
/// for integers, "f4" when every value has at most six digits and fits 32 bits, else "f8".
nlohmann::ordered_json Packed(std::span<const int> values);
nlohmann::ordered_json Packed(std::span<const double> values);

/// The same without any loss: "f4" only when every value is one of 32 bits.
nlohmann::ordered_json PackedExactly(std::span<const double> values);

/// A table by columns. The values of a column of words are positions in its list "words", from 0.
/// An empty cell is NaN in a column of floating numbers, else the least integer.
nlohmann::ordered_json Packed(const tables::Table& table);

/// Base64 (RFC 4648) of bytes.
std::string Base64(std::span<const unsigned char> bytes);

}  // namespace morlen
