#include "export/vtu.h"

#include <ostream>
#include <pugixml.hpp>
#include <span>
#include <string>
#include <vector>

#include "common/atomic_file.h"
#include "common/shortest.h"
#include "common/tables.h"

namespace morlen {

namespace {

using Values = std::span<const double>;
constexpr std::array<double, 8> kZeros{};

// Numbers of the kinds of cells in a VTK file.
enum class CellType : int
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

/// The text of an array in the file.
class ArrayText
{
public:
  template <class Number>
  void Put(Number number)
  {
    AppendNumber(text, number);
    text += ' ';
  }
  void Put(Values values)
  {
    for (const double value : values)
      Put(value);
    text += '\n';
  }
  const std::string& Text() const { return text; }

private:
  std::string text = "\n";
};

struct ArrayName
{
  std::string name;
  std::string unit;                     ///< in brackets after the name; empty for none
  std::vector<const char*> components;  ///< their names; empty for x, y, z
};

std::string FullName(const ArrayName& name)
{
  return name.unit.empty() ? name.name : name.name + " [" + name.unit + "]";
}

void AddArray(pugi::xml_node parent, const char* type, const ArrayName& name, int components,
              const ArrayText& values)
{
  pugi::xml_node array = parent.append_child("DataArray");
  array.append_attribute("type") = type;
  array.append_attribute("Name") = FullName(name).c_str();
  array.append_attribute("NumberOfComponents") = components;
  for (std::size_t k = 0; k < name.components.size(); ++k)
    array.append_attribute(("ComponentName" + std::to_string(k)).c_str()) = name.components[k];
  array.append_attribute("format") = "ascii";
  array.text() = values.Text().c_str();
}

/// Fills the piece of the file that holds a model.
class Grid
{
public:
  Grid(const model::Model& forModel, const results::Results& itsResults, pugi::xml_node intoPiece);
  void Fill();

private:
  void AddPoints();
  void AddCells();
  void AddNodeData();
  void AddBeamData();
  void AddSolidData();
  void AddNumbers();
  void AddAxes();
  void AddShellData();
  void AddMainShellData();
  void AddDesignMoments();
  int MostShellPoints() const;
  std::string OfPoint(int point) const;
  template <class OfNode, class OfBeamPoint>
  void AddPointArray(const ArrayName& name, OfNode ofNode, OfBeamPoint ofBeamPoint);
  template <class OfElement>
  void AddCellArray(const ArrayName& name, int components, OfElement ofElement);
  template <class OfElement>
  void AddCellNumbers(const char* name, OfElement ofElement);

