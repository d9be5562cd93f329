#include "check/unit_order.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <set>
#include <string>

#include "check/recorder.h"
#include "model/constraint.h"
#include "model/elem.h"
#include "model/material.h"
#include "model/nodal_load.h"
#include "model/node.h"
#include "numeric/plex_range.h"
#include "problem/elem_loads.h"
#include "problem/problem.h"

namespace morlen::check {
namespace {

constexpr double kTolerance = 1e-9;  // of a factor, relative: sizes of units have few digits

bool AnyNonZero(const double* values, int count)
{
  return std::any_of(values, values + count, [](double value) { return value != 0.0; });
}

// "lengths 1000 times too small"; empty for a factor of 1.
std::string Amount(const char* values, double ratio)
{
  if (std::fabs(ratio - 1.0) < kTolerance)
    return {};
  const bool small = ratio > 1.0;
  return Joined(values, " ", Rounded(small ? ratio : 1.0 / ratio, 6), " times too ",
                small ? "small" : "large");
}

// "lengths multiplied by 1000"; empty for a factor of 1.
std::string Multiplied(const char* values, double factor)
{
  return std::fabs(factor - 1.0) < kTolerance
             ? std::string()
             : Joined(values, " multiplied by ", Rounded(factor, 6));
}

std::string Listed(const std::string& a, const std::string& b)
{
  return a.empty() || b.empty() ? a + b : a + ", " + b;
}

}  // namespace

void UnitOrder::Entered(ReadTopic topic, std::ptrdiff_t place)
{
  LearnSizes();
  if (topic == ReadTopic::UnitsOfMesh && !meshLine)
    meshLine = {place, std::nullopt};
  else if (topic == ReadTopic::UnitsOfMaterials && !materialsLine)
    materialsLine = {place, std::nullopt};
  else if (topic == ReadTopic::UnitsOfResults)
    resultsPlace = place;
}

// The topic is known before the line is read: the sizes are there with the next event.
void UnitOrder::LearnSizes()
{
  const Units& units = problem.units;
  if (meshLine && !meshLine->sizes)
    meshLine->sizes = {1.0, units.meshLength};
  if (materialsLine && !materialsLine->sizes)
    materialsLine->sizes = {units.matLoadForce, units.matLoadLength};
}

UnitOrder::Kind UnitOrder::KindOf(ReadItem item)
{
  switch (item) {
    case ReadItem::Node:
      return Kind::Coordinates;
    case ReadItem::Support:
      return Kind::Supports;
    case ReadItem::NodalLoad:
    case ReadItem::ElementLoad:
      return Kind::Loads;
    default:
      return Kind::Materials;
  }
}

const char* UnitOrder::NameOf(Kind kind)
{
  constexpr const char* kNames[] = {"coordinates", "materials", "supports", "loads"};
  return kNames[static_cast<int>(kind)];
}

const char* UnitOrder::KeywordFor(Kind kind)
{
  return kind == Kind::Coordinates ? "units_mesh" : "units_mat_and_load";
}

const std::optional<UnitOrder::Line>& UnitOrder::LineFor(Kind kind) const
{
  return kind == Kind::Coordinates ? meshLine : materialsLine;
}

UnitOrder::Sizes UnitOrder::SizesFor(Kind kind) const
{
  const Units& units = problem.units;
  return kind == Kind::Coordinates ? Sizes{1.0, units.meshLength}
                                   : Sizes{units.matLoadForce, units.matLoadLength};
}

UnitOrder::Group& UnitOrder::GroupOf(Kind kind, bool named, std::ptrdiff_t place)
{
  const bool governed = named || LineFor(kind).has_value();
  const Sizes from = named ? Sizes{} : SizesFor(kind);
  const Sizes to = {problem.units.resForce, problem.units.resLength};
  const auto found = std::find_if(groups.rbegin(), groups.rend(), [&](const Group& group) {
    return group.kind == kind && group.named == named && group.governed == governed &&
           group.from == from && group.to == to;
  });
  return found != groups.rend()
             ? *found
             : groups.emplace_back(Group{kind, named, governed, from, to, place});
}

void UnitOrder::Stored(ReadItem item, int number, std::ptrdiff_t place, bool named)
{
  LearnSizes();
  if (item == ReadItem::Element) {
    const Elem* elem = problem.GiveElem(number);
    if (!elem || !elem->HasOwnMaterial())
      return;
  }
  AddPowers(GroupOf(KindOf(item), named, place), item, number);
}

void UnitOrder::Add(Group& group, bool given, Powers powers)
{
  if (given && std::find(group.powers.begin(), group.powers.end(), powers) == group.powers.end())
    group.powers.push_back(powers);
}

void UnitOrder::AddPowers(Group& group, ReadItem item, int number) const
{
  switch (item) {
    case ReadItem::Node:
      if (const Node* node = group.powers.empty() ? problem.FindNode(number) : nullptr)
        Add(group, std::any_of(node->begin(), node->end(), [](double x) { return x != 0.0; }),
            {0, 1});
      return;
    case ReadItem::Support:
      return AddPowersOfSupport(group, number);
    case ReadItem::NodalLoad: {
      const Load& load = *problem.FindNode(number)->load;
      const int translations = problem.components.translations;
      Add(group, AnyNonZero(load.values.data(), translations), {1, 0});
      Add(group, AnyNonZero(load.values.data() + translations, problem.components.Rotations()),
          {1, 1});
      return;
    }
    case ReadItem::ElementLoad:
      return AddPowersOfElementLoad(group, number);
    default:
      return AddPowersOfMaterial(group, item, number);
  }
}

// Values that an element's own items leave out are not positive before they are completed.
void UnitOrder::AddPowersOfMaterial(Group& group, ReadItem item, int number) const
{
  const Material* material = item == ReadItem::Material
                                 ? Find<Material>(problem.materials, number)
                                 : problem.GiveElem(number)->GiveMaterial(&problem.materials);
  const auto add = [&](std::initializer_list<double> values, Powers powers) {
    Add(group, std::any_of(values.begin(), values.end(), [](double v) { return v > 0.0; }), powers);
  };
  const Material& m = *material;
  add({m.E1, m.E2, m.Gxy, m.Gxz, m.Gyz}, {1, -2});
  add({m.Weight}, {1, -3});
  add({m.t}, {0, 1});
  add({m.A}, {0, 2});
  add({m.Iy, m.Iz, m.J}, {0, 4});
}

void UnitOrder::AddPowersOfSupport(Group& group, int number) const
{
  const Constraint& support = *problem.FindNode(number)->constraint;
  for (int k = 0; k < problem.components.count; ++k) {
    const bool translation = k < problem.components.translations;
    const bool given = support.values[k] != 0.0;
    if (support.flags[k] == Constraint::kSpring)
      Add(group, given, translation ? Powers{1, -1} : Powers{1, 1});
    else
      Add(group, given && translation, {0, 1});
  }
}

void UnitOrder::AddPowersOfElementLoad(Group& group, int number) const
{
  const ElemType type = problem.GiveElem(number)->ElemType();
  const ElemLoadRecord record = Find<BaseElemLoads>(problem.elemLoads, number)->Last().Describe();
  const bool perLength = type == Linear || (type == Triangle && record.face != -1);
  if (record.pressure)
    Add(group, AnyNonZero(record.values.data(), 6), {1, perLength ? -1 : -2});
}

bool UnitOrder::Changes(const Group& group, const Sizes& ratio)
{
  return std::any_of(group.powers.begin(), group.powers.end(), [&](const Powers& p) {
    const double factor = std::pow(ratio.force, p.force) * std::pow(ratio.length, p.length);
    return !(std::fabs(factor - 1.0) < 1e-9);
  });
}

bool UnitOrder::Has(const Group& group, int Powers::*power)
{
  return std::any_of(group.powers.begin(), group.powers.end(),
                     [power](const Powers& p) { return p.*power != 0; });
}

// Compares the factors used with those of the lines that come later: the first line on the units of
// the kind, and the last on those of the results.
std::optional<UnitOrder::Fault> UnitOrder::LateLine(const Group& group) const
{
  const std::optional<Line>& own = LineFor(group.kind);
  const bool ownIsLate = !group.governed && own;
  const Sizes from = ownIsLate ? own->sizes.value_or(group.from) : group.from;
  const Sizes to = {problem.units.resForce, problem.units.resLength};
  const Sizes ratio = {from.force / group.from.force * (group.to.force / to.force),
                       from.length / group.from.length * (group.to.length / to.length)};
  const bool resultsAreLate = !(group.to == to);
  if (!(ownIsLate || resultsAreLate) || !Changes(group, ratio))
    return std::nullopt;
  return Fault{.place = resultsAreLate ? *resultsPlace : own->place,
               .head = Joined("'", resultsAreLate ? "units_res" : KeywordFor(group.kind),
                              "' comes after values that it should govern: "),
               .names = {},
               .lengths = Has(group, &Powers::length) ? Amount("lengths", ratio.length) : "",
               .forces = Has(group, &Powers::force) ? Amount("forces", ratio.force) : ""};
}

// Without a line on their units, values are taken in units of size 1, and the line on the results
// alone converts them.
std::optional<UnitOrder::Fault> UnitOrder::MissingLine(const Group& group) const
{
  const Sizes ratio = {group.from.force / group.to.force, group.from.length / group.to.length};
  if (group.governed || LineFor(group.kind) || !resultsPlace || !Changes(group, ratio))
    return std::nullopt;
  return Fault{.place = *resultsPlace,
               .head = Joined("'units_res' without '", KeywordFor(group.kind),
                              "' in front of the values takes them in units of size 1: "),
               .names = {},
               .lengths = Has(group, &Powers::length) ? Multiplied("lengths", ratio.length) : "",
               .forces = Has(group, &Powers::force) ? Multiplied("forces", ratio.force) : ""};
}

void UnitOrder::Report(Recorder& recorder)
{
  LearnSizes();
  std::vector<Fault> faults;
  std::set<Kind> judged;
  for (const Group& group : groups) {
    std::optional<Fault> fault = LateLine(group);
    if (!fault)
      fault = MissingLine(group);
    if (!fault || !judged.insert(group.kind).second)
      continue;
    auto known = std::find_if(faults.begin(), faults.end(), [&](const Fault& f) {
      return f.place == fault->place && f.head == fault->head;
    });
    if (known == faults.end())
      known = faults.insert(faults.end(), *fault);
    known->names = Listed(
        known->names, Joined(NameOf(group.kind), " (line ", recorder.LineNumber(group.place), ")"));
    known->lengths = known->lengths.empty() ? fault->lengths : known->lengths;
    known->forces = known->forces.empty() ? fault->forces : known->forces;
  }
  for (const Fault& fault : faults)
    recorder.Error(Code::UnitOrder, fault.place, fault.head, fault.names, "; ",
                   Listed(fault.lengths, fault.forces),
                   ". Write the lines on units in front of the mesh");
}

}  // namespace morlen::check
