#include "check/summary.h"

#include <algorithm>
#include <cmath>
#include <set>

#include "assembly/solver_choice.h"
#include "check/joined.h"
#include "model/material.h"
#include "model/mesh.h"
#include "model/node.h"
#include "numeric/plex_range.h"
#include "problem/element_family.h"
#include "problem/project.h"

namespace morlen::check {
namespace {

void AddCounts(const Project& project, const Subject& subject, Summary& summary)
{
  summary.plane = project.problemType == kPlane && project.translations == 2;
  summary.parts = static_cast<int>(subject.parts.size());
  for (const Elem* elem : subject.elements)
    ++(elem->ElemType() == Linear     ? summary.beams
       : elem->ElemType() == Triangle ? summary.shells
                                      : summary.solids);
  for (const Node& node : Each<Node>(project.GiveNodes())) {
    const Point place = PlaceOf(node);
    for (int k = 0; k < 3; ++k) {
      summary.low[k] = summary.nodes == 0 ? place[k] : std::min(summary.low[k], place[k]);
      summary.high[k] = summary.nodes == 0 ? place[k] : std::max(summary.high[k], place[k]);
    }
    ++summary.nodes;
  }
}

void AddMaterials(const Project& project, const Subject& subject, Summary& summary)
{
  std::set<int> used;
  for (const Elem* elem : subject.elements)
    used.insert(elem->GiveMaterialNum());
  for (const auto [number, material] : EachNumbered<const Material>(project.materials))
    (used.contains(number) ? summary.materials : summary.unusedMaterials).push_back(number);
}

// The part of the volume that the weight acts on, by the corners.
double VolumeOf(const Elem& elem, const Material& material)
{
  if (elem.ElemType() == Linear)
    return material.A * std::sqrt(dist2(elem(0), elem(1)));
  const Point a = PlaceOf(*elem(0));
  const Point normal = Cross(Minus(PlaceOf(*elem(1)), a), Minus(PlaceOf(*elem(2)), a));
  if (elem.ElemType() == Triangle)
    return material.t * std::sqrt(Dot(normal, normal)) / 2.0;
  return std::fabs(Dot(normal, Minus(PlaceOf(*elem(3)), a))) / 6.0;
}

void AddLoads(Project& project, const Subject& subject, Summary& summary)
{
  project.displacements.resize(project.numNodes * project.freeDegrees, 0.0);
  project.displacements = 0.0;
  project.AddNodalLoads();
  for (const auto& mesh : project.meshes)
    (project.*FamilyOf(*mesh).addLoads)(mesh.get());
  for (const Node& node : Each<Node>(project.GiveNodes())) {
    for (int k = 0; k < project.translations; ++k)
      summary.load[k] += project.displacements(project.Equation(node, k + 1));
  }
  double weight = 0.0;
  for (const Elem* elem : subject.elements) {
    const Material* material = elem->GiveMaterial(&project.materials);
    weight +=
        material && material->Weight > 0.0 ? material->Weight * VolumeOf(*elem, *material) : 0.0;
  }
  for (int k = 0; k < project.translations; ++k)
    summary.weight[k] = weight * project.gravityDirection(k + 1);
}

/// Pairs of coupled nodes, the lower number first, each once.
std::vector<std::uint64_t> CouplingsOf(const Subject& subject)
{
  std::vector<std::uint64_t> pairs;
  for (const Elem* elem : subject.elements) {
    for (int i = 0; i < elem->Nnode(); ++i) {
      for (int j = i + 1; j < elem->Nnode(); ++j) {
        const auto a = static_cast<std::uint64_t>((*elem)(i)->number);
        const auto b = static_cast<std::uint64_t>((*elem)(j)->number);
        pairs.push_back(std::min(a, b) << 32 | std::max(a, b));
      }
    }
  }
  std::sort(pairs.begin(), pairs.end());
  pairs.erase(std::unique(pairs.begin(), pairs.end()), pairs.end());
  return pairs;
}

// Row by row from the first coupled column to the diagonal.
std::int64_t ProfileEntries(const Project& project, const Subject& subject)
{
  std::vector<int> lowest(static_cast<std::size_t>(project.numNodes) + 1);
  for (std::size_t i = 0; i < lowest.size(); ++i)
    lowest[i] = static_cast<int>(i);
  for (const Elem* elem : subject.elements) {
    int low = (*elem)(0)->number;
    for (int i = 1; i < elem->Nnode(); ++i)
      low = std::min(low, (*elem)(i)->number);
    for (int i = 0; i < elem->Nnode(); ++i) {
      int& known = lowest[static_cast<std::size_t>((*elem)(i)->number)];
      known = std::min(known, low);
    }
  }
  const std::int64_t n = project.freeDegrees;
  std::int64_t entries = 0;
  for (std::size_t i = 1; i < lowest.size(); ++i)
    entries += n * n * (static_cast<std::int64_t>(i) - lowest[i]) + n * (n + 1) / 2;
  return entries;
}

std::int64_t BlockEntries(const Project& project, const Subject& subject)
{
  const auto blocks = project.numNodes + 2 * static_cast<std::int64_t>(CouplingsOf(subject).size());
  return blocks * project.freeDegrees * project.freeDegrees;
}

// Nodes in the middle of the edges of three-node triangles.
int MidSideNodes(const Subject& subject)
{
  std::vector<std::uint64_t> edges;
  for (const Elem* elem : subject.elements) {
    for (int i = 0; i < 3 && elem->ElemType() == Triangle && elem->Nnode() == 3; ++i) {
      const auto a = static_cast<std::uint64_t>((*elem)(i)->number);
      const auto b = static_cast<std::uint64_t>((*elem)((i + 1) % 3)->number);
      edges.push_back(std::min(a, b) << 32 | std::max(a, b));
    }
  }
  std::sort(edges.begin(), edges.end());
  return static_cast<int>(std::unique(edges.begin(), edges.end()) - edges.begin());
}

void AddSolver(Project& project, const Subject& subject, Summary& summary)
{
  const SolverTaken taken = SolverOf(project, subject);
  summary.solver = taken.name;
  summary.equations = (project.numNodes + taken.addedNodes) * project.freeDegrees;
  if (taken.addedNodes > 0 || project.solverSettings.type == SolverType::Automatic)
    return;
  const bool profile = project.solverSettings.type == SolverType::SkyLine;
  if (profile)
    project.meshes.front()->RenumberNodes();
  summary.entries = profile ? ProfileEntries(project, subject) : BlockEntries(project, subject);
}

std::string Rounded(double value)
{
  char text[32];
  std::snprintf(text, sizeof text, "%.6g", value);
  return text;
}

// What is small beside the other components is rounding error.
std::string Listed(Point p, bool plane)
{
  const double largest = std::max({std::fabs(p[0]), std::fabs(p[1]), std::fabs(p[2])});
  for (double& value : p)
    value = std::fabs(value) > 1e-12 * largest ? value : 0.0;
  std::string text = Joined(Rounded(p[0]), ", ", Rounded(p[1]));
  return plane ? text : Joined(text, ", ", Rounded(p[2]));
}

std::string Numbers(const std::vector<int>& numbers)
{
  std::string text;
  for (const int number : numbers)
    text += Joined(" ", number);
  return text.empty() ? " none" : text;
}

// In brackets what is measured, where the file does not name the unit.
std::string UnitName(const std::string& name, const char* measured)
{
  return name.empty() ? Joined("[", measured, "]") : name;
}

const char* NameOf(SolverType type)
{
  switch (type) {
    case SolverType::SkyLine:
      return "SkyLine";
    case SolverType::Sparse:
      return "Sparse";
    case SolverType::Double:
      return "Double";
    default:
      return "Automatic";
  }
}

}  // namespace

SolverTaken SolverOf(Project& project, const Subject& subject)
{
  SolverType& type = project.solverSettings.type;
  const int added =
      project.convertTo6Nodes || type == SolverType::Double ? MidSideNodes(subject) : 0;
  const long long equations =
      static_cast<long long>(project.numNodes + added) * project.freeDegrees;
  if (type == SolverType::Automatic && equations < kChoiceFrom)
    type = SolverType::SkyLine;
  return {NameOf(type), added};
}

Summary Summarise(Project& project, const Subject& subject)
{
  Summary summary;
  AddCounts(project, subject, summary);
  AddMaterials(project, subject, summary);
  summary.units = model::UnitsOf(project);
  AddLoads(project, subject, summary);
  AddSolver(project, subject, summary);
  return summary;
}

std::string TextOf(const Summary& s)
{
  const std::string force = UnitName(s.units.force, "force");
  const std::string length = UnitName(s.units.length, "length");
  const std::string counted =
      s.entries > 0 ? Joined(", matrix of ", s.entries, " numbers (",
                             Rounded(static_cast<double>(s.entries) * 8.0 / 1048576.0), " MiB)")
                    : std::string();
  return Joined("problem:    ", s.plane ? "2d" : "3d", "\nnodes:      ", s.nodes, " in ", s.parts,
                s.parts == 1 ? " part" : " parts", "\nelements:   ", s.beams, " beams, ", s.shells,
                " shells, ", s.solids, " solids\nbox:        (", Listed(s.low, s.plane), ") to (",
                Listed(s.high, s.plane), ") ", length, "\nmaterials:  used", Numbers(s.materials),
                "; unused", Numbers(s.unusedMaterials), "\ntotal load: (", Listed(s.load, s.plane),
                ") ", force, ", with weight (", Listed(s.weight, s.plane),
                ")\nunits:      results in ", force, " and ", length, "\nequations:  ", s.equations,
                ", solver ", s.solver, counted, "\n");
}

}  // namespace morlen::check
