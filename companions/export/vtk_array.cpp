#include "export/vtk_array.h"

#include <algorithm>
#include <bit>
#include <cstring>

namespace morlen {

namespace {

// Base64 (RFC 4648): three bytes are four characters, and "=" fills the last four.
std::string Base64(const std::string& bytes)
{
  constexpr char kDigits[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
  const auto byte = [&](std::size_t i) {
    return i < bytes.size() ? static_cast<unsigned char>(bytes[i]) : 0u;
  };
  std::string text((bytes.size() + 2) / 3 * 4, '=');
  char* to = text.data();
  for (std::size_t i = 0; i < bytes.size(); i += 3, to += 4) {
    const unsigned group = byte(i) << 16 | byte(i + 1) << 8 | byte(i + 2);
    const std::size_t digits = std::min<std::size_t>(bytes.size() - i, 3) + 1;
    for (std::size_t k = 0; k < digits; ++k)
      to[k] = kDigits[group >> (18 - 6 * k) & 63];
  }
  return text;
}

// The count of the bytes, then the numbers.
template <class Number>
std::string Encoded(std::span<const Number> values)
{
  const std::uint64_t size = values.size_bytes();
  std::string bytes(sizeof size + size, '\0');
  std::memcpy(bytes.data(), &size, sizeof size);
  if (size > 0)
    std::memcpy(bytes.data() + sizeof size, values.data(), size);
  return Base64(bytes);
}

template <class Number>
void Add(pugi::xml_node parent, const char* type, const ArrayName& name, int components,
         std::span<const Number> values)
{
  const std::string fullName = name.unit.empty() ? name.name : name.name + " [" + name.unit + "]";
  pugi::xml_node array = parent.append_child("DataArray");
  array.append_attribute("type") = type;
  array.append_attribute("Name") = fullName.c_str();
  array.append_attribute("NumberOfComponents") = components;
  for (std::size_t k = 0; k < name.components.size(); ++k)
    array.append_attribute(("ComponentName" + std::to_string(k)).c_str()) = name.components[k];
  array.append_attribute("format") = "binary";
  array.text() = Encoded(values).c_str();
}

}  // namespace

pugi::xml_node AddVtkRoot(pugi::xml_document& document, const char* type)
{
  constexpr bool kLittle = std::endian::native == std::endian::little;
  pugi::xml_node root = document.append_child("VTKFile");
  root.append_attribute("type") = type;
  root.append_attribute("version") = "1.0";
  root.append_attribute("byte_order") = kLittle ? "LittleEndian" : "BigEndian";
  root.append_attribute("header_type") = "UInt64";
  return root;
}

void AddArray(pugi::xml_node parent, const ArrayName& name, int components,
              std::span<const double> values)
{
  Add(parent, "Float64", name, components, values);
}

void AddArray(pugi::xml_node parent, const ArrayName& name, int components,
              std::span<const std::int32_t> values)
{
  Add(parent, "Int32", name, components, values);
}

void AddArray(pugi::xml_node parent, const ArrayName& name, int components,
              std::span<const std::uint8_t> values)
{
  Add(parent, "UInt8", name, components, values);
}

}  // namespace morlen
