#include "check/summary.h"

#include <algorithm>
#include <cmath>
#include <set>

#include "assembly/load_vector.h"
#include "assembly/solver_choice.h"
#include "check/joined.h"
#include "model/material.h"
#include "model/mesh.h"
#include "model/node.h"
#include "numeric/plex_range.h"
#include "numeric/reavecv.h"
#include "problem/problem.h"
#include "run/element_families.h"

namespace morlen::check {
namespace {

constexpr int kDigits = 6;  // of the numbers in the text

void AddCounts(const Subject& subject, Summary& summary)
{
  const Problem& problem = subject.problem;
  summary.plane = problem.problemType == kPlane && problem.components.translations == 2;
  summary.parts = static_cast<int>(subject.parts.size());
  summary.refinedShells = problem.shellFormulation == ShellFormulation::Refined;
  for (const Elem* elem : subject.elements)
    ++(elem->ElemType() == Linear     ? summary.beams
       : elem->ElemType() == Triangle ? summary.shells
                                      : summary.solids);
  for (const Node& node : Each<Node>(problem.GiveNodes())) {
    summary.box.Add(PlaceOf(node));
    ++summary.nodes;
  }
}

void AddMaterials(const Subject& subject, Summary& summary)
{
  std::set<int> used;
  for (const Elem* elem : subject.elements)
    used.insert(elem->GiveNumberedMaterial());
  for (const auto [number, material] : EachNumbered<const Material>(subject.problem.materials))
    (used.contains(number) ? summary.materials : summary.unusedMaterials).push_back(number);
}

// The volume of an element, for its self-weight. Curved six-node and ten-node elements count as
// straight between their corners.
double VolumeOf(const Elem& elem, const Material& material)
{
  if (elem.ElemType() == Linear)
    return material.A * std::sqrt(dist2(elem(0), elem(1)));
  return elem.ElemType() == Triangle ? material.t * DeterminantOf(elem) / 2.0
                                     : std::fabs(DeterminantOf(elem)) / 6.0;
}

void AddLoads(const Subject& subject, Summary& summary)
{
  const Problem& problem = subject.problem;
  const ReaVecV loads = AppliedLoads(problem, FamiliesOf(problem));
  for (const Node& node : Each<Node>(problem.GiveNodes())) {
    for (int k = 0; k < problem.components.translations; ++k)
      summary.load[k] += loads(problem.Equation(node, k + 1));
  }
  double weight = 0.0;
  for (const Elem* elem : subject.elements) {
    const Material* material = elem->GiveMaterial(&problem.materials);
    weight +=
        material && material->Weight > 0.0 ? material->Weight * VolumeOf(*elem, *material) : 0.0;
  }
  for (int k = 0; k < problem.components.translations; ++k)
    summary.weight[k] = weight * problem.gravityDirection(k + 1);
}

// A pair of nodes as one number, whatever their order.
std::uint64_t PairOf(const Node& a, const Node& b)
{
  const auto [low, high] = std::minmax(a.number, b.number);
  return static_cast<std::uint64_t>(low) << 32 | static_cast<std::uint64_t>(high);
}

std::vector<std::uint64_t> WithoutRepetitions(std::vector<std::uint64_t> pairs)
{
  std::sort(pairs.begin(), pairs.end());
  pairs.erase(std::unique(pairs.begin(), pairs.end()), pairs.end());
  return pairs;
}

/// The pairs of nodes that have an element in common.
std::vector<std::uint64_t> CouplingsOf(const Subject& subject)
{
  std::vector<std::uint64_t> pairs;
  for (const Elem* elem : subject.elements) {
    for (int i = 0; i < elem->Nnode(); ++i) {
      for (int j = i + 1; j < elem->Nnode(); ++j)
        pairs.push_back(PairOf(*(*elem)(i), *(*elem)(j)));
    }
  }
  return WithoutRepetitions(std::move(pairs));
}

// Stored numbers of the skyline: each row from its first coupled column to the diagonal.
std::int64_t ProfileEntries(const Subject& subject)
{
  const Problem& problem = subject.problem;
  std::vector<int> lowest(static_cast<std::size_t>(problem.numNodes) + 1);
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
  const std::int64_t n = problem.components.count;
  std::int64_t entries = 0;
  for (std::size_t i = 1; i < lowest.size(); ++i)
    entries += n * n * (static_cast<std::int64_t>(i) - lowest[i]) + n * (n + 1) / 2;
  return entries;
}

std::int64_t BlockEntries(const Subject& subject)
{
  const std::int64_t n = subject.problem.components.count;
  const auto pairs = static_cast<std::int64_t>(CouplingsOf(subject).size());
  return (subject.problem.numNodes + 2 * pairs) * n * n;
}

// The nodes that the conversion to six-node triangles adds: one on each edge of a three-node
// triangle.
int MidSideNodes(const Subject& subject)
{
  std::vector<std::uint64_t> edges;
  for (const Elem* elem : subject.elements) {
    for (int i = 0; i < 3 && elem->ElemType() == Triangle && elem->Nnode() == 3; ++i)
      edges.push_back(PairOf(*(*elem)(i), *(*elem)((i + 1) % 3)));
  }
  return static_cast<int>(WithoutRepetitions(std::move(edges)).size());
}

/// The solver of a run. Automatic means a large model, for which the run compares the work of the
/// solvers.
struct SolverPlan
{
  SolverType type;
  int addedNodes;  ///< by the conversion of triangles, before the solution
  long long equations;
};

SolverPlan SolverOf(const Subject& subject)
{
  const Problem& problem = subject.problem;
  const SolverType type = problem.solverSettings.type;
  const int added =
      problem.convertTo6Nodes || type == SolverType::Double ? MidSideNodes(subject) : 0;
  const long long equations =
      static_cast<long long>(problem.numNodes + added) * problem.components.count;
  const bool small = type == SolverType::Automatic && equations < kChoiceFrom;
  return {small ? SolverType::SkyLine : type, added, equations};
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
    case SolverType::Direct:
      return "Direct";
    default:
      return "Automatic";
  }
}

void AddSolver(const Subject& subject, Mesh& firstMesh, Summary& summary)
{
  const SolverPlan plan = SolverOf(subject);
  summary.solver = NameOf(plan.type);
  summary.equations = static_cast<int>(plan.equations);
  // The entries of sparse factors depend on the order of the elimination.
  if (plan.addedNodes > 0 || plan.type == SolverType::Automatic || plan.type == SolverType::Direct)
    return;
  const bool profile = plan.type == SolverType::SkyLine;
  if (profile)
    firstMesh.RenumberNodes();
  summary.entries = profile ? ProfileEntries(subject) : BlockEntries(subject);
}

// Components that are rounding errors compared with the others become 0.
std::string Listed(Point p, bool plane)
{
  const double largest = std::max({std::fabs(p[0]), std::fabs(p[1]), std::fabs(p[2])});
  for (double& value : p)
    value = std::fabs(value) > 1e-12 * largest ? value : 0.0;
  std::string text = Joined(Rounded(p[0], kDigits), ", ", Rounded(p[1], kDigits));
  return plane ? text : Joined(text, ", ", Rounded(p[2], kDigits));
}

std::string Numbers(const std::vector<int>& numbers)
{
  std::string text;
  for (const int number : numbers)
    text += Joined(" ", number);
  return text.empty() ? " none" : text;
}

// The name of a unit; its quantity in brackets when the file does not name it.
std::string UnitName(const std::string& name, const char* quantity)
{
  return name.empty() ? Joined("[", quantity, "]") : name;
}

}  // namespace

