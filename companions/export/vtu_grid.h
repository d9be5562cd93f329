#pragma once

#include <cstdint>
#include <functional>
#include <pugixml.hpp>
#include <span>
#include <vector>

#include "common/model_data.h"
#include "export/shell_corners.h"
#include "export/vtk_array.h"

namespace morlen {

/// A grid of VTK with the elements of a model: its shape, and arrays on its points and cells.
///
/// The points are the nodes, then the division points of each beam, because forces jump from beam
/// to beam, then the copies of nodes (ShellCorners). The cells are the elements in the order of the
/// model, a beam as a polyline, then a vertex for every node that no shell or solid has.
class VtuGrid
{
public:
  using Values = std::span<const double>;
  using Numbers = std::span<const std::int32_t>;
  /// The values of the item with a position, at least as many as the array has components.
  using ValuesAt = std::function<Values(int)>;

  /// The values of an array of points. Without a function for copies these repeat their nodes.
  struct PointValues
  {
    ValuesAt ofNode;
    ValuesAt ofBeamPoint;
    ValuesAt ofCopy = {};
  };

  /// Adds the points and cells to the grid's element of the file.
  VtuGrid(const model::Model& model, const ShellCorners& corners, pugi::xml_node grid);

  void AddPointArray(const ArrayName& name, int components, const PointValues& values);
  void AddPointNumbers(const ArrayName& name, int components,
                       const std::function<Numbers(int)>& ofNode);
  /// Vertices get `ofVertex`.
  void AddCellArray(const ArrayName& name, int components, const ValuesAt& ofElement,
                    Values ofVertex);
  void AddCellNumbers(const ArrayName& name,
                      const std::function<int(const model::Element&)>& ofElement);

  /// True for the nodes of shells and solids.
  bool IsCovered(int node) const { return covered[node]; }

private:
  void AddPoints();
  void AddCells();

  const model::Model& model;
  const ShellCorners& corners;
  std::vector<bool> covered;  ///< by node
  std::vector<int> vertices;  ///< nodes that no shell or solid has
  pugi::xml_node piece, pointData, cellData;
};

/// Functions for values that an item does not have: NaN for results, constants and loads of
/// elements, so that no colour shows them; 0 for forces at nodes, which then may be summed, and for
/// vectors, which then have no arrow.
VtuGrid::Values NotANumber();
VtuGrid::Values Zeros();
VtuGrid::Values NoValue(int item);
VtuGrid::Values NoForce(int item);

}  // namespace morlen
