#include "report/packed.h"

#include <algorithm>
#include <bit>
#include <charconv>
#include <cmath>
#include <limits>
#include <string>
#include <type_traits>
#include <utility>

namespace morlen {

using Json = nlohmann::ordered_json;

static_assert(std::endian::native == std::endian::little, "the page reads little-endian values");

namespace {

constexpr int kEmpty = std::numeric_limits<int>::min();
constexpr int kDigits = 6;

template <class Number>
Json Array(const char* type, std::span<const Number> values)
{
  const auto* bytes = reinterpret_cast<const unsigned char*>(values.data());
  return {{"type", type}, {"data", Base64({bytes, values.size_bytes()})}};
}

bool IsShort(double value)
{
  if (value == 0.0 || std::isnan(value))
    return true;
  const double size = std::fabs(value);
  if (size < std::numeric_limits<float>::min() || size > std::numeric_limits<float>::max())
    return false;
  char text[32];
  const std::to_chars_result end =
      std::to_chars(text, text + sizeof text, value, std::chars_format::general, kDigits);
  double again = 0.0;
  std::from_chars(text, end.ptr, again);
  return again == value;
}

struct CellToNumber
{
  double operator()(std::monostate) const { return std::nan(""); }
  double operator()(int number) const { return number; }
  double operator()(double number) const { return number; }
  double operator()(const char*) const { return std::nan(""); }
};

// The kind of the cells of a column.
enum class Content : int
{
  Integers,
  Numbers,
  Words
};

Content ContentOf(const tables::Table& table, std::size_t column)
{
  for (std::size_t i = column; i < table.cells.size(); i += table.columns.size()) {
    if (std::holds_alternative<double>(table.cells[i]))
      return Content::Numbers;
    if (std::holds_alternative<const char*>(table.cells[i]))
      return Content::Words;
  }
  return Content::Integers;
}

Json Integers(const tables::Table& table, std::size_t column)
{
  std::vector<int> values;
  for (std::size_t i = column; i < table.cells.size(); i += table.columns.size()) {
    const int* number = std::get_if<int>(&table.cells[i]);
    values.push_back(number ? *number : kEmpty);
  }
  return Packed(values);
}

Json Numbers(const tables::Table& table, std::size_t column)
{
  std::vector<double> values;
  for (std::size_t i = column; i < table.cells.size(); i += table.columns.size())
    values.push_back(std::visit(CellToNumber{}, table.cells[i]));
  return Packed(values);
}

Json Words(const tables::Table& table, std::size_t column)
{
  std::vector<std::string> words;
  std::vector<int> places;
  for (std::size_t i = column; i < table.cells.size(); i += table.columns.size()) {
    const char* const* word = std::get_if<const char*>(&table.cells[i]);
    if (!word) {
      places.push_back(kEmpty);
      continue;
    }
    const auto known = std::find(words.begin(), words.end(), *word);
    places.push_back(static_cast<int>(known - words.begin()));
    if (known == words.end())
      words.emplace_back(*word);
  }
  Json packed = Packed(places);
  packed["words"] = words;
  return packed;
}

}  // namespace

std::string Base64(std::span<const unsigned char> bytes)
{
  constexpr char kSigns[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
  std::string text;
  text.reserve((bytes.size() + 2) / 3 * 4);
  for (std::size_t i = 0; i < bytes.size(); i += 3) {
    const std::size_t count = std::min<std::size_t>(3, bytes.size() - i);
    unsigned int bits = 0;
    for (std::size_t k = 0; k < 3; ++k)
      bits = bits << 8 | (k < count ? bytes[i + k] : 0u);
    for (std::size_t k = 0; k < 4; ++k)
      text += k <= count ? kSigns[bits >> (18 - 6 * k) & 63u] : '=';
  }
  return text;
}

Json Packed(std::span<const int> values)
{
  return Array("i4", values);
}

Json Packed(std::span<const double> values)
{
  if (!std::all_of(values.begin(), values.end(), IsShort))
    return Array("f8", values);
  const std::vector<float> small(values.begin(), values.end());
  return Array("f4", std::span<const float>(small));
}

Json PackedExactly(std::span<const double> values)
{
  const std::vector<float> small(values.begin(), values.end());
  if (!std::equal(values.begin(), values.end(), small.begin(),
                  [](double value, float other) { return value == static_cast<double>(other); }))
    return Array("f8", values);
  return Array("f4", std::span<const float>(small));
}

Json Packed(const tables::Table& table)
{
  Json columns = Json::array();
  for (std::size_t k = 0; k < table.columns.size(); ++k) {
    const Content content = ContentOf(table, k);
    Json column = content == Content::Integers ? Integers(table, k)
                  : content == Content::Words  ? Words(table, k)
                                               : Numbers(table, k);
    column["name"] = table.columns[k].name;
    column["unit"] = table.columns[k].unit;
    columns.push_back(std::move(column));
  }
  return {{"name", table.name}, {"rows", table.Rows()}, {"columns", std::move(columns)}};
}

}  // namespace morlen
