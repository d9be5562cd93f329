// The results of a load case as one array, and the values that users see computed from it.
//
// All values of a column are linear in the loads, and none of them can be computed from the others.
// A beam has its end forces and the loads along it: forces and displacements at division points
// follow by the closed forms of SpanLoad, so that the number of points does not change the size of
// a column. Smoothing of local forces is a fixed linear map, and the column has the smoothed
// forces. Smoothed principal forces are not linear in the loads; where a problem asks for them, the
// column has the forces before smoothing too.

#include "cases/result_layout.h"

#include <algorithm>
#include <memory>

#include "assembly/element_family.h"
#include "base/array_size.h"
#include "cases/case_loads.h"
#include "cases/derived_values.h"
#include "model/elem.h"
#include "model/mesh.h"
#include "model/node.h"
#include "numeric/plex_range.h"
#include "problem/elem_loads.h"
#include "problem/loads_on_element.h"
#include "problem/problem.h"
#include "results/beam_strengths.h"
#include "results/principal_values.h"
#include "results/shell_strengths.h"
#include "results/smooth_solid.h"
#include "results/strengths.h"

namespace morlen {

namespace {

constexpr int kShellForces = 8;
constexpr int kSpanLoads = 5;  // q[4] and the strain

SpanLoad SpanLoadAt(const double* stored)
{
  SpanLoad load;
  std::copy_n(stored, 4, load.q);
  load.strain = stored[4];
  return load;
}

bool IsSmoothedMain(const Problem& problem)
{
  return problem.smoothing.on && problem.stressOutput != StressOutput::Local;
}

void DeriveShell(double* v)
{
  const PrincipalPair N = PrincipalValues(v[0], v[1], v[2]);
  const PrincipalPair M = PrincipalValues(v[3], v[4], v[5]);
  const DesignMoments design = WoodArmer(v[3], v[4], v[5]);
  const double derived[] = {N.larger,     N.smaller,    M.larger,      M.smaller,
                            design.xPlus, design.yPlus, design.xMinus, design.yMinus};
  std::copy(std::begin(derived), std::end(derived), v + kShellForces);
}

// Internal forces at the division points, from the end forces and the load along the beam.
void BeamForces(const ValueGroup& group, const BeamSpan& beam, const double* ends,
                const SpanLoad& load, double* values)
{
  const bool loaded = !load.IsZero();
  for (int i = 0; i < group.points; ++i) {
    const double t = static_cast<double>(i) / (group.points - 1);
    for (int component = 1; component <= group.linear; ++component, ++values) {
      *values = StrengthFromEnds(ends, group.linear, component, t, beam.L);
      if (loaded)
        load.AddToStrengthVectors(beam, component, t, *values);
    }
  }
}

void BeamEndForces(const ValueGroup& group, const BeamSpan& beam, const double* ends,
                   const SpanLoad& load, double* values)
{
  double fixed[2][kMaxComponents] = {};
  if (!load.IsZero())
    load.AddToReactionsVecs(beam, fixed[0], fixed[1]);
  for (const auto& end : fixed) {
    for (int k = 0; k < group.linear; ++k)
      *values++ = *ends++ + end[k];
  }
}

}  // namespace

ResultLayout::ResultLayout(const Problem& problem_, const ElementFamilies& families_)
    : problem(problem_), families(families_), meshes(problem.meshes.size())
{
  AddNodes();
  std::size_t beams = 0;
  for (const auto& mesh : problem.meshes)
    beams += mesh->GiveElemType() == Linear ? mesh->GiveElemPlex()->Count() : 0;
  frames.reserve(beams);
  for (int mesh = 0; mesh < static_cast<int>(meshes.size()); ++mesh)
    AddMesh(mesh);
  hasStresses = problem.meshes.front()->GiveElemType() == Tetrahedra && problem.smoothing.on;
  if (hasStresses) {
    stresses = size;
    size += nodeNumbers.size() * kSolidStresses;
  }
  AddGroups();
}

void ResultLayout::AddNodes()
{
  placeOfNode.assign(static_cast<std::size_t>(problem.numNodes) + 1, -1);
  problem.ForEachNodeRead([&](int number, const Node& node) {
    placeOfNode[node.number] = static_cast<int>(nodeNumbers.size());
    nodeNumbers.push_back(number);
    nodeEquations.push_back(problem.Equation(node, 1));
    if (node.constraint) {
      supportNumbers.push_back(number);
      supportEquations.push_back(problem.Equation(node, 1));
    }
  });
  reactions = nodeNumbers.size() * problem.components.count;
  size = reactions + supportNumbers.size() * problem.components.count;
}

void ResultLayout::AddMesh(int k)
{
  const Mesh& mesh = *problem.meshes[k];
  MeshPart& part = meshes[k];
  for (const Elem& elem : Each<Elem>(*mesh.GiveElemPlex()))
    part.numbers.push_back(elem.Num());
  part.place = size;
  const ElemType type = part.type = mesh.GiveElemType();
  if (type == Linear) {
    part.blockSize = 2 * problem.components.count + kSpanLoads;
    part.beams.reserve(part.numbers.size());
    for (const Elem& elem : Each<Elem>(*mesh.GiveElemPlex()))
      part.beams.push_back(MakeSpan(problem, elem, frames.emplace_back()));
  } else if (type == Triangle) {
    part.blockSize = kShellForces * families.Of(mesh).points;
  }
  const std::size_t values = part.numbers.size() * part.blockSize;
  size += values;
  if (type == Triangle && IsSmoothedMain(problem)) {
    part.rough = size;
    size += values;
  }
}

void ResultLayout::AddGroups()
{
  const int n = problem.components.count;
  const int nodes = static_cast<int>(nodeNumbers.size());
  groups.push_back({ValueKind::Displacements, -1, nodes, 1, n, 1});
  groups.push_back({ValueKind::Reactions, -1, static_cast<int>(supportNumbers.size()), 1, n, 0});
  for (int k = 0; k < static_cast<int>(meshes.size()); ++k) {
    const int items = static_cast<int>(meshes[k].numbers.size());
    const int points = problem.numOfDivisions + 1;
    if (meshes[k].type == Linear) {
      groups.push_back({ValueKind::BeamForces, k, items, points, n, 0});
      groups.push_back(
          {ValueKind::BeamDisplacements, k, items, points, problem.components.translations, 0});
      groups.push_back({ValueKind::BeamEnds, k, items, 2, n, 0});
    } else if (meshes[k].type == Triangle) {
      groups.push_back(
          {ValueKind::ShellForces, k, items, meshes[k].blockSize / kShellForces, kShellForces, 8});
    }
  }
  if (hasStresses)
    groups.push_back({ValueKind::SolidStresses, -1, nodes, 1, kSolidStresses, 4});
}

int ResultLayout::NumberOf(const ValueGroup& group, int item) const
{
  if (group.mesh >= 0)
    return meshes[group.mesh].numbers[item];
  return (group.kind == ValueKind::Reactions ? supportNumbers : nodeNumbers)[item];
}

std::vector<double> ResultLayout::ColumnOf(Solution& solution) const
{
  const int n = problem.components.count;
  std::vector<double> column(size);
  double* next = column.data();
  const auto put = [&](const ReaVecV& vector, const std::vector<int>& equations) {
    for (const int equation : equations)
      next = std::copy_n(vector.Data() + equation - 1, n, next);
  };
  put(solution.displacements, nodeEquations);
  put(solution.reactions, supportEquations);
  for (int mesh = 0; mesh < static_cast<int>(meshes.size()); ++mesh) {
    if (meshes[mesh].type == Linear)
      StoreBeams(mesh, solution, column.data() + meshes[mesh].place);
  }
  StoreShells(solution, &MeshPart::rough, column);
  Smooth(problem, families, solution, nullptr);
  StoreShells(solution, &MeshPart::place, column);
  for (std::size_t i = 0; hasStresses && i < nodeEquations.size(); ++i) {
    const int systemNumber = (nodeEquations[i] - 1) / n + 1;
    std::copy_n(solution.nodalStresses.Data() + PlaceOfStresses(systemNumber), kSolidStresses,
                column.data() + stresses + i * kSolidStresses);
  }
  return column;
}

// Stores the forces of shells at their places of one kind, where a mesh has them.
void ResultLayout::StoreShells(const Solution& solution, std::size_t MeshPart::*place,
                               std::vector<double>& column) const
{
  for (std::size_t k = 0; k < meshes.size(); ++k) {
    const ReaVecV& forces = solution.results[k].strengths;
    if (meshes[k].type == Triangle && meshes[k].*place > 0)
      std::copy_n(forces.Data(), forces.Size(), column.data() + meshes[k].*place);
  }
}

void ResultLayout::StoreBeams(int mesh, const Solution& solution, double* column) const
{
  const int ends = 2 * problem.components.count;
  const double* strengths = solution.results[mesh].strengths.Data();
  for (const BeamSpan& beam : meshes[mesh].beams) {
    column = std::copy_n(strengths, ends, column);
    const SpanLoad load = LoadOn(problem, beam, solution.elementLoads);
    column = std::copy_n(load.q, 4, column);
    *column++ = load.strain;
    strengths += ends;
  }
}

Solution ResultLayout::SolutionOf(std::span<const double> column) const
{
  const int n = problem.components.count;
  Solution solution;
  const double* next = column.data();
  const auto take = [&](ReaVecV& vector, const std::vector<int>& equations) {
    vector.resize(problem.Equations(), 0.0);
    for (const int equation : equations) {
      std::copy_n(next, n, vector.Data() + equation - 1);
      next += n;
    }
  };
  take(solution.displacements, nodeEquations);
  take(solution.reactions, supportEquations);
  for (std::size_t k = 0; k < meshes.size(); ++k)
    solution.results.push_back(ResultsOf(static_cast<int>(k), column));
  if (IsSmoothedMain(problem) && !hasStresses)
    Smooth(problem, families, solution, nullptr);
  if (hasStresses)
    solution.nodalStresses.resize(ArrayLength(problem.numNodes, kSolidStresses), 0.0);
  for (std::size_t i = 0; hasStresses && i < nodeEquations.size(); ++i) {
    const int systemNumber = (nodeEquations[i] - 1) / n + 1;
    std::copy_n(column.data() + stresses + i * kSolidStresses, kSolidStresses,
                solution.nodalStresses.Data() + PlaceOfStresses(systemNumber));
  }
  return solution;
}

// The results of a mesh; with smoothed principal values those before the smoothing.
MeshResults ResultLayout::ResultsOf(int k, std::span<const double> column) const
{
  const MeshPart& part = meshes[k];
  const Mesh& mesh = *problem.meshes[k];
  MeshResults results;
  results.numbers = part.numbers;
  results.points = families.Of(mesh).points;
  if (part.blockSize == 0)
    return results;
  const bool beams = part.type == Linear;
  const double* stored = column.data() + (part.rough ? part.rough : part.place);
  results.blockSize = beams ? part.blockSize - kSpanLoads : part.blockSize;
  results.strengths.resize(ArrayLength(std::ssize(part.numbers), results.blockSize), 0.0);
  double* strengths = results.strengths.Data();
  for (std::size_t i = 0; i < part.numbers.size(); ++i, stored += part.blockSize)
    strengths = std::copy_n(stored, results.blockSize, strengths);
  if (!beams)
    ConvertShellStrengths(problem, mesh, results);
  return results;
}

LoadSet ResultLayout::SpanLoadsOf(std::span<const double> column) const
{
  LoadSet loads;
  for (const MeshPart& part : meshes) {
    const double* stored = column.data() + part.place + part.blockSize - kSpanLoads;
    for (const BeamSpan& beam : part.beams) {
      const SpanLoad load = SpanLoadAt(stored);
      if (!load.IsZero())
        loads.onElements.push_back({beam.elem.Num(), MakeSpanSum(load)});
      stored += part.blockSize;
    }
  }
  return loads;
}

void ResultLayout::LinearValues(const ValueGroup& group, std::span<const double> column, int first,
                                int count, double* values) const
{
  const auto copyPoints = [&](std::size_t place) {
    const double* stored =
        column.data() + place + static_cast<std::size_t>(first) * group.points * group.linear;
    for (int i = 0; i < count * group.points; ++i, stored += group.linear, values += group.Width())
      std::copy_n(stored, group.linear, values);
  };
  switch (group.kind) {
    case ValueKind::Displacements:
      return copyPoints(0);
    case ValueKind::Reactions:
      return copyPoints(reactions);
    case ValueKind::ShellForces:
      return copyPoints(meshes[group.mesh].place);
    case ValueKind::SolidStresses:
      return copyPoints(stresses);
    default:
      break;
  }
  const MeshPart& part = meshes[group.mesh];
  for (int i = first; i < first + count; ++i, values += group.ValuesOfItem())
    BeamValues(group, column, part.beams[i],
               column.data() + part.place + static_cast<std::size_t>(i) * part.blockSize, values);
}

void ResultLayout::BeamValues(const ValueGroup& group, std::span<const double> column,
                              const BeamSpan& beam, const double* stored, double* values) const
{
  const SpanLoad load = SpanLoadAt(stored + 2 * problem.components.count);
  if (group.kind == ValueKind::BeamForces)
    BeamForces(group, beam, stored, load, values);
  else if (group.kind == ValueKind::BeamEnds)
    BeamEndForces(group, beam, stored, load, values);
  else
    BeamTranslations(group, column, beam, load, values);
}

void ResultLayout::BeamTranslations(const ValueGroup& group, std::span<const double> column,
                                    const BeamSpan& beam, const SpanLoad& load,
                                    double* values) const
{
  const int n = problem.components.count;
  const auto at = [&](const Node* node) {
    return column.data() + static_cast<std::size_t>(placeOfNode[node->number]) * n;
  };
  SetDisplacementVectors(beam, at(beam.elem(0)), at(beam.elem(1)), group.points - 1, values);
  for (int i = 0; !load.IsZero() && i < group.points; ++i, values += group.linear)
    load.AddToDisplacementVectors(beam, static_cast<double>(i) / (group.points - 1), values);
}

void ResultLayout::Derive(const ValueGroup& group, int points, double* values) const
{
  for (int i = 0; group.derived > 0 && i < points; ++i, values += group.Width()) {
    double* const derived = values + group.linear;
    switch (group.kind) {
      case ValueKind::Displacements:
        *derived = LengthOf(values, problem.components.translations);
        break;
      case ValueKind::ShellForces:
        DeriveShell(values);
        break;
      default:
        *derived = VonMises(values);
        PrincipalStresses(values, derived + 1);
    }
  }
}

}  // namespace morlen
