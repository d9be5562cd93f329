// Which equation solver a large model gets.
//
// The numbers of the nodes give the profile and with it the work of the direct solver. The number
// of iterations has to be guessed. An iteration carries the effect of a support about one element
// further, and the effect passes through the structure several times. The estimate is therefore
// the number of elements from the supports to the farthest node, times a factor of the element
// family. The factors are measured, see bench/README.md.

#include "assembly/solver_choice.h"

#include <algorithm>
#include <cmath>
#include <sstream>
#include <vector>

#include "assembly/element_family.h"
#include "base/stprintf.h"
#include "model/constraint.h"
#include "model/elem.h"
#include "model/material.h"
#include "model/mesh.h"
#include "model/node.h"
#include "numeric/plex_range.h"
#include "problem/problem.h"
#include "solvers/sparse_solver.h"

namespace morlen {

namespace {

// Seconds on one core, about the mean of those with AVX-512 and with AVX2.
constexpr double kSecondsPerOperation = 4e-11;
/// Cleared, filled, substituted and refined: with all passes through the matrix.
constexpr double kSecondsPerProfileEntry = 1e-8;
// A byte that an iteration moves: while all of them fit into the caches, and beyond that.
constexpr double kCachedBytes = 5e7;
constexpr double kSecondsPerCachedByte = 4e-11;
constexpr double kSecondsPerFarByte = 8.5e-11;
/// Time of the incomplete factorisation, in iterations.
constexpr double kIterationsOfFactors = 12.0;

/// The iteration is taken only if the direct solver would need so many times as long: the number of
/// iterations may be underestimated.
constexpr double kLeastGain = 1.25;

/// A list of numbers for each of several things. Things and numbers count from 0.
struct NumberLists
{
  /// Calls visit(number) for those of one thing.
  template <class Visit>
  void ForEach(int thing, Visit visit) const
  {
    for (int k = starts[thing]; k < starts[thing + 1]; ++k)
      visit(numbers[k]);
  }
  int Count() const { return static_cast<int>(starts.size()) - 1; }

  std::vector<int> starts{0};
  std::vector<int> numbers;
};

/// The nodes of each element, system numbers less 1.
NumberLists NodesOfElements(const Problem& problem)
{
  NumberLists nodes;
  for (const auto& mesh : problem.meshes) {
    const int nnode = mesh->GiveNnode();
    for (const Elem& elem : Each<Elem>(*mesh->GiveElemPlex())) {
      for (int i = 0; i < nnode; ++i)
        nodes.numbers.push_back(elem(i)->number - 1);
      nodes.starts.push_back(static_cast<int>(nodes.numbers.size()));
    }
  }
  return nodes;
}

/// The things whose lists have each of the numbers below `count`.
NumberLists Turned(const NumberLists& lists, int count)
{
  NumberLists turned;
  turned.starts.assign(static_cast<std::size_t>(count) + 1, 0);
  for (const int number : lists.numbers)
    ++turned.starts[number + 1];
  for (int number = 0; number < count; ++number)
    turned.starts[number + 1] += turned.starts[number];
  turned.numbers.assign(lists.numbers.size(), 0);
  std::vector<int> next(turned.starts.begin(), turned.starts.end() - 1);
  for (int thing = 0; thing < lists.Count(); ++thing)
    lists.ForEach(thing, [&](int number) { turned.numbers[next[number]++] = thing; });
  return turned;
}

/// Nodes and elements, by system number less 1 and in order of the meshes.
struct Connections
{
  explicit Connections(const Problem& problem)
      : nodes(NodesOfElements(problem)), elements(Turned(nodes, problem.numNodes))
  {
  }

  NumberLists nodes;     ///< of each element
  NumberLists elements;  ///< at each node
};

void AddMatrices(const Problem& problem, const Connections& connections, SolverWork& work)
{
  const int n = problem.components.count;
  std::vector<int> seenFrom(static_cast<std::size_t>(problem.numNodes), -1);
  for (int node = 0; node < problem.numNodes; ++node) {
    int first = node;
    int blocks = 1;
    seenFrom[node] = node;
    connections.elements.ForEach(node, [&](int element) {
      connections.nodes.ForEach(element, [&](int other) {
        blocks += seenFrom[other] != node;
        seenFrom[other] = node;
        first = std::min(first, other);
      });
    });
    work.sparseEntries += static_cast<double>(blocks) * n * n;
    work.canIterate = work.canIterate && blocks - 1 <= SparseSolver::MAXNUMNODESAROUNDNODE;
    for (int k = 1; k <= n; ++k) {
      const double height = static_cast<double>(node - first) * n + k;
      work.profileEntries += height;
      work.operations += height * height;
    }
  }
}

/// The number of elements from the supports to the farthest node that they reach.
int Distance(const Problem& problem, const Connections& connections)
{
  std::vector<int> front;
  std::vector<char> reached(static_cast<std::size_t>(problem.numNodes), 0);
  std::vector<char> passed(static_cast<std::size_t>(connections.nodes.Count()), 0);
  const auto reach = [&](int node, std::vector<int>& to) {
    if (!reached[node])
      to.push_back(node);
    reached[node] = 1;
  };
  for (const Node& node : Each<Node>(problem.GiveNodes())) {
    if (node.constraint)
      reach(node.number - 1, front);
  }
  if (front.empty())
    return problem.numNodes;  // nothing holds the structure
  int steps = 0;
  for (std::vector<int> next; !front.empty(); front.swap(next), ++steps) {
    next.clear();
    for (const int node : front)
      connections.elements.ForEach(node, [&](int element) {
        if (!passed[element])
          connections.nodes.ForEach(element, [&](int other) { reach(other, next); });
        passed[element] = 1;
      });
  }
  return steps;
}

}  // namespace

double SolverWork::DirectSeconds() const
{
  return kSecondsPerOperation * operations + kSecondsPerProfileEntry * profileEntries;
}

double SolverWork::IterationSeconds() const
{
  // The matrix and its factors; five vectors, read and written, for each right-hand side.
  constexpr double kBytesPerEntry = 2.0 * sizeof(double);
  constexpr double kBytesPerEquation = 2.0 * 5.0 * 2.0 * sizeof(double);
  const double bytes = kBytesPerEntry * sparseEntries + kBytesPerEquation * equations;
  return kSecondsPerCachedByte * std::min(bytes, kCachedBytes) +
         kSecondsPerFarByte * std::max(bytes - kCachedBytes, 0.0);
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

SolverWork EstimateWork(const Problem& problem, const ElementFamilies& families)
{
  SolverWork work;
  const Connections connections(problem);
  work.equations = static_cast<double>(problem.numNodes) * problem.components.count;
  AddMatrices(problem, connections, work);
  double factor = 0.0;
  for (const auto& mesh : problem.meshes)
    factor = std::max(factor, families.Of(*mesh).iterationFactor(problem, *mesh));
  work.iterations = factor * Distance(problem, connections);
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

}  // namespace morlen
