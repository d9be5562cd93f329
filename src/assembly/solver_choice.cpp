// The choice of the equation solver of a large model.
//
// The work of the direct solver follows from the profile, which the numbers of the nodes give. The
// number of iterations is an estimate. An iteration spreads the effect of a support by about one
// element, and the effect passes through the structure several times. The estimate is therefore the
// number of elements from the supports to the farthest node, times a factor of the element family.
// The factors are measured, see bench/README.md.

#include "assembly/solver_choice.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <sstream>
#include <utility>
#include <vector>

#include "assembly/element_family.h"
#include "base/stprintf.h"
#include "model/constraint.h"
#include "model/elem.h"
#include "model/mesh.h"
#include "model/node.h"
#include "numeric/plex_range.h"
#include "problem/problem.h"
#include "solvers/sparse_solver.h"

namespace morlen {

namespace {

// Seconds on one core, about the mean of a processor with AVX-512 and one with AVX2.
constexpr double kSecondsPerOperation = 4e-11;
/// All passes through the matrix: clearing, assembly, substitutions and refinement.
constexpr double kSecondsPerProfileEntry = 1e-8;
/// Substitutions and refinement of each further load vector.
constexpr double kSecondsPerEntryAndFurther = 2.5e-9;
// The time that an iteration needs for each byte: the first kCachedBytes are in the caches.
constexpr double kCachedBytes = 5e7;
constexpr double kSecondsPerCachedByte = 4e-11;
constexpr double kSecondsPerFarByte = 8.5e-11;
/// The time of the incomplete factorisation in iterations.
constexpr double kIterationsOfFactors = 12.0;

/// The iteration is chosen only if the direct solver needs this many times its time, because the
/// number of iterations may be underestimated.
constexpr double kLeastGain = 1.25;

/// A list of numbers for each of several owners. Owners and numbers count from 0.
struct NumberLists
{
  /// Calls visit(number) for the numbers of one owner.
  template <class Visit>
  void ForEach(int owner, Visit visit) const
  {
    for (int k = starts[owner]; k < starts[owner + 1]; ++k)
      visit(numbers[k]);
  }
  int Count() const { return static_cast<int>(starts.size()) - 1; }

  std::vector<int> starts{0};
  std::vector<int> numbers;
};

/// The nodes of each element, system numbers less 1.
NumberLists NodesOfElements(const Meshes& meshes)
{
  NumberLists nodes;
  for (const auto& mesh : meshes) {
    const int nnode = mesh->GiveNnode();
    for (const Elem& elem : Each<Elem>(*mesh->GiveElemPlex())) {
      for (int i = 0; i < nnode; ++i)
        nodes.numbers.push_back(elem(i)->number - 1);
      nodes.starts.push_back(static_cast<int>(nodes.numbers.size()));
    }
  }
  return nodes;
}

/// For each number below `count`, the owners whose lists contain it.
NumberLists Inverted(const NumberLists& lists, int count)
{
  NumberLists inverted;
  inverted.starts.assign(static_cast<std::size_t>(count) + 1, 0);
  for (const int number : lists.numbers)
    ++inverted.starts[number + 1];
  for (int number = 0; number < count; ++number)
    inverted.starts[number + 1] += inverted.starts[number];
  inverted.numbers.assign(lists.numbers.size(), 0);
  std::vector<int> next(inverted.starts.begin(), inverted.starts.end() - 1);
  for (int owner = 0; owner < lists.Count(); ++owner)
    lists.ForEach(owner, [&](int number) { inverted.numbers[next[number]++] = owner; });
  return inverted;
}

/// The nodes of each element and the elements at each node. Nodes are counted by system number less
/// 1, elements in the order of the meshes.
struct Connections
{
  Connections(const Meshes& meshes, int numNodes)
      : nodes(NodesOfElements(meshes)), elements(Inverted(nodes, numNodes))
  {
  }

  int NodeCount() const { return elements.Count(); }

