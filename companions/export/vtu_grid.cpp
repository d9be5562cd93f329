#include "export/vtu_grid.h"

#include <array>
#include <limits>

namespace morlen {

namespace {

constexpr std::size_t kMostComponents = 9;

constexpr std::array<double, kMostComponents> Filled(double value)
{
  std::array<double, kMostComponents> values{};
  values.fill(value);
  return values;
}

constexpr std::array<double, kMostComponents> kZeros = Filled(0.0);
constexpr std::array<double, kMostComponents> kNans =
    Filled(std::numeric_limits<double>::quiet_NaN());

// Numbers of the kinds of cells in a VTK file.
enum class CellType : std::uint8_t
{
  Vertex = 1,
  PolyLine = 4,
  Triangle = 5,
  Tetra = 10,
  QuadraticTriangle = 22,
  QuadraticTetra = 24
};

CellType TypeOf(const model::Element& element)
{
  switch (element.kind) {
    case model::Kind::Beam:
      return CellType::PolyLine;
    case model::Kind::Shell:
      return element.nodeCount == 3 ? CellType::Triangle : CellType::QuadraticTriangle;
    default:
      return element.nodeCount == 4 ? CellType::Tetra : CellType::QuadraticTetra;
  }
}

template <class Number>
void Append(std::vector<Number>& list, std::span<const Number> values, int components)
{
  list.insert(list.end(), values.begin(), values.begin() + components);
}

}  // namespace

VtuGrid::Values NotANumber()
{
  return kNans;
}

VtuGrid::Values Zeros()
{
  return kZeros;
}

VtuGrid::Values NoValue(int /*item*/)
{
  return kNans;
}

VtuGrid::Values NoForce(int /*item*/)
{
  return kZeros;
}

VtuGrid::VtuGrid(const model::Model& forModel, const ShellCorners& itsCorners, pugi::xml_node grid)
    : model(forModel),
      corners(itsCorners),
      covered(forModel.nodes.size()),
      piece(grid.append_child("Piece"))
{
  for (const model::Element& element : model.elements) {
    for (int i = 0; element.kind != model::Kind::Beam && i < element.nodeCount; ++i)
      covered[element.nodes[i]] = true;
  }
  for (std::size_t i = 0; i < covered.size(); ++i) {
    if (!covered[i])
      vertices.push_back(static_cast<int>(i));
  }
  using Count = unsigned long long;
  piece.append_attribute("NumberOfPoints") =
      Count{model.nodes.size() + model.beamPoints + corners.CopiedNodes().size()};
  piece.append_attribute("NumberOfCells") = Count{model.elements.size() + vertices.size()};
  AddPoints();
  AddCells();
  pointData = piece.append_child("PointData");
  cellData = piece.append_child("CellData");
}

void VtuGrid::AddPoints()
{
  std::vector<double> places;
  for (const model::Node& node : model.nodes)
    Append(places, Values(node.x), 3);
  for (const model::Element& beam : model.elements) {
    for (int i = 0; beam.kind == model::Kind::Beam && i < beam.points; ++i)
      Append(places, Values(model::PointOfBeam(model, beam, i)), 3);
  }
  for (const int node : corners.CopiedNodes())
    Append(places, Values(model.nodes[node].x), 3);
  AddArray(piece.append_child("Points"), {"Points"}, 3, places);
}

void VtuGrid::AddCells()
{
  std::vector<std::int32_t> points;
  std::vector<std::int32_t> ends;
  std::vector<std::uint8_t> types;
  const auto close = [&](CellType type) {
    ends.push_back(static_cast<std::int32_t>(points.size()));
    types.push_back(static_cast<std::uint8_t>(type));
  };
  const int nodes = static_cast<int>(model.nodes.size());
  for (std::size_t e = 0; e < model.elements.size(); ++e) {
    const model::Element& element = model.elements[e];
    const bool beam = element.kind == model::Kind::Beam;
    for (int i = 0; beam && i < element.points; ++i)
      points.push_back(nodes + element.firstPoint + i);
    for (int i = 0; !beam && i < element.nodeCount; ++i) {
      const int copy = element.kind == model::Kind::Shell ? corners.CopyAt(e, i) : -1;
      points.push_back(copy < 0 ? element.nodes[i] : nodes + model.beamPoints + copy);
    }
    close(TypeOf(element));
  }
  for (const int node : vertices) {
    points.push_back(node);
    close(CellType::Vertex);
  }
  pugi::xml_node cells = piece.append_child("Cells");
  AddArray(cells, {"connectivity"}, 1, points);
  AddArray(cells, {"offsets"}, 1, ends);
  AddArray(cells, {"types"}, 1, types);
}

void VtuGrid::AddPointArray(const ArrayName& name, int components, const PointValues& values)
{
  std::vector<double> list;
  for (int i = 0; i < static_cast<int>(model.nodes.size()); ++i)
    Append(list, values.ofNode(i), components);
  for (int i = 0; i < model.beamPoints; ++i)
    Append(list, values.ofBeamPoint(i), components);
  const std::vector<int>& copied = corners.CopiedNodes();
  for (int i = 0; i < static_cast<int>(copied.size()); ++i)
    Append(list, values.ofCopy ? values.ofCopy(i) : values.ofNode(copied[i]), components);
  AddArray(pointData, name, components, list);
}

void VtuGrid::AddPointNumbers(const ArrayName& name, int components,
                              const std::function<Numbers(int)>& ofNode)
{
  std::vector<std::int32_t> list;
  for (int i = 0; i < static_cast<int>(model.nodes.size()); ++i)
    Append(list, ofNode(i), components);
  list.resize(list.size() + static_cast<std::size_t>(model.beamPoints) * components);
  for (const int node : corners.CopiedNodes())
    Append(list, ofNode(node), components);
  AddArray(pointData, name, components, list);
}

void VtuGrid::AddCellArray(const ArrayName& name, int components, const ValuesAt& ofElement,
                           Values ofVertex)
{
  std::vector<double> list;
  for (int i = 0; i < static_cast<int>(model.elements.size()); ++i)
    Append(list, ofElement(i), components);
  for (std::size_t i = 0; i < vertices.size(); ++i)
    Append(list, ofVertex, components);
  AddArray(cellData, name, components, list);
}

void VtuGrid::AddCellNumbers(const ArrayName& name,
                             const std::function<int(const model::Element&)>& ofElement)
{
  std::vector<std::int32_t> list;
  for (const model::Element& element : model.elements)
    list.push_back(ofElement(element));
  list.resize(list.size() + vertices.size());
  AddArray(cellData, name, 1, list);
}

}  // namespace morlen
