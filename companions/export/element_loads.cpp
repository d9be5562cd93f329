#include "export/element_loads.h"

#include <cmath>

#include "model/euler.h"
#include "problem/pressure_load.h"

namespace morlen {

namespace {

Vec3 Scaled(const Vec3& v, double factor)
{
  return {factor * v[0], factor * v[1], factor * v[2]};
}

// The sum of the components times the axes.
Vec3 Along(const std::array<Vec3, 3>& axes, const Vec3& components)
{
  Vec3 sum{};
  for (int axis = 0; axis < 3; ++axis) {
    for (int k = 0; k < 3; ++k)
      sum[k] += components[axis] * axes[axis][k];
  }
  return sum;
}

// The unit normal of a solid's face, outwards. The face has the corners `face` and the next two.
Vec3 FaceNormal(const model::Model& model, const model::Element& solid, int face)
{
  const auto corner = [&](int i) -> const Vec3& {
    return model.nodes[solid.nodes[(face + i) % 4]].x;
  };
  const Vec3 normal = Cross(Minus(corner(1), corner(0)), Minus(corner(2), corner(0)));
  const bool inwards = Dot(normal, Minus(corner(3), corner(0))) > 0.0;
  return Scaled(normal, (inwards ? -1.0 : 1.0) / Length(normal));
}

std::array<Vec3, 3> AxesOfFace(const Vec3& normal)
{
  const Axes axes = AxesGivenZ(ReaVec(normal[0], normal[1], normal[2]));
  return {{{axes.x(1), axes.x(2), axes.x(3)},
           {axes.y(1), axes.y(2), axes.y(3)},
           {axes.z(1), axes.z(2), axes.z(3)}}};
}

// The part of a length along the unit vector x', or of an area with the unit normal z', that shows
// across a load along the unit vector `direction`.
double ShownAcross(const model::Element& element, const Vec3& normal, const Vec3& direction)
{
  return element.kind == model::Kind::Beam ? Length(Cross(element.axes[0], direction))
                                           : std::fabs(Dot(normal, direction));
}

Vec3 GlobalLoad(const model::Model& model, const model::ElementLoad& load)
{
  const model::Element& element = model.elements[load.element];
  const Vec3 values = {load.values[0], load.values[1], load.values[2]};
  const bool ofSolid = element.kind == model::Kind::Solid;
  if (ofSolid && load.face < 0)
    return values;
  const Vec3 normal = ofSolid ? FaceNormal(model, element, load.face) : element.axes[2];
  if (load.pressure == PreassureLT_type::Local)
    return Along(ofSolid ? AxesOfFace(normal) : element.axes, values);
  const double size = Length(values);
  if (load.pressure == PreassureLT_type::GlobalProjected && size > 0.0)
    return Scaled(values, ShownAcross(element, normal, Scaled(values, 1.0 / size)));
  return values;
}

/// Adds loads to the sums of their sorts.
class Adder
{
public:
  Adder(const model::Model& forModel, const tables::UnitTexts& itsUnits)
      : model(forModel), units(itsUnits)
  {
  }

  void Add(const model::ElementLoad& load);
  std::vector<ElementLoadSum> Sums() { return std::move(sums); }

private:
  void Add(const std::string& name, const std::string& unit, int components, int element,
           const Vec3& value);

  const model::Model& model;
  const tables::UnitTexts& units;
  std::vector<ElementLoadSum> sums;
};

void Adder::Add(const model::ElementLoad& load)
{
  const model::Kind kind = model.elements[load.element].kind;
  if (load.IsTemperature())
    return Add("Free strain", "", 1, load.element, {load.values[0] * load.values[1]});
  std::string name = kind == model::Kind::Beam    ? "Line load"
                     : kind == model::Kind::Shell ? "Surface load"
                                                  : "Volume load";
  if (load.face >= 0)
    name = (kind == model::Kind::Shell ? "Edge load, edge " : "Face load, face ") +
           std::to_string(load.face + 1);
  Add(name, units.ForcePer(load.Dimensions(kind)), 3, load.element, GlobalLoad(model, load));
  if (kind == model::Kind::Beam && load.values[3] != 0.0)
    Add("Line torque", units.MomentPerLength(), 1, load.element, {load.values[3]});
}

void Adder::Add(const std::string& name, const std::string& unit, int components, int element,
                const Vec3& value)
{
  auto sum = sums.begin();
  while (sum != sums.end() && sum->name != name)
    ++sum;
  if (sum == sums.end())
    sum = sums.insert(sum, {name, unit, model.elements[element].kind, components,
                            std::vector<Vec3>(model.elements.size())});
  for (int k = 0; k < 3; ++k)
    sum->values[element][k] += value[k];
}

}  // namespace

std::vector<ElementLoadSum> SumsOfElementLoads(const model::Model& model,
                                               const tables::UnitTexts& units)
{
  Adder adder(model, units);
  for (const model::ElementLoad& load : model.elementLoads)
    adder.Add(load);
  return adder.Sums();
}

}  // namespace morlen