  NumberLists nodes;     ///< of each element
  NumberLists elements;  ///< at each node
};

/// Adds the sizes of both matrices and the operations of the factorisation. n: components of a
/// node.
void AddMatrices(const Connections& connections, int n, SolverWork& work)
{
  const int numNodes = connections.NodeCount();
  std::vector<int> seenFrom(static_cast<std::size_t>(numNodes), -1);
  for (int node = 0; node < numNodes; ++node) {
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
int Distance(const VoidPlex& nodes, const Connections& connections)
{
  std::vector<int> front;
  std::vector<char> reached(static_cast<std::size_t>(connections.NodeCount()), 0);
  std::vector<char> passed(static_cast<std::size_t>(connections.nodes.Count()), 0);
  const auto reach = [&](int node, std::vector<int>& to) {
    if (!reached[node])
      to.push_back(node);
    reached[node] = 1;
  };
  for (const Node& node : Each<Node>(nodes)) {
    if (node.constraint)
      reach(node.number - 1, front);
  }
  if (front.empty())
    return connections.NodeCount();  // the structure has no supports
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

std::string EstimateOf(double seconds, std::uint64_t bytes)
{
  std::ostringstream text;
  stprintf(text, "%.2g s and %.0f Mb", seconds, static_cast<double>(bytes) / (1024.0 * 1024.0));
  return text.str();
}

/// plan: of Solver Direct, when it fits; may be null.
std::string ReasonOf(const SolverChoice& choice, const DirectPlan* plan)
{
  const SolverWork& work = choice.work;
  std::ostringstream reason;
  if (!work.canIterate)
    return "a node has too many neighbours for an iteration";
  const bool sparse = choice.directType == SolverType::Direct;
  reason << "estimated "
         << (sparse ? EstimateOf(plan->Seconds(work.loadVectors), plan->bytes)
                    : EstimateOf(work.SkylineSeconds(), work.SkylineBytes()));
  stprintf(reason, ", against %.0f iterations in %.2g s", work.iterations, work.SparseSeconds());
  if (sparse)
    reason << " and Solver SkyLine with " << EstimateOf(work.SkylineSeconds(), work.SkylineBytes());
  if (!choice.fitsDirectly)
    reason << "; the direct solver does not fit into memory";
  return reason.str();
}

}  // namespace

double SolverWork::SkylineSeconds() const
{
  const double secondsPerEntry =
      kSecondsPerProfileEntry + (loadVectors - 1.0) * kSecondsPerEntryAndFurther;
  return kSecondsPerOperation * operations + secondsPerEntry * profileEntries;
}

double SolverWork::IterationSeconds(int sides) const
{
  // Matrix and factors are read. Five vectors are read and written for each right-hand side.
  constexpr double kBytesPerEntry = 2.0 * sizeof(double);
  constexpr double kBytesPerEquation = 5.0 * 2.0 * sizeof(double);
  const double bytes = kBytesPerEntry * sparseEntries + sides * kBytesPerEquation * equations;
  return kSecondsPerCachedByte * std::min(bytes, kCachedBytes) +
         kSecondsPerFarByte * std::max(bytes - kCachedBytes, 0.0);
}

// The first load vector is solved side by side with the probe, each further one by itself.
double SolverWork::AllSidesSeconds() const
{
  return IterationSeconds(2) + (loadVectors - 1.0) * IterationSeconds(1);
}

double SolverWork::SparseSeconds() const
{
  return iterations * AllSidesSeconds() + kIterationsOfFactors * IterationSeconds(2);
}

std::uint64_t SolverWork::SkylineBytes() const
{
  constexpr double kWithCopies = 1.125 * sizeof(double);
  return static_cast<std::uint64_t>(kWithCopies * profileEntries);
}

int SolverWork::IterationsWorthTrying(double directSeconds) const
{
  constexpr double kMost = 1e6;
  return static_cast<int>(std::min(kMost, std::max(1.0, directSeconds / AllSidesSeconds())));
}

SolverWork EstimateWork(const Problem& problem, const ElementFamilies& families)
{
  SolverWork work;
  const Connections connections(problem.meshes, problem.numNodes);
  work.equations = static_cast<double>(problem.numNodes) * problem.components.count;
  AddMatrices(connections, problem.components.count, work);
  double factor = 0.0;
  for (const auto& mesh : problem.meshes)
    factor = std::max(factor, families.Of(*mesh).iterationFactor(problem, *mesh));
  work.iterations = factor * Distance(problem.GiveNodes(), connections);
  return work;
}

std::uint64_t UsableMemory(std::uint64_t limit)
{
  return limit / 4 * 3;
}

double MostDirectSeconds(const SolverWork& work, std::uint64_t usableMemory)
{
  double most = std::numeric_limits<double>::infinity();
  if (work.canIterate)
    most = kLeastGain * work.SparseSeconds();
  if (work.SkylineBytes() <= usableMemory)
    most = std::min(most, work.SkylineSeconds());
  return most;
}

SolverChoice FasterSolver(const SolverWork& work, std::uint64_t usableMemory,
                          std::unique_ptr<DirectPlan> plan)
{
  const bool fits = work.SkylineBytes() <= usableMemory;
  if (plan && plan->bytes > usableMemory)
    plan.reset();
  const bool sparseIsFaster =
      plan && (!fits || plan->Seconds(work.loadVectors) < work.SkylineSeconds());
  SolverChoice choice;
  choice.work = work;
  choice.fitsDirectly = fits || plan;
  choice.directType = sparseIsFaster ? SolverType::Direct : SolverType::SkyLine;
  choice.directSeconds = sparseIsFaster ? plan->Seconds(work.loadVectors) : work.SkylineSeconds();
  const bool direct =
      !work.canIterate ||
      (choice.fitsDirectly && choice.directSeconds <= kLeastGain * work.SparseSeconds());
  choice.type = direct ? choice.directType : SolverType::Sparse;
  choice.reason = ReasonOf(choice, plan.get());
  if (choice.type == SolverType::Direct)
    choice.plan = std::move(plan);
  return choice;
}

}  // namespace morlen
