// The arrays of results.

#include <algorithm>
#include <string>
#include <vector>

#include "common/tables.h"
#include "export/vtu_parts.h"

namespace morlen {

namespace {

using Values = VtuGrid::Values;

class Adder
{
public:
  Adder(VtuGrid& intoGrid, const model::Model& forModel, const results::Results& itsResults)
      : grid(intoGrid), model(forModel), results(itsResults), units(forModel.units)
  {
    for (const model::Element& element : model.elements) {
      if (element.kind == model::Kind::Shell)
        mostShellPoints = std::max(mostShellPoints, element.points);
    }
  }

  void AddNodes();
  void AddBeams();
  void AddSolids();
  void AddShellCorners(const ShellCorners& corners);
  void AddShellMeans();
  void AddMainForces();
  void AddDesignMoments();

private:
  template <class OfPoint>
  void AddAtPoint(const std::string& name, const std::string& unit,
                  const std::vector<const char*>& components, int point, OfPoint ofPoint);

  VtuGrid& grid;
  const model::Model& model;
  const results::Results& results;
  const tables::UnitTexts units;
  int mostShellPoints = 0;
};

void Adder::AddNodes()
{
  const std::vector<results::Node>& nodes = results.nodes;
  grid.AddPointArray(
      {"Displacement", units.Length()}, 3,
      {.ofNode = [&](int i) { return Values(nodes[i].displacement); },
       .ofBeamPoint = [&](int i) { return Values(results.beamPoints[i].displacement); }});
  if (results.rotations)
    grid.AddPointArray(
        {"Rotation", "rad"}, 3,
        {.ofNode = [&](int i) { return Values(nodes[i].rotation); }, .ofBeamPoint = NoValue});
  grid.AddPointArray({"Reaction force", units.Force()}, 3,
                     {.ofNode = [&](int i) { return Values(nodes[i].force); },
                      .ofBeamPoint = NoForce,
                      .ofCopy = NoForce});
  if (!model.solids)
    grid.AddPointArray({"Reaction moment", units.Moment()}, 3,
                       {.ofNode = [&](int i) { return Values(nodes[i].moment); },
                        .ofBeamPoint = NoForce,
                        .ofCopy = NoForce});
}

void Adder::AddBeams()
{
  constexpr const char* kNames[] = {"N", "Vy", "Vz", "T", "My", "Mz"};
  for (int k = 0; model.beamPoints > 0 && k < 6; ++k) {
    const bool inPlane = k < 2 || k == 5;
    if (model.plane && !inPlane)
      continue;
    grid.AddPointArray(
        {kNames[k], k < 3 ? units.Force() : units.Moment()}, 1,
        {.ofNode = NoValue,
         .ofBeamPoint = [&,
                         k](int i) { return Values(results.beamPoints[i].forces).subspan(k, 1); },
         .ofCopy = NoValue});
  }
}

void Adder::AddSolids()
{
  if (!results.stresses)
    return;
  const std::vector<results::Node>& nodes = results.nodes;
  grid.AddPointArray(
      {"Stress", units.Pressure(), {"XX", "YY", "ZZ", "XY", "YZ", "XZ"}}, 6,
      {.ofNode = [&](int i) { return grid.IsCovered(i) ? Values(nodes[i].stress) : NotANumber(); },
       .ofBeamPoint = NoValue});
  grid.AddPointArray(
      {"von Mises", units.Pressure()}, 1,
      {.ofNode =
           [&](int i) { return grid.IsCovered(i) ? Values(&nodes[i].vonMises, 1) : NotANumber(); },
       .ofBeamPoint = NoValue});
}

/// A part of the forces of shells: the components from `first` on.
struct ForcePart
{
  const char* name;
  const char* meanName;
  int first;
  std::vector<const char*> components;
};

std::vector<ForcePart> ForceParts()
{
  return {{"Membrane force", "Mean membrane force", 0, {"Nx'", "Ny'", "Nxy'"}},
          {"Moment", "Mean moment", 3, {"Mx'", "My'", "Mxy'"}},
          {"Shear force", "Mean shear force", 6, {"Qx'", "Qy'"}}};
}

void Adder::AddShellCorners(const ShellCorners& corners)
{
  for (const ForcePart& part : ForceParts()) {
    const std::string unit = part.first == 3 ? units.MomentPerLength() : units.ForcePer(1);
    const auto from = static_cast<std::size_t>(part.first);
    grid.AddPointArray(
        {part.name, unit, part.components}, static_cast<int>(part.components.size()),
        {.ofNode = [&, from](int i) { return Values(corners.OfNode(i)).subspan(from); },
         .ofBeamPoint = NoValue,
         .ofCopy = [&, from](int i) { return Values(corners.OfCopy(i)).subspan(from); }});
  }
}

void Adder::AddShellMeans()
{
  std::vector<ShellCorners::Forces> means(model.elements.size());
  for (std::size_t e = 0; e < means.size(); ++e) {
    const model::Element& element = model.elements[e];
    for (int i = 0; element.kind == model::Kind::Shell && i < element.points; ++i) {
      for (std::size_t k = 0; k < means[e].size(); ++k)
        means[e][k] += results.shellPoints[element.firstPoint + i].local[k] / element.points;
    }
  }
  for (const ForcePart& part : ForceParts()) {
    const std::string unit = part.first == 3 ? units.MomentPerLength() : units.ForcePer(1);
    grid.AddCellArray(
        {part.meanName, unit, part.components}, static_cast<int>(part.components.size()),
        [&](int e) {
          const bool has = model.elements[e].kind == model::Kind::Shell;
          return has ? Values(means[e]).subspan(part.first) : NotANumber();
        },
        NotANumber());
  }
}

// Adds an array of cells with the values of one Gauss point of shells, from 0. Its name has the
// point where shells have several.
template <class OfPoint>
void Adder::AddAtPoint(const std::string& name, const std::string& unit,
                       const std::vector<const char*>& components, int point, OfPoint ofPoint)
{
  const std::string at = mostShellPoints > 1 ? ", point " + std::to_string(point + 1) : "";
  grid.AddCellArray(
      {name + at, unit, components}, static_cast<int>(components.size()),
      [&](int e) {
        const model::Element& element = model.elements[e];
        const bool has = element.kind == model::Kind::Shell && point < element.points;
        return has ? ofPoint(results.shellPoints[element.firstPoint + point]) : NotANumber();
      },
      NotANumber());
}

// Principal values are written point by point: their directions differ, so a mean has no sense.
void Adder::AddMainForces()
{
  const auto part = [](int first) {
    return [first](const results::ShellPoint& p) { return Values(p.main).subspan(first); };
  };
  for (int i = 0; results.shellMain && i < mostShellPoints; ++i) {
    AddAtPoint("Principal membrane force", units.ForcePer(1), {"N11", "N22"}, i, part(0));
    AddAtPoint("Principal moment", units.MomentPerLength(), {"M11", "M22"}, i, part(2));
    AddAtPoint("Shear force in principal axes", units.ForcePer(1), {"Qm1", "Qm2"}, i, part(4));
  }
}

// Written point by point, since they are not linear.
void Adder::AddDesignMoments()
{
  for (int i = 0; results.derived && i < mostShellPoints; ++i)
    AddAtPoint("Design moment", units.MomentPerLength(), {"mx+", "my+", "mx-", "my-"}, i,
               [](const results::ShellPoint& p) { return Values(p.design); });
}

}  // namespace

void AddResults(VtuGrid& grid, const model::Model& model, const results::Results& results,
                const ShellCorners& corners)
{
  Adder adder(grid, model, results);
  adder.AddNodes();
  adder.AddBeams();
  adder.AddSolids();
  if (results.shellLocal) {
    adder.AddShellCorners(corners);
    adder.AddShellMeans();
  }
  adder.AddMainForces();
  adder.AddDesignMoments();
}

}  // namespace morlen
