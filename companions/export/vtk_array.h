#pragma once

#include <cstdint>
#include <pugixml.hpp>
#include <span>
#include <string>
#include <vector>

namespace morlen {

struct ArrayName
{
  std::string name;
  std::string unit = {};                     ///< in brackets after the name; empty for none
  std::vector<const char*> components = {};  ///< their names; empty for x, y, z or a single one
};

/// The root of a VTK file (XML) of this type, for arrays by AddArray.
pugi::xml_node AddVtkRoot(pugi::xml_document& document, const char* type);

/// Adds an array to an element of a VTK file. The numbers are in base64, as they are in memory:
/// text has no form of NaN that all readers take.
void AddArray(pugi::xml_node parent, const ArrayName& name, int components,
              std::span<const double> values);
void AddArray(pugi::xml_node parent, const ArrayName& name, int components,
              std::span<const std::int32_t> values);
void AddArray(pugi::xml_node parent, const ArrayName& name, int components,
              std::span<const std::uint8_t> values);

}  // namespace morlen
