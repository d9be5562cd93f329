// The principal values m of a symmetric tensor (a, b; c): m = (a + b)/2 ± sqrt(((a - b)/2)² + c²),
// see S. P. Timoshenko, S. Woinowsky-Krieger, Theory of Plates and Shells, 2nd ed. (1959), § 10.

#include "run_program/extremes.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <utility>

#include "common/tables.h"

namespace morlen::run {

namespace {

/// Keeps the value of the largest size. Values that are all 0 are no extreme.
class Largest
{
public:
  Largest(std::string label, std::string unit) : found{std::move(label), 0.0, std::move(unit), ""}
  {
  }

  /// margin: the part by which the size has to be larger than before.
  void Judge(double value, const char* kind, int number, double margin = 0.0)
  {
    if (!(std::fabs(value) > (1.0 + margin) * std::fabs(found.value)))
      return;
    found.value = value;
    found.place = std::string(kind) + " " + std::to_string(number);
  }

  void AddTo(std::vector<Extreme>& list) const
  {
    if (found.value != 0.0)
      list.push_back(found);
  }

private:
  Extreme found;
};

double PrincipalOfLargestSize(double a, double b, double c)
{
  const double middle = (a + b) / 2.0;
  const double radius = std::hypot((a - b) / 2.0, c);
  return middle < 0.0 ? middle - radius : middle + radius;
}

double OfLargerSize(double a, double b)
{
  return std::fabs(b) > std::fabs(a) ? b : a;
}

void AddBeams(const model::Model& model, const results::Results& results, Largest& u, Largest& N,
              Largest& M)
{
  constexpr double kRounding = 1e-9;  // the ends of beams move as their nodes do, which are named
  for (const model::Element& element : model.elements) {
    for (int i = 0; element.kind == model::Kind::Beam && i < element.points; ++i) {
      const auto& [d, forces] = results.beamPoints[element.firstPoint + i];
      u.Judge(std::hypot(d[0], d[1], d[2]), "in beam", element.number, kRounding);
      N.Judge(forces[0], "in beam", element.number);
      M.Judge(OfLargerSize(forces[4], forces[5]), "in beam", element.number);
    }
  }
}

void AddShells(const model::Model& model, const results::Results& results, Largest& m, Largest& n)
{
  for (const model::Element& element : model.elements) {
    for (int i = 0; element.kind == model::Kind::Shell && i < element.points; ++i) {
      const results::ShellPoint& at = results.shellPoints[element.firstPoint + i];
      const auto& v = at.local;
      // Smoothed principal values differ from those of smoothed local ones: users read the former.
      const bool main = results.shellMain;
      m.Judge(
          main ? OfLargerSize(at.main[2], at.main[3]) : PrincipalOfLargestSize(v[3], v[4], v[5]),
          "in shell", element.number);
      n.Judge(
          main ? OfLargerSize(at.main[0], at.main[1]) : PrincipalOfLargestSize(v[0], v[1], v[2]),
          "in shell", element.number);
    }
  }
}

}  // namespace

std::string ShownUnit(const model::Units& units, const std::string& text)
{
  return units.force.empty() ? "[" + text + "]" : text;
}

std::vector<Extreme> ExtremesOf(const model::Model& model, const results::Results& results)
{
  const tables::UnitTexts units(model.units);
  const auto shown = [&](const std::string& text) { return ShownUnit(model.units, text); };
  Largest u("displacement", shown(units.Length()));
  Largest stress("von Mises", shown(units.Pressure()));
  for (std::size_t i = 0; i < model.nodes.size(); ++i) {
    const Vec3& d = results.nodes[i].displacement;
    u.Judge(std::hypot(d[0], d[1], d[2]), "at node", model.nodes[i].number);
    if (results.stresses)
      stress.Judge(results.nodes[i].vonMises, "at node", model.nodes[i].number);
  }
  Largest N("N", shown(units.Force()));
  Largest M("M", shown(units.Moment()));
  AddBeams(model, results, u, N, M);
  Largest shellMoment("shell moment", shown(units.MomentPerLength()));
  Largest shellForce("shell force", shown(units.ForcePer(1)));
  if (results.shellLocal || results.shellMain)
    AddShells(model, results, shellMoment, shellForce);
  std::vector<Extreme> extremes;
  for (const Largest* one : {&u, &N, &M, &shellMoment, &shellForce, &stress})
    one->AddTo(extremes);
  return extremes;
}

void MergeExtremes(std::vector<Extreme>& largest, std::vector<Extreme> others,
                   const std::string& suffix)
{
  for (Extreme& other : others) {
    other.place += suffix;
    const auto known = std::find_if(largest.begin(), largest.end(),
                                    [&](const Extreme& one) { return one.label == other.label; });
    if (known == largest.end())
      largest.push_back(std::move(other));
    else if (std::fabs(other.value) > std::fabs(known->value))
      *known = std::move(other);
  }
}

std::string TextOf(const Extreme& extreme)
{
  char value[32];
  std::snprintf(value, sizeof value, "%.4g", extreme.value);
  return std::string(value) + " " + extreme.unit + " " + extreme.place;
}

}  // namespace morlen::run
