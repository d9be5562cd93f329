#include "common/tables.h"

#include <algorithm>
#include <iterator>
#include <set>

namespace morlen::tables {
namespace {

using Names = std::initializer_list<const char*>;

/// Makes the tables of one model.
class Maker
{
public:
  Maker(const model::Model& forModel, const results::Results& itsResults)
      : model(forModel), results(itsResults), units(forModel.units)
  {
  }

  std::vector<Table> All() const;
  std::vector<Table> OfModel() const;
  std::vector<Table> OfResults() const;

private:
  Table Nodes() const;
  Table Elements() const;
  Table Materials() const;
  Table Supports() const;
  Table NodalLoads() const;
  Table ElementLoads() const;
  std::string UnitsOfLoads(const char* ofTemperature) const;
  Table Displacements() const;
  Table Reactions() const;
  Table BeamDiagrams() const;
  Table BeamEndForces() const;
  Table ShellForces() const;
  Table Stresses() const;

  bool HasRotations() const { return !model.solids; }
  void AddColumns(Table& table, Names names, const std::string& unit) const;
  void AddTriple(Table& table, Names names, const std::string& unit) const;
  void AddMoments(Table& table, const char* plane, Names space, const std::string& unit) const;
  void AddForces(Table& table) const;
  void PutTriple(Table& table, const Vec3& value) const;
  void PutMoments(Table& table, const Vec3& value) const;
  void PutComponents(Table& table, const std::array<double, 6>& values) const;