  const model::Model& model;
  const results::Results& results;
  const tables::UnitTexts units;
  pugi::xml_node piece;
  std::vector<int> lonely;  ///< nodes that no shell or solid has
  pugi::xml_node pointData, cellData;
};

Grid::Grid(const model::Model& forModel, const results::Results& itsResults,
           pugi::xml_node intoPiece)
    : model(forModel), results(itsResults), units(forModel.units), piece(intoPiece)
{
  std::vector<bool> covered(model.nodes.size());
  for (const model::Element& element : model.elements) {
    for (int i = 0; element.kind != model::Kind::Beam && i < element.nodeCount; ++i)
      covered[element.nodes[i]] = true;
  }
  for (std::size_t i = 0; i < covered.size(); ++i) {
    if (!covered[i])
      lonely.push_back(static_cast<int>(i));
  }
}

void Grid::Fill()
{
  piece.append_attribute("NumberOfPoints") =
      static_cast<unsigned long long>(model.nodes.size() + model.beamPoints);
  piece.append_attribute("NumberOfCells") =
      static_cast<unsigned long long>(model.elements.size() + lonely.size());
  AddPoints();
  AddCells();
  pointData = piece.append_child("PointData");
  AddNodeData();
  AddBeamData();
  AddSolidData();
  cellData = piece.append_child("CellData");
  AddNumbers();
  AddAxes();
  AddShellData();
  AddMainShellData();
  AddDesignMoments();
}

void Grid::AddPoints()
{
  ArrayText text;
  for (const model::Node& node : model.nodes)
    text.Put(Values(node.x));
  for (const model::Element& beam : model.elements) {
    for (int i = 0; beam.kind == model::Kind::Beam && i < beam.points; ++i)
      text.Put(Values(model::PointOfBeam(model, beam, i)));
  }
  AddArray(piece.append_child("Points"), "Float64", {"Points", "", {}}, 3, text);
}

void Grid::AddCells()
{
  ArrayText nodes, ends, types;
  int end = 0;
  const auto close = [&](int count, CellType type) {
    ends.Put(end += count);
    types.Put(static_cast<int>(type));
  };
  for (const model::Element& element : model.elements) {
    const bool beam = element.kind == model::Kind::Beam;
    const int count = beam ? element.points : element.nodeCount;
    const int first = static_cast<int>(model.nodes.size()) + element.firstPoint;
    for (int i = 0; i < count; ++i)
      nodes.Put(beam ? first + i : element.nodes[i]);
    close(count, TypeOf(element));
  }
  for (const int node : lonely) {
    nodes.Put(node);
    close(1, CellType::Vertex);
  }
  pugi::xml_node cells = piece.append_child("Cells");
  AddArray(cells, "Int32", {"connectivity", "", {}}, 1, nodes);
  AddArray(cells, "Int32", {"offsets", "", {}}, 1, ends);
  AddArray(cells, "UInt8", {"types", "", {}}, 1, types);
}

// Adds the values that the two functions give of each node and of each division point of a beam.
template <class OfNode, class OfBeamPoint>
void Grid::AddPointArray(const ArrayName& name, OfNode ofNode, OfBeamPoint ofBeamPoint)
{
  static const results::Node kNode;
  const int components = static_cast<int>(Values(ofNode(kNode)).size());
  ArrayText text;
  for (const results::Node& node : results.nodes)
    text.Put(Values(ofNode(node)));
  for (const results::BeamPoint& point : results.beamPoints)
    text.Put(Values(ofBeamPoint(point)).first(components));
  AddArray(pointData, "Float64", name, components, text);
}

constexpr auto kNoBeamValues = [](const results::BeamPoint&) { return Values(kZeros); };
constexpr auto kNoNodeValue = [](const results::Node&) { return Values(kZeros).first(1); };

void Grid::AddNodeData()
{
  using results::Node;
  ArrayText numbers;
  for (const model::Node& node : model.nodes)
    numbers.Put(node.number);
  for (int i = 0; i < model.beamPoints; ++i)
    numbers.Put(0);
  AddArray(pointData, "Int32", {"Node", "", {}}, 1, numbers);
  AddPointArray(
      {"Displacement", units.Length(), {}}, [](const Node& n) -> auto& { return n.displacement; },
      [](const results::BeamPoint& p) { return Values(p.displacement); });
  if (results.rotations)
    AddPointArray(
        {"Rotation", "rad", {}}, [](const Node& n) -> auto& { return n.rotation; }, kNoBeamValues);
  AddPointArray(
      {"Reaction force", units.Force(), {}}, [](const Node& n) -> auto& { return n.force; },
      kNoBeamValues);
  if (!model.solids)
    AddPointArray(
        {"Reaction moment", units.Moment(), {}}, [](const Node& n) -> auto& { return n.moment; },
        kNoBeamValues);
}

void Grid::AddBeamData()
{
  constexpr const char* kNames[] = {"N", "Vy", "Vz", "T", "My", "Mz"};
  for (int k = 0; model.beamPoints > 0 && k < 6; ++k) {
    const bool inPlane = k < 2 || k == 5;
    if (model.plane && !inPlane)
      continue;
    AddPointArray({kNames[k], k < 3 ? units.Force() : units.Moment(), {}}, kNoNodeValue,
                  [k](const results::BeamPoint& p) { return Values(p.forces).subspan(k, 1); });
  }
}

void Grid::AddSolidData()
{
  using results::Node;
  if (!results.stresses)
    return;
  AddPointArray(
      {"Stress", units.Pressure(), {"XX", "YY", "ZZ", "XY", "YZ", "XZ"}},
      [](const Node& n) -> auto& { return n.stress; }, kNoBeamValues);
  AddPointArray(
      {"von Mises", units.Pressure(), {}}, [](const Node& n) { return Values(&n.vonMises, 1); },
      kNoBeamValues);
}

template <class OfElement>
void Grid::AddCellNumbers(const char* name, OfElement ofElement)
{
  ArrayText text;
  for (const model::Element& element : model.elements)
    text.Put(ofElement(element));
  for (std::size_t i = 0; i < lonely.size(); ++i)
    text.Put(0);
  AddArray(cellData, "Int32", {name, "", {}}, 1, text);
}

void Grid::AddNumbers()
{
  using model::Element;
  AddCellNumbers("Element", [](const Element& e) { return e.number; });
  AddCellNumbers("Mesh", [](const Element& e) { return e.mesh + 1; });
  AddCellNumbers("Material", [&](const Element& e) {
    return e.material < 0 ? 0 : model.materials[e.material].number;
  });
}

// Adds the values that the function gives of each element, at least as many as the array has
// components.
template <class OfElement>
void Grid::AddCellArray(const ArrayName& name, int components, OfElement ofElement)
{
  ArrayText text;
  for (const model::Element& element : model.elements)
    text.Put(Values(ofElement(element)).first(components));
  for (std::size_t i = 0; i < lonely.size(); ++i)
    text.Put(Values(kZeros).first(components));
  AddArray(cellData, "Float64", name, components, text);
}

void Grid::AddAxes()
{
  constexpr const char* kNames[] = {"Local x", "Local y", "Local z"};
  for (int axis = 0; !model.solids && axis < 3; ++axis)
    AddCellArray(
        {kNames[axis], "", {}},
        3, [axis](const model::Element& e) -> auto& { return e.axes[axis]; });
}

void Grid::AddShellData()
{
  if (!results.shellLocal)
    return;
  using Mean = std::array<double, 8>;
  const auto meanOf = [&](const model::Element& element) {
    Mean mean{};
    for (int i = 0; element.kind == model::Kind::Shell && i < element.points; ++i) {
      for (std::size_t k = 0; k < mean.size(); ++k)
        mean[k] += results.shellPoints[element.firstPoint + i].local[k] / element.points;
    }
    return mean;
  };
  std::vector<Mean> means;
  for (const model::Element& element : model.elements)
    means.push_back(meanOf(element));
  const auto part = [&](int first) {
    return [&, first](const model::Element& e) {
      return Values(means[&e - model.elements.data()]).subspan(first);
    };
  };
  AddCellArray({"Membrane force", units.ForcePer(1), {"Nx'", "Ny'", "Nxy'"}}, 3, part(0));
  AddCellArray({"Moment", units.MomentPerLength(), {"Mx'", "My'", "Mxy'"}}, 3, part(3));
  AddCellArray({"Shear force", units.ForcePer(1), {"Qx'", "Qy'"}}, 2, part(6));
}

// Written point by point, since they are not linear.
void Grid::AddDesignMoments()
{
  for (int i = 0; results.derived && i < MostShellPoints(); ++i)
    AddCellArray(
        {"Design moment" + OfPoint(i), units.MomentPerLength(), {"mx+", "my+", "mx-", "my-"}}, 4,
        [&](const model::Element& e) {
          const bool has = e.kind == model::Kind::Shell && i < e.points;
          return has ? Values(results.shellPoints[e.firstPoint + i].design) : Values(kZeros);
        });
}

int Grid::MostShellPoints() const
{
  int most = 0;
  for (const model::Element& element : model.elements)
    most = std::max(most, element.kind == model::Kind::Shell ? element.points : 0);
  return most;
}

// The end of the name of an array of this point (from 0): empty when elements have one.
std::string Grid::OfPoint(int point) const
{
  return MostShellPoints() > 1 ? ", point " + std::to_string(point + 1) : "";
}

// Principal values are written point by point: their directions differ, so a mean has no sense.
void Grid::AddMainShellData()
{
  for (int i = 0; results.shellMain && i < MostShellPoints(); ++i) {
    const std::string at = OfPoint(i);
    const auto part = [&](int first) {
      return [&, first](const model::Element& e) {
        const bool has = e.kind == model::Kind::Shell && i < e.points;
        return has ? Values(results.shellPoints[e.firstPoint + i].main).subspan(first)
                   : Values(kZeros);
      };
    };
    AddCellArray({"Principal membrane force" + at, units.ForcePer(1), {"N11", "N22"}}, 2, part(0));
    AddCellArray({"Principal moment" + at, units.MomentPerLength(), {"M11", "M22"}}, 2, part(2));
    AddCellArray({"Shear force in principal axes" + at, units.ForcePer(1), {"Qm1", "Qm2"}}, 2,
                 part(4));
  }
}

}  // namespace

void WriteVtu(const model::Model& model, const results::Results& results, std::ostream& out)
{
  pugi::xml_document document;
  pugi::xml_node root = document.append_child("VTKFile");
  root.append_attribute("type") = "UnstructuredGrid";
  root.append_attribute("version") = "0.1";
  root.append_attribute("byte_order") = "LittleEndian";
  Grid(model, results, root.append_child("UnstructuredGrid").append_child("Piece")).Fill();
  document.save(out, "", pugi::format_raw);
}

void WriteVtu(const model::Model& model, const results::Results& results,
              const std::filesystem::path& name)
{
  AtomicFile file(name);
  WriteVtu(model, results, file.Stream());
  file.Commit();
}

}  // namespace morlen