Summary Summarise(Problem& problem, const Subject& subject)
{
  Summary summary;
  AddCounts(subject, summary);
  AddMaterials(subject, summary);
  summary.units = model::UnitsOf(problem.units);
  AddLoads(subject, summary);
  AddSolver(subject, *problem.meshes.front(), summary);
  return summary;
}

std::string TextOf(const Summary& s)
{
  const std::string force = UnitName(s.units.force, "force");
  const std::string length = UnitName(s.units.length, "length");
  const std::string counted =
      s.entries > 0
          ? Joined(", matrix of ", s.entries, " numbers (",
                   Rounded(static_cast<double>(s.entries) * 8.0 / 1048576.0, kDigits), " MiB)")
          : std::string();
  return Joined("problem:    ", s.plane ? "2d" : "3d", "\nnodes:      ", s.nodes, " in ", s.parts,
                s.parts == 1 ? " part" : " parts", "\nelements:   ", s.beams, " beams, ", s.shells,
                s.refinedShells ? " shells (Refined), " : " shells, ", s.solids,
                " solids\nbox:        (", Listed(s.box.Low(), s.plane), ") to (",
                Listed(s.box.High(), s.plane), ") ", length, "\nmaterials:  used",
                Numbers(s.materials), "; unused", Numbers(s.unusedMaterials), "\ntotal load: (",
                Listed(s.load, s.plane), ") ", force, ", with weight (", Listed(s.weight, s.plane),
                ")\nunits:      results in ", force, " and ", length, "\nequations:  ", s.equations,
                ", solver ", s.solver, counted,
                s.untested.empty() ? "" : "\nmechanisms: not tested: ", s.untested, "\n");
}

}  // namespace morlen::check