  const model::Model& model;
  const results::Results& results;
  UnitTexts units;
};

void Maker::AddColumns(Table& table, Names names, const std::string& unit) const
{
  for (const char* name : names)
    table.columns.push_back({name, unit});
}

// Columns of a vector: two in the plane.
void Maker::AddTriple(Table& table, Names names, const std::string& unit) const
{
  for (int k = 0; k < model.Translations(); ++k)
    table.columns.push_back({names.begin()[k], unit});
}

// Columns of a moment or rotation: one in the plane, none with solids.
void Maker::AddMoments(Table& table, const char* plane, Names space, const std::string& unit) const
{
  if (HasRotations())
    AddColumns(table, model.plane ? Names{plane} : space, unit);
}

void Maker::AddForces(Table& table) const
{
  AddTriple(table, {"Px", "Py", "Pz"}, units.Force());
  AddMoments(table, "M", {"Mx", "My", "Mz"}, units.Moment());
}

void Maker::PutTriple(Table& table, const Vec3& value) const
{
  table.Put(std::span(value).first(model.Translations()));
}

void Maker::PutMoments(Table& table, const Vec3& value) const
{
  if (HasRotations())
    table.Put(model.plane ? std::span(value).subspan(2) : std::span<const double>(value));
}

// The components of a node as the model has them: x, y and the moment in the plane.
void Maker::PutComponents(Table& table, const std::array<double, 6>& values) const
{
  table.Put(std::span(values).first(model.components));
}

std::vector<Table> Maker::OfModel() const
{
  return {Nodes(), Elements(), Materials(), Supports(), NodalLoads(), ElementLoads()};
}

std::vector<Table> Maker::All() const
{
  std::vector<Table> all = OfModel();
  std::vector<Table> ofResults = OfResults();
  all.insert(all.end(), std::make_move_iterator(ofResults.begin()),
             std::make_move_iterator(ofResults.end()));
  return all;
}

std::vector<Table> Maker::OfResults() const
{
  return {Displacements(), Reactions(), BeamDiagrams(), BeamEndForces(), ShellForces(), Stresses()};
}

Table Maker::Nodes() const
{
  Table table{"nodes", {{"node", ""}}, {}};
  AddTriple(table, {"x", "y", "z"}, units.Length());
  for (const model::Node& node : model.nodes) {
    table.Put(node.number);
    PutTriple(table, node.x);
  }
  return table;
}

Table Maker::Elements() const
{
  int most = 0;
  for (const model::Element& element : model.elements)
    most = std::max(most, element.nodeCount);
  Table table{"elements", {}, {}};
  AddColumns(table, {"element", "mesh", "kind", "material", "hinge_code"}, "");
  for (int i = 1; i <= most; ++i)
    table.columns.push_back({"node" + std::to_string(i), ""});
  for (const model::Element& element : model.elements) {
    const int material = element.material < 0 ? 0 : model.materials[element.material].number;
    for (const Cell& cell : {Cell(element.number), Cell(element.mesh + 1),
                             Cell(model::KindName(element.kind)), Cell(material)})
      table.Put(cell);
    table.Put(element.kind == model::Kind::Beam ? Cell(element.hingeCode) : Cell());
    for (int i = 0; i < most; ++i)
      table.Put(i < element.nodeCount ? Cell(model.nodes[element.nodes[i]].number) : Cell());
  }
  return table;
}

Table Maker::Materials() const
{
  Table table{"materials", {{"material", ""}}, {}};
  const std::vector<MaterialValue> values = MaterialValues(units);
  for (const MaterialValue& value : values)
    table.columns.push_back({value.name, value.unit});
  for (const model::Material& material : model.materials) {
    table.Put(material.number);
    for (const MaterialValue& value : values)
      table.Put(material.*value.field);
  }
  return table;
}

// A value is prescribed or a stiffness, by its flag.
Table Maker::Supports() const
{
  Table table{"supports", {{"node", ""}}, {}};
  for (int k = 1; k <= model.components; ++k)
    table.columns.push_back({"flag" + std::to_string(k), ""});
  for (int k = 1; k <= model.components; ++k) {
    const bool rotates = k > model.Translations();
    table.columns.push_back(
        {"value" + std::to_string(k), rotates ? "rad or " + units.Moment() + "/rad"
                                              : units.Length() + " or " + units.ForcePer(1)});
  }
  AddColumns(table, {"Euler1", "Euler2", "Euler3"}, "rad");
  for (const model::Support& support : model.supports) {
    table.Put(model.nodes[support.node].number);
    for (int k = 0; k < model.components; ++k)
      table.Put(support.flags[k]);
    PutComponents(table, support.values);
    for (const double angle : support.euler)
      table.Put(support.ownAxes ? Cell(angle) : Cell());
  }
  return table;
}

Table Maker::NodalLoads() const
{
  Table table{"nodal_loads", {{"node", ""}}, {}};
  AddForces(table);
  for (const model::NodalLoad& load : model.nodalLoads) {
    table.Put(model.nodes[load.node].number);
    PutComponents(table, load.values);
  }
  return table;
}

// The units of the loads that the model has, joined by "or".
std::string Maker::UnitsOfLoads(const char* ofTemperature) const
{
  std::set<std::string> found;
  for (const model::ElementLoad& load : model.elementLoads) {
    const model::Kind kind = model.elements[load.element].kind;
    if (load.IsTemperature())
      found.insert(ofTemperature);
    else
      found.insert(units.ForcePer(load.Dimensions(kind)));
  }
  std::string joined;
  for (const std::string& unit : found)
    joined += (joined.empty() || unit.empty() ? "" : " or ") + unit;
  return joined;
}

Table Maker::ElementLoads() const
{
  Table table{"element_loads", {}, {}};
  AddColumns(table, {"element", "kind", "face"}, "");
  AddColumns(table, {"value1"}, UnitsOfLoads("1/degree"));
  AddColumns(table, {"value2"}, UnitsOfLoads("degree"));
  AddColumns(table, {"value3"}, UnitsOfLoads(""));
  AddColumns(table, {"value4"}, units.MomentPerLength());
  for (const model::ElementLoad& load : model.elementLoads) {
    table.Put(model.elements[load.element].number);
    table.Put(load.kind);
    table.Put(load.face < 0 ? Cell() : Cell(load.face + 1));
    table.Put(std::span(load.values).first(4));
  }
  return table;
}

Table Maker::Displacements() const
{
  Table table{"displacements", {{"node", ""}}, {}};
  AddTriple(table, {"ux", "uy", "uz"}, units.Length());
  if (results.rotations)
    AddMoments(table, "rz", {"rx", "ry", "rz"}, "rad");
  if (results.derived)
    table.columns.push_back({"u", units.Length()});
  for (std::size_t i = 0; i < model.nodes.size(); ++i) {
    table.Put(model.nodes[i].number);
    PutTriple(table, results.nodes[i].displacement);
    if (results.rotations)
      PutMoments(table, results.nodes[i].rotation);
    if (results.derived)
      table.Put(results.nodes[i].translation);
  }
  return table;
}

// Nodes with supports, and those where the program itself holds a rotation that no element resists
// and a moment acts on it.
Table Maker::Reactions() const
{
  Table table{"reactions", {{"node", ""}}, {}};
  AddForces(table);
  std::vector<bool> listed(model.nodes.size());
  for (const model::Support& support : model.supports)
    listed[support.node] = true;
  for (std::size_t i = 0; i < model.nodes.size(); ++i) {
    const results::Node& node = results.nodes[i];
    if (!listed[i] && node.force == Vec3{} && node.moment == Vec3{})
      continue;
    table.Put(model.nodes[i].number);
    PutTriple(table, node.force);
    PutMoments(table, node.moment);
  }
  return table;
}

Table Maker::BeamDiagrams() const
{
  Table table{"beam_diagrams", {{"element", ""}, {"point", ""}}, {}};
  AddTriple(table, {"x", "y", "z"}, units.Length());
  AddTriple(table, {"ux", "uy", "uz"}, units.Length());
  AddColumns(table, model.plane ? Names{"N", "Vy"} : Names{"N", "Vy", "Vz"}, units.Force());
  AddColumns(table, model.plane ? Names{"Mz"} : Names{"T", "My", "Mz"}, units.Moment());
  for (const model::Element& beam : model.elements) {
    for (int i = 0; beam.kind == model::Kind::Beam && i < beam.points; ++i) {
      const results::BeamPoint& point = results.beamPoints[beam.firstPoint + i];
      table.Put(beam.number);
      table.Put(i + 1);
      PutTriple(table, model::PointOfBeam(model, beam, i));
      PutTriple(table, point.displacement);
      PutTriple(table, {point.forces[0], point.forces[1], point.forces[2]});
      PutMoments(table, {point.forces[3], point.forces[4], point.forces[5]});
    }
  }
  return table;
}

Table Maker::BeamEndForces() const
{
  Table table{"beam_end_forces", {{"element", ""}, {"node", ""}}, {}};
  AddForces(table);
  auto ends = results.beamEnds.begin();
  for (const model::Element& beam : model.elements) {
    if (beam.kind != model::Kind::Beam || ends == results.beamEnds.end())
      continue;
    for (int end = 0; end < 2; ++end) {
      const std::array<double, 6>& f = (*ends)[end];
      table.Put(beam.number);
      table.Put(model.nodes[beam.nodes[end]].number);
      PutTriple(table, {f[0], f[1], f[2]});
      PutMoments(table, {f[3], f[4], f[5]});
    }
    ++ends;
  }
  return table;
}

Table Maker::ShellForces() const
{
  Table table{"shell_forces", {{"element", ""}, {"point", ""}}, {}};
  if (results.shellLocal) {
    AddColumns(table, {"Nx'", "Ny'", "Nxy'"}, units.ForcePer(1));
    AddColumns(table, {"Mx'", "My'", "Mxy'"}, units.MomentPerLength());
    AddColumns(table, {"Qx'", "Qy'"}, units.ForcePer(1));
  }
  if (results.shellMain) {
    AddColumns(table, {"N11", "N22"}, units.ForcePer(1));
    AddColumns(table, {"M11", "M22"}, units.MomentPerLength());
    AddColumns(table, {"Qm1", "Qm2"}, units.ForcePer(1));
    AddColumns(table, {"N_Euler1", "N_Euler2", "N_Euler3"}, "rad");
    AddColumns(table, {"M_Euler1", "M_Euler2", "M_Euler3"}, "rad");
  }
  if (results.derived) {
    AddColumns(table, {"N1", "N2"}, units.ForcePer(1));
    AddColumns(table, {"M1", "M2", "mx+", "my+", "mx-", "my-"}, units.MomentPerLength());
  }
  for (const model::Element& shell : model.elements) {
    for (int i = 0; shell.kind == model::Kind::Shell && i < shell.points; ++i) {
      const results::ShellPoint& point = results.shellPoints[shell.firstPoint + i];
      table.Put(shell.number);
      table.Put(i + 1);
      if (results.shellLocal)
        table.Put(point.local);
      if (results.shellMain) {
        table.Put(point.main);
        table.Put(point.mainAngles);
      }
      if (results.derived) {
        table.Put(point.principal);
        table.Put(point.design);
      }
    }
  }
  return table;
}

Table Maker::Stresses() const
{
  Table table{"stresses", {{"node", ""}}, {}};
  AddColumns(table, {"Sx", "Sy", "Sz", "Txy", "Tyz", "Txz", "von_Mises"}, units.Pressure());
  if (results.derived)
    AddColumns(table, {"S1", "S2", "S3"}, units.Pressure());
  for (std::size_t i = 0; results.stresses && i < model.nodes.size(); ++i) {
    table.Put(model.nodes[i].number);
    table.Put(results.nodes[i].stress);
    table.Put(results.nodes[i].vonMises);
    if (results.derived)
      table.Put(results.nodes[i].principal);
  }
  return table;
}

}  // namespace

UnitTexts::UnitTexts(const model::Units& units)
    : force(units.force), length(units.length), pressure(units.pressure)
{
  if (!force.empty())
    return;
  force = "force";
  length = "length";
  pressure = ForcePer(2);
}

std::string UnitTexts::Length(int power) const
{
  return power == 1 ? length : length + std::to_string(power);
}

std::vector<MaterialValue> MaterialValues(const UnitTexts& units)
{
  using model::Material;
  const std::string modulus = units.Pressure();
  constexpr bool kYes = true;
  constexpr bool kNo = false;
  return {{"Ex", modulus, &Material::E1, kYes, kYes, kYes},
          {"Ey", modulus, &Material::E2, kNo, kYes, kNo},
          {"nuXY", "", &Material::nuXY, kNo, kYes, kYes},
          {"nuYX", "", &Material::nuYX, kNo, kYes, kNo},
          {"Gxy", modulus, &Material::Gxy, kYes, kYes, kNo},
          {"Gxz", modulus, &Material::Gxz, kNo, kYes, kNo},
          {"Gyz", modulus, &Material::Gyz, kNo, kYes, kNo},
          {"A", units.Length(2), &Material::A, kYes, kNo, kNo},
          {"Iy", units.Length(4), &Material::Iy, kYes, kNo, kNo},
          {"Iz", units.Length(4), &Material::Iz, kYes, kNo, kNo},
          {"J", units.Length(4), &Material::J, kYes, kNo, kNo},
          {"t", units.Length(), &Material::t, kNo, kYes, kNo},
          {"Weight", units.ForcePer(3), &Material::weight, kYes, kYes, kYes}};
}

std::vector<Table> AllTables(const model::Model& model, const results::Results& results)
{
  return Maker(model, results).All();
}

std::vector<Table> ModelTables(const model::Model& model)
{
  return Maker(model, results::Results()).OfModel();
}

std::vector<Table> ResultTables(const model::Model& model, const results::Results& results)
{
  return Maker(model, results).OfResults();
}

}  // namespace morlen::tables
