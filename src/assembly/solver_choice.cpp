// Which equation solver a large model gets.
//
// The profile follows from the numbers of the nodes, and with it the direct solver's work. The
// number of iterations does not follow from anything that is cheap to find. What the supports do
// has to pass through the structure, about one element an iteration, and several times to and fro:
// so it is the number of elements from the supports to the farthest node, times a factor of the
// family. The factors are measured, see bench/README.md.

#include "assembly/solver_choice.h"

#include <algorithm>
#include <cmath>
#include <sstream>
#include <vector>

#include "base/stprintf.h"
#include "model/elem.h"
#include "model/material.h"
#include "model/mesh.h"
#include "model/node.h"
#include "numeric/plex_range.h"
#include "problem/constraint.h"
#include "problem/project.h"
#include "solvers/sparse_solver.h"

namespace {

// Seconds an operation, or an entry of a matrix that is read once, on one core.
constexpr double kSecondsPerOperation = 4e-11;
constexpr double kSecondsPerProfileEntry = 1e-8;  ///< cleared, copied, substituted
constexpr double kSecondsPerSparseEntry = 8e-10;  ///< of an iteration for two vectors
/// What the incomplete factors take, in iterations.
constexpr double kIterationsOfFactors = 12.0;

/// The iteration is taken only if the direct solver would need so many times as long: the number of
/// iterations may be underestimated.
constexpr double kLeastGain = 1.25;

// Iterations for each element between the supports and the farthest node.
constexpr double kPlaneFrame = 2.8;
constexpr double kSpaceFrame = 7.0;
constexpr double kFourNodeSolid = 6.5;
constexpr double kTenNodeSolid = 13.0;
constexpr double kThreeNodePlate = 10.0;
constexpr double kSixNodePlate =
    25.0;  ///< thicker than its elements are wide; else as in PlateFactor
constexpr double kCurvedShell = 250.0;

/// The elements at each node, by system number less 1.
struct ElementsAtNodes
{
  explicit ElementsAtNodes(const Project& project);

  std::vector<int> starts;
  std::vector<const Elem*> elements;
};

template <class Visit>
void ForEachElement(const Project& project, Visit visit)
{
  for (const auto& mesh : project.meshes) {
    for (const Elem& elem : Each<Elem>(*mesh->GiveElemPlex()))
      visit(elem, mesh->GiveNnode());
  }
}

ElementsAtNodes::ElementsAtNodes(const Project& project)
    : starts(static_cast<std::size_t>(project.numNodes) + 1, 0)
{
  ForEachElement(project, [&](const Elem& elem, int nnode) {
    for (int i = 0; i < nnode; ++i)
      ++starts[elem(i)->number];
  });
  for (std::size_t node = 1; node < starts.size(); ++node)
    starts[node] += starts[node - 1];
  elements.resize(static_cast<std::size_t>(starts.back()));
  std::vector<int> next(starts.begin(), starts.end() - 1);
  ForEachElement(project, [&](const Elem& elem, int nnode) {
    for (int i = 0; i < nnode; ++i)
      elements[next[elem(i)->number - 1]++] = &elem;
  });
}

/// Calls visit(node less 1) for all nodes of the elements at a node, itself included, once each.
class Neighbours
{
public:
  explicit Neighbours(const Project& project)
      : at(project), seenIn(static_cast<std::size_t>(project.numNodes), 0)
  {
  }

