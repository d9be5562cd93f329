// The arrays of the model: numbers, axes, materials, supports and loads.

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <limits>
#include <string>
#include <vector>

#include "common/tables.h"
#include "export/element_loads.h"
#include "export/vtu_parts.h"
#include "model/euler.h"

namespace morlen {

namespace {

using Values = VtuGrid::Values;

void AddNumbers(VtuGrid& grid, const model::Model& model)
{
  grid.AddPointNumbers({"Node"}, 1,
                       [&](int i) { return VtuGrid::Numbers(&model.nodes[i].number, 1); });
  using model::Element;
  grid.AddCellNumbers({"Element"}, [](const Element& e) { return e.number; });
  grid.AddCellNumbers({"Mesh"}, [](const Element& e) { return e.mesh + 1; });
  grid.AddCellNumbers({"Material"}, [&](const Element& e) {
    return e.material < 0 ? 0 : model.materials[e.material].number;
  });
}

void AddAxes(VtuGrid& grid, const model::Model& model)
{
  constexpr const char* kNames[] = {"Local x", "Local y", "Local z"};
  for (int axis = 0; !model.solids && axis < 3; ++axis)
    grid.AddCellArray(
        {kNames[axis]}, 3, [&](int e) { return Values(model.elements[e].axes[axis]); }, Zeros());
}

// Values that are 0 in all elements are left out: most models do not have them.
void AddMaterials(VtuGrid& grid, const model::Model& model)
{
  for (const tables::MaterialValue& value :
       tables::MaterialValues(tables::UnitTexts(model.units))) {
    const auto of = [&](const model::Element& element) -> const double* {
      const bool has = element.material >= 0 && value.IsOf(element.kind);
      return has ? &(model.materials[element.material].*value.field) : nullptr;
    };
    const bool any = std::any_of(
        model.elements.begin(), model.elements.end(),
        [&](const model::Element& element) { return of(element) && *of(element) != 0.0; });
    if (any)
      grid.AddCellArray(
          {std::string("Material ") + value.name, value.unit}, 1,
          [&](int e) {
            const double* found = of(model.elements[e]);
            return found ? Values(found, 1) : NotANumber();
          },
          NotANumber());
  }
}

// By node the values of supports under this flag: displacements or springs along three axes, then
// rotations; NaN for other components.
std::vector<std::array<double, 6>> ValuesUnder(int flag, const model::Model& model)
{
  constexpr double kNan = std::numeric_limits<double>::quiet_NaN();
  std::vector<std::array<double, 6>> values(model.nodes.size(),
                                            {kNan, kNan, kNan, kNan, kNan, kNan});
  for (const model::Support& support : model.supports) {
    for (int k = 0; k < model.components; ++k) {
      if (support.flags[k] == flag)
        values[support.node][model.PlaceInSpace(k)] = support.values[k];
    }
  }
  return values;
}

// Adds two arrays of points: the first three values of each node, and the last three. One whose
// values are all 0 or NaN is left out.
void AddPair(VtuGrid& grid, const std::array<ArrayName, 2>& names,
             const std::vector<std::array<double, 6>>& values, VtuGrid::Values (*elsewhere)(int),
             const VtuGrid::ValuesAt& ofCopy)
{
  for (std::size_t part = 0; part < names.size(); ++part) {
    const auto ofNode = [&](int i) { return Values(values[i]).subspan(3 * part, 3); };
    bool any = false;
    for (int i = 0; i < static_cast<int>(values.size()); ++i) {
      for (const double value : ofNode(i))
        any = any || std::fabs(value) > 0.0;
    }
    if (any)
      grid.AddPointArray(names[part], 3,
                         {.ofNode = ofNode, .ofBeamPoint = elsewhere, .ofCopy = ofCopy});
  }
}

void AddFlags(VtuGrid& grid, const model::Model& model)
{
  constexpr const char* kNames[] = {"X", "Y", "Z", "RX", "RY", "RZ"};
  std::vector<const char*> names;
  names.reserve(model.components);
  for (int k = 0; k < model.components; ++k)
    names.push_back(kNames[model.PlaceInSpace(k)]);
  std::vector<std::array<std::int32_t, 6>> flags(model.nodes.size());
  for (const model::Support& support : model.supports)
    flags[support.node] = support.flags;
  grid.AddPointNumbers({"Support", "", names}, model.components,
                       [&](int i) { return VtuGrid::Numbers(flags[i]); });
}

// Directions of the components of supports, in models that have a support with local axes.
void AddSupportAxes(VtuGrid& grid, const model::Model& model)
{
  const bool any = std::any_of(model.supports.begin(), model.supports.end(),
                               [](const model::Support& support) { return support.ownAxes; });
  constexpr const char* kNames[] = {"Support x", "Support y", "Support z"};
  for (int axis = 0; any && axis < 3; ++axis) {
    std::vector<Vec3> directions(model.nodes.size());
    for (const model::Support& support : model.supports) {
      const Axes axes = AxesFromEuler(support.euler.data());
      const ReaVec& own = axis == 0 ? axes.x : axis == 1 ? axes.y : axes.z;
      for (int k = 0; k < 3; ++k)
        directions[support.node][k] = support.ownAxes ? own(k + 1) : k == axis ? 1.0 : 0.0;
    }
    grid.AddPointArray({kNames[axis]}, 3,
                       {.ofNode = [&](int i) { return Values(directions[i]); },
                        .ofBeamPoint = NoForce,
                        .ofCopy = NoForce});
  }
}

void AddSupports(VtuGrid& grid, const model::Model& model)
{
  if (model.supports.empty())
    return;
  const tables::UnitTexts units(model.units);
  AddFlags(grid, model);
  AddSupportAxes(grid, model);
  AddPair(grid,
          {{{"Spring stiffness", units.ForcePer(1)},
            {"Rotational spring stiffness", units.Moment() + "/rad"}}},
          ValuesUnder(2, model), NoValue, {});
}

}  // namespace

void AddModel(VtuGrid& grid, const model::Model& model)
{
  AddNumbers(grid, model);
  AddAxes(grid, model);
  AddMaterials(grid, model);
  AddSupports(grid, model);
}

void AddLoads(VtuGrid& grid, const model::Model& model)
{
  const tables::UnitTexts units(model.units);
  AddPair(grid, {{{"Prescribed displacement", units.Length()}, {"Prescribed rotation", "rad"}}},
          ValuesUnder(1, model), NoValue, {});
  std::vector<std::array<double, 6>> onNodes(model.nodes.size());
  for (const model::NodalLoad& load : model.nodalLoads) {
    for (int k = 0; k < model.components; ++k)
      onNodes[load.node][model.PlaceInSpace(k)] += load.values[k];
  }
  AddPair(grid, {{{"Nodal force", units.Force()}, {"Nodal moment", units.Moment()}}}, onNodes,
          NoForce, NoForce);
  for (const ElementLoadSum& load : SumsOfElementLoads(model, units))
    grid.AddCellArray(
        {load.name, load.unit}, load.components,
        [&](int e) {
          const bool has = model.elements[e].kind == load.kind;
          return has ? Values(load.values[e]) : NotANumber();
        },
        NotANumber());
}

}  // namespace morlen
