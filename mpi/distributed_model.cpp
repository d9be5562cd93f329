#include "mpi/distributed_model.h"

#include <algorithm>
#include <span>

#include "assembly/internal_forces.h"
#include "assembly/solution.h"
#include "base/array_size.h"
#include "model/constraint.h"
#include "model/node.h"
#include "numeric/plex_range.h"

namespace morlen::mpi {

namespace {

void PutVector(ByteWriter& out, const std::vector<double>& values)
{
  out.PutAll(values);
}

// Copies the blocks of a part's elements to their places in the results of the whole mesh.
void PlaceBlocks(const std::vector<PlacedElem>& placed, int elements, ReaVecV& whole,
                 const std::vector<double>& own)
{
  if (own.empty())
    return;
  const int size = static_cast<int>(own.size() / placed.size());
  if (whole.Size() == 0)
    whole.resize(ArrayLength(elements, size), 0.0);
  const double* from = own.data();
  for (const PlacedElem& one : placed) {
    std::copy_n(from, size, whole.Data() + static_cast<std::ptrdiff_t>(one.place) * size);
    from += size;
  }
}

}  // namespace

void DistributedModel::Divide(const Problem& problem, const std::vector<int>& partOfNode)
{
  elements = ElementsOfParts(problem, partOfNode, team.Count());
  nodes = NodesOfParts(problem, elements);
  const PartWriter parts(problem);
  team.Order(
      Command::TakePart,
      [&](int rank, ByteWriter& out) { parts.Write(elements[rank], nodes[rank], out); },
      [](int, ByteReader&) {});
}

Assembled DistributedModel::Assemble(const Problem& problem)
{
  Assembled sum;
  for (ReaVecV* vector : {&sum.loads, &sum.diagonal})
    vector->resize(problem.Equations(), 0.0);
  team.Order(
      Command::Assemble, [](int, ByteWriter&) {},
      [&](int rank, ByteReader& in) {
        sum.values.push_back(in.Get<std::int64_t>());
        sum.notFinite = std::max(sum.notFinite, in.Get<int>());
        Scatter(problem.components, rank, in.GetAll<double>(), sum.loads.Data());
        Scatter(problem.components, rank, in.GetAll<double>(), sum.diagonal.Data());
      });
  return sum;
}

void DistributedModel::AddForces(const Problem& problem, InternalForces& forces)
{
  const auto equations = static_cast<std::size_t>(problem.Equations());
  const std::vector<double> zeros(equations, 0.0);
  team.Order(
      Command::Forces,
      [&](int rank, ByteWriter& out) {
        out.Put(forces.Count());
        for (int index = 0; index < forces.Count(); ++index) {
          const SplitView& u = forces.Displacements(index);
          PutVector(out, Gather(problem.components, rank, u.value));
          PutVector(out, Gather(problem.components, rank, u.rest ? u.rest : zeros.data()));
        }
      },
      [&](int rank, ByteReader& in) {
        for (int index = 0; index < forces.Count(); ++index)
          Scatter(problem.components, rank, in.GetAll<double>(), forces.Forces(index).Data());
      });
}

void DistributedModel::FillStrengths(const Problem& problem, int mesh, Solution& solution)
{
  MeshResults& results = solution.results[mesh];
  const int count = static_cast<int>(results.numbers.size());
  team.Order(
      Command::Strengths,
      [&](int rank, ByteWriter& out) {
        out.Put(mesh);
        for (const ReaVecV* u : {&solution.displacements, &solution.displacementRests})
          PutVector(out, Gather(problem.components, rank, u->Data()));
      },
      [&](int rank, ByteReader& in) {
        results.blockSize = in.Get<int>();
        for (ReaVecV* values : {&results.strengths, &results.mainAngles, &results.mainStrengths})
          PlaceBlocks(elements[rank][mesh], count, *values, in.GetAll<double>());
      });
}

void DistributedModel::Scatter(const NodeComponents& components, int rank,
                               const std::vector<double>& own, double* whole) const
{
  const int n = components.count;
  const double* from = own.data();
  for (std::size_t k = 0; k < own.size() / n; ++k) {
    double* const to = whole + components.Equation(nodes[rank].numbers[k], 1) - 1;
    for (int i = 0; i < n; ++i)
      to[i] += *from++;
  }
}

std::vector<double> DistributedModel::Gather(const NodeComponents& components, int rank,
                                             const double* whole) const
{
  const int n = components.count;
  std::vector<double> own;
  own.reserve(nodes[rank].numbers.size() * n);
  for (const int node : nodes[rank].numbers) {
    const double* const first = whole + components.Equation(node, 1) - 1;
    own.insert(own.end(), first, first + n);
  }
  return own;
}

std::vector<std::vector<int>> DistributedModel::FirstFreeEquations(const Problem& problem) const
{
  std::vector<int> count(static_cast<std::size_t>(problem.numNodes), problem.components.count);
  for (const Node& node : Each<Node>(problem.GiveNodes())) {
    for (int k = 0; node.constraint && k < problem.components.count; ++k)
      count[node.number - 1] -= node.constraint->flags[k] == Constraint::kPrescribed;
  }
  std::vector<int> first(count.size(), 0);
  int next = 0;
  for (const NodesOfPart& part : nodes) {
    for (std::size_t k = 0; k < part.numbers.size(); ++k) {
      const int node = part.numbers[k] - 1;
      if (!part.owned[k])
        continue;
      first[node] = next;
      next += count[node];
    }
  }
  std::vector<std::vector<int>> ofRanks;
  for (const NodesOfPart& part : nodes) {
    std::vector<int>& own = ofRanks.emplace_back();
    for (const int node : part.numbers)
      own.push_back(first[node - 1]);
  }
  return ofRanks;
}

}  // namespace morlen::mpi