  template <class Visit>
  void ForEach(int node, Visit visit)
  {
    ++visits;
    for (int s = at.starts[node]; s < at.starts[node + 1]; ++s) {
      const Elem& elem = *at.elements[s];
      for (int i = 0; i < elem.Nnode(); ++i) {
        const int other = elem(i)->number - 1;
        if (seenIn[other] == visits)
          continue;
        seenIn[other] = visits;
        visit(other);
      }
    }
  }

private:
  ElementsAtNodes at;
  std::vector<int> seenIn;  ///< the last visit that met a node
  int visits = 0;
};

void AddMatrices(const Project& project, Neighbours& neighbours, SolverWork& work)
{
  const int n = project.freeDegrees;
  for (int node = 0; node < project.numNodes; ++node) {
    int first = node;
    double blocks = 0.0;
    neighbours.ForEach(node, [&](int other) {
      first = std::min(first, other);
      blocks += 1.0;
    });
    work.sparseEntries += std::max(blocks, 1.0) * n * n;
    work.canIterate = work.canIterate && blocks - 1.0 <= SparseSolver::MAXNUMNODESAROUNDNODE;
    for (int k = 1; k <= n; ++k) {
      const double height = static_cast<double>(node - first) * n + k;
      work.profileEntries += height;
      work.operations += height * height;
    }
  }
}

/// The number of elements from the supports to the farthest node that they reach.
int Distance(const Project& project, Neighbours& neighbours)
{
  std::vector<int> front;
  std::vector<bool> reached(static_cast<std::size_t>(project.numNodes), false);
  const auto reach = [&](int node, std::vector<int>& to) {
    if (!reached[node])
      to.push_back(node);
    reached[node] = true;
  };
  for (const Node& node : Each<Node>(project.GiveNodes())) {
    if (node.constraint)
      reach(node.number - 1, front);
  }
  int steps = 0;
  for (std::vector<int> next; !front.empty(); front.swap(next), ++steps) {
    next.clear();
    for (const int node : front)
      neighbours.ForEach(node, [&](int other) { reach(other, next); });
  }
  return steps;
}

/// Thin plates are as much slower as their elements are wider than thick, squared.
double PlateFactor(const Project& project)
{
  double slender = 1.0;
  for (const auto& mesh : project.meshes) {
    if (mesh->GiveElemType() != Triangle)
      continue;
    for (const Elem& elem : Each<Elem>(*mesh->GiveElemPlex())) {
      const double t = project.RequireMaterial(elem).t;
      slender = std::max(slender, dist2(elem(0), elem(1)) / (t * t));
    }
  }
  return slender;
}

double FactorOf(const Project& project, const Mesh& mesh)
{
  switch (mesh.GiveElemType()) {
    case Linear:
      return project.freeDegrees == 3 ? kPlaneFrame : kSpaceFrame;
    case Triangle: {
      const auto flat = std::count(project.coplanarity.begin(), project.coplanarity.end(), 1);
      if (flat < project.numNodes)
        return kCurvedShell;
      return PlateFactor(project) * (mesh.GiveNnode() == 3 ? kThreeNodePlate : kSixNodePlate);
    }
    default:
      return mesh.GiveNnode() == 4 ? kFourNodeSolid : kTenNodeSolid;
  }
}

}  // namespace

double SolverWork::DirectSeconds() const
{
  return kSecondsPerOperation * operations + kSecondsPerProfileEntry * profileEntries;
}

double SolverWork::IterationSeconds() const
{
  return kSecondsPerSparseEntry * sparseEntries;
}

double SolverWork::SparseSeconds() const
{
  return (iterations + kIterationsOfFactors) * IterationSeconds();
}

std::uint64_t SolverWork::DirectBytes() const
{
  constexpr double kWithCopies = 1.125 * sizeof(double);
  return static_cast<std::uint64_t>(kWithCopies * profileEntries);
}

int SolverWork::IterationsWorthTrying() const
{
  constexpr double kMost = 1e6;
  return static_cast<int>(std::min(kMost, std::max(1.0, DirectSeconds() / IterationSeconds())));
}

SolverWork EstimateWork(const Project& project)
{
  SolverWork work;
  Neighbours neighbours(project);
  AddMatrices(project, neighbours, work);
  double factor = 0.0;
  for (const auto& mesh : project.meshes)
    factor = std::max(factor, FactorOf(project, *mesh));
  work.iterations = factor * Distance(project, neighbours);
  return work;
}

std::uint64_t UsableMemory(std::uint64_t limit)
{
  return limit / 4 * 3;
}

SolverChoice FasterSolver(const SolverWork& work, std::uint64_t usableMemory)
{
  const bool fits = work.DirectBytes() <= usableMemory;
  if (!work.canIterate)
    return {SolverType::SkyLine, "a node has too many neighbours for an iteration", work, true};
  const bool direct = fits && work.DirectSeconds() <= kLeastGain * work.SparseSeconds();
  std::ostringstream reason;
  stprintf(reason, "estimated %.2g s and %.0f Mb, against %.0f iterations in %.2g s",
           work.DirectSeconds(), static_cast<double>(work.DirectBytes()) / (1024.0 * 1024.0),
           work.iterations, work.SparseSeconds());
  if (!fits)
    reason << "; the direct solver does not fit into memory";
  return {direct ? SolverType::SkyLine : SolverType::Sparse, reason.str(), work, fits};
}
