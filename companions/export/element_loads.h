#pragma once

#include <string>
#include <vector>

#include "common/model_data.h"
#include "common/tables.h"

namespace morlen {

/// The loads of one sort on all elements.
struct ElementLoadSum
{
  std::string name;
  std::string unit;
  model::Kind kind;          ///< of the elements that can have it
  int components;            ///< 3: global axes; 1: the first of each value
  std::vector<Vec3> values;  ///< by the position of the element; 0 without a load
};

/// The loads that the problem file gives to elements, without self-weight: several on one element
/// are added, and all are along global axes. A load per length or area of a projection is converted
/// to the length or area of the element. On curved faces the local axes are those of the plane
/// through the corners. Sorts that the model does not have are left out.
std::vector<ElementLoadSum> SumsOfElementLoads(const model::Model& model,
                                               const tables::UnitTexts& units);

}  // namespace morlen
