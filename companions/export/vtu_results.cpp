// The arrays of results.

#include <algorithm>
#include <array>
#include <cctype>
#include <cmath>
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
  void AddPrincipalForces(const ShellCorners& corners);
  void AddShellMeans();
  void AddShellExtremes();
  void AddMainForces();
  void AddDesignMoments();

private:
  void AddOfShells(const char* prefix, const std::vector<ShellCorners::Forces>& ofElements);
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
  int first;
  std::vector<const char*> components;
};

std::vector<ForcePart> ForceParts()
{
  return {{"Membrane force", 0, {"Nx'", "Ny'", "Nxy'"}},
          {"Moment", 3, {"Mx'", "My'", "Mxy'"}},
          {"Shear force", 6, {"Qx'", "Qy'"}}};
}

void Adder::AddShellCorners(const ShellCorners& corners)
{
  for (const ForcePart& part : ForceParts()) {
    const std::string unit = part.first == 3 ? units.MomentPerLength() : units.ForcePer(1);
    const auto from = static_cast<std::size_t>(part.first);
    grid.AddPointArray(
        {part.name, unit, part.components}, static_cast<int>(part.components.size()),
        {.ofNode = [&, from](int i) { return Values(corners.OfNode(i).forces).subspan(from); },
         .ofBeamPoint = NoValue,
         .ofCopy = [&, from](int i) { return Values(corners.OfCopy(i).forces).subspan(from); }});
  }
}

/// What follows from the forces of a group: principal values, the larger one first, unit vectors
/// along which the first ones act, and the shear as a vector, along which it is largest. Without
/// shells NaN, and vectors of length 0.
struct DerivedForces
{
  std::array<double, 2> N, M;
  Vec3 directionOfN{}, directionOfM{};
  Vec3 shear{};
};

Vec3 InPlane(const std::array<Vec3, 3>& axes, double x, double y)
{
  Vec3 vector{};
  for (int k = 0; k < 3; ++k)
    vector[k] = x * axes[0][k] + y * axes[1][k];
  return vector;
}

// Mohr's circle of the tensor [a c; c b] at t: m ± r with m = (a + b) / 2, r = √(((a - b) / 2)² +
// c²). Source: S. Timoshenko, J. N. Goodier, Theory of Elasticity, 3rd ed. 1970, § 9.
std::array<double, 2> PrincipalOf(const double* t)
{
  const double middle = (t[0] + t[1]) / 2.0;
  const double radius = std::hypot((t[0] - t[1]) / 2.0, t[2]);
  return {middle + radius, middle - radius};
}

// The first principal value acts along x' turned by ½ atan2(2c, a - b).
Vec3 DirectionOf(const double* t, const std::array<Vec3, 3>& axes)
{
  const double angle = 0.5 * std::atan2(2.0 * t[2], t[0] - t[1]);
  return InPlane(axes, std::cos(angle), std::sin(angle));
}

DerivedForces DerivedOf(const model::Model& model, const ShellCorners::Group& group)
{
  const double* N = group.forces.data();
  const double* M = N + 3;
  const double* Q = N + 6;
  DerivedForces derived{PrincipalOf(N), PrincipalOf(M)};
  if (group.first < 0)
    return derived;
  const std::array<Vec3, 3>& axes = model.elements[group.first].axes;
  derived.directionOfN = DirectionOf(N, axes);
  derived.directionOfM = DirectionOf(M, axes);
  derived.shear = InPlane(axes, Q[0], Q[1]);
  return derived;
}

void Adder::AddPrincipalForces(const ShellCorners& corners)
{
  const std::size_t nodes = model.nodes.size();
  std::vector<DerivedForces> list;  // of nodes, then of copies
  list.reserve(nodes + corners.CopiedNodes().size());
  for (std::size_t i = 0; i < nodes + corners.CopiedNodes().size(); ++i) {
    const bool isNode = i < nodes;
    list.push_back(DerivedOf(model, isNode ? corners.OfNode(static_cast<int>(i))
                                           : corners.OfCopy(static_cast<int>(i - nodes))));
  }
  const auto add = [&](const ArrayName& name, int components, auto member,
                       VtuGrid::Values (*none)(int)) {
    grid.AddPointArray(name, components,
                       {.ofNode = [&](int i) { return Values(list[i].*member); },
                        .ofBeamPoint = none,
                        .ofCopy = [&](int i) { return Values(list[nodes + i].*member); }});
  };
  add({"Principal membrane force at nodes", units.ForcePer(1), {"N1", "N2"}}, 2, &DerivedForces::N,
      NoValue);
  add({"Direction of N1"}, 3, &DerivedForces::directionOfN, NoForce);
  add({"Principal moment at nodes", units.MomentPerLength(), {"M1", "M2"}}, 2, &DerivedForces::M,
      NoValue);
  add({"Direction of M1"}, 3, &DerivedForces::directionOfM, NoForce);
  add({"Shear force vector", units.ForcePer(1)}, 3, &DerivedForces::shear, NoForce);
}

// Adds arrays of cells with forces of shells.
void Adder::AddOfShells(const char* prefix, const std::vector<ShellCorners::Forces>& ofElements)
{
  for (const ForcePart& part : ForceParts()) {
    const std::string unit = part.first == 3 ? units.MomentPerLength() : units.ForcePer(1);
    std::string name = part.name;
    name.front() = static_cast<char>(std::tolower(name.front()));
    grid.AddCellArray(
        {prefix + name, unit, part.components}, static_cast<int>(part.components.size()),
        [&](int e) {
          const bool has = model.elements[e].kind == model::Kind::Shell;
          return has ? Values(ofElements[e]).subspan(part.first) : NotANumber();
        },
        NotANumber());
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
  AddOfShells("Mean ", means);
}

// Of each component the value of the largest size among the points of the element, with its sign.
// With one point it would be the mean.
void Adder::AddShellExtremes()
{
  if (mostShellPoints < 2)
    return;
  std::vector<ShellCorners::Forces> extremes(model.elements.size());
  for (std::size_t e = 0; e < extremes.size(); ++e) {
    const model::Element& element = model.elements[e];
    for (int i = 0; element.kind == model::Kind::Shell && i < element.points; ++i) {
      const ShellCorners::Forces& local = results.shellPoints[element.firstPoint + i].local;
      for (std::size_t k = 0; k < local.size(); ++k) {
        if (std::fabs(local[k]) > std::fabs(extremes[e][k]))
          extremes[e][k] = local[k];
      }
    }
  }
  AddOfShells("Extreme ", extremes);
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
    adder.AddPrincipalForces(corners);
    adder.AddShellMeans();
    adder.AddShellExtremes();
  }
  adder.AddMainForces();
  adder.AddDesignMoments();
}

}  // namespace morlen
