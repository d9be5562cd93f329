#pragma once

#include <nlohmann/json.hpp>
#include <span>
#include <vector>

#include "common/tables.h"

namespace morlen {

/// Numbers as {"type": name of a number, "data": base64 of little-endian values}; the type is
/// "i4", or "f4" where 32 bits keep six digits of every value and these are all it has, or "f8".
nlohmann::ordered_json Packed(std::span<const int> values);
nlohmann::ordered_json Packed(std::span<const double> values);

/// A table by columns. A column of words has their list and its values are places in it, from 0.
/// Empty cells are NaN among floating numbers, else the least integer.
nlohmann::ordered_json Packed(const tables::Table& table);

/// Base64 (RFC 4648) of bytes.
std::string Base64(std::span<const unsigned char> bytes);

}  // namespace morlen
