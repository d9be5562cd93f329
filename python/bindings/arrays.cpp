#include "arrays.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "base/interruption.h"
#include "model/mesh.h"
#include "model/node.h"
#include "numeric/matriu.h"
#include "numeric/plex_range.h"
#include "problem/beam_span.h"
#include "problem/loads_on_element.h"
#include "results/beam_strengths.h"
#include "results/smooth_solid.h"

namespace morlen::python {

namespace {

/// Calls visit(mesh index, mesh) for the meshes of a type.
template <class Visit>
void ForEachMesh(const Problem& problem, ElemType type, Visit visit)
{
  for (std::size_t k = 0; k < problem.meshes.size(); ++k) {
    if (problem.meshes[k]->GiveElemType() == type)
      visit(k, *problem.meshes[k]);
  }
}

/// Calls visit(mesh index, beam) for all beams.
template <class Visit>
void ForEachBeam(const Problem& problem, Visit visit)
{
  ForEachMesh(problem, Linear, [&](std::size_t k, const Mesh& mesh) {
    for (const Elem& elem : Each<Elem>(*mesh.GiveElemPlex())) {
      CheckInterruption();
      visit(k, elem);
    }
  });
}

}  // namespace

std::size_t CountNodes(const Problem& problem)
{
  return static_cast<std::size_t>(problem.initialNumNodes);
}

void FillNodes(const Problem& problem, int* numbers, double* places)
{
  problem.ForEachNodeRead([&](int number, const Node& node) {
    *numbers++ = number;
    for (int k = 0; k < 3; ++k)
      *places++ = k < node.Size() ? node(k + 1) : 0.0;
  });
}

std::size_t CountElements(const Problem& problem, ElemType type)
{
  std::size_t count = 0;
  ForEachMesh(problem, type, [&](std::size_t, const Mesh& mesh) {
    count += static_cast<std::size_t>(mesh.GiveElemPlex()->Count());
  });
  return count;
}

int MostNodes(const Problem& problem, ElemType type)
{
  int most = 0;
  ForEachMesh(problem, type,
              [&](std::size_t, const Mesh& mesh) { most = std::max(most, mesh.GiveNnode()); });
  return most;
}

void FillElements(const Problem& problem, ElemType type, int width, int* numbers, int* nodes,
                  int* materials)
{
  ForEachMesh(problem, type, [&](std::size_t, const Mesh& mesh) {
    for (const Elem& elem : Each<Elem>(*mesh.GiveElemPlex())) {
      *numbers++ = elem.Num();
      *materials++ = elem.GiveNumberedMaterial();
      for (int i = 0; i < width; ++i)
        *nodes++ = i < elem.Nnode() && elem(i) ? mesh.GiveOldNumber(elem(i)) : 0;
    }
  });
}

void FillNodal(const Problem& problem, const ReaVecV& values, double* rows)
{
  const int n = problem.components.count;
  problem.ForEachNodeRead([&](int, const Node& node) {
    rows = std::copy_n(values.Data() + problem.Equation(node, 1) - 1, n, rows);
  });
}

void FillBeamForces(const Problem& problem, const Solution& solution, int points, double* rows)
{
  constexpr int kPlanePlaces[] = {0, 1, 5};
  const int n = problem.components.count;
  Matriu T;
  ForEachBeam(problem, [&](std::size_t mesh, const Elem& elem) {
    const BeamSpan beam = MakeSpan(problem, elem, T);
    const SpanLoad load = LoadOn(problem, beam, solution.elementLoads);
    const bool loaded = !load.IsZero();
    for (int i = 0; i < points; ++i, rows += kBeamForces) {
      const double t = points == 1 ? 0.5 : static_cast<double>(i) / (points - 1);
      std::fill_n(rows, kBeamForces, 0.0);
      for (int k = 1; k <= n; ++k) {
        double& value = rows[n == 3 ? kPlanePlaces[k - 1] : k - 1];
        value = GiveStrength(solution.results[mesh], elem.Num(), k, t, beam.L);
        if (loaded)
          load.AddToStrengthVectors(beam, k, t, value);
      }
    }
  });
}

void FillBeamDisplacements(const Problem& problem, const Solution& solution, int points,
                           double* rows)
{
  const int n = problem.components.translations;
  const int divisions = points - 1;
  Matriu T;
  ForEachBeam(problem, [&](std::size_t, const Elem& elem) {
    const BeamSpan beam = MakeSpan(problem, elem, T);
    SetDisplacementVectors(problem.components, solution.displacements, elem, beam.hingeCode, T,
                           divisions, rows);
    const SpanLoad load = LoadOn(problem, beam, solution.elementLoads);
    for (int i = 0; i < points; ++i, rows += n) {
      if (!load.IsZero())
        load.AddToDisplacementVectors(beam, static_cast<double>(i) / divisions, rows);
    }
  });
}

int ShellPoints(const Problem& problem, const Solution& solution)
{
  int most = 0;
  ForEachMesh(problem, Triangle, [&](std::size_t k, const Mesh&) {
    most = std::max(most, solution.results[k].points);
  });
  return most;
}

void FillShellForces(const Problem& problem, const Solution& solution, bool main, double* rows)
{
  const int most = ShellPoints(problem, solution);
  const bool apart = main && problem.stressOutput == StressOutput::MainAndLocal;
  ForEachMesh(problem, Triangle, [&](std::size_t k, const Mesh&) {
    const MeshResults& results = solution.results[k];
    const double* value = (apart ? results.mainStrengths : results.strengths).Data();
    const int own = kShellForces * results.points;
    const int absent = kShellForces * (most - results.points);
    for (std::size_t i = 0; i < results.numbers.size(); ++i, value += own) {
      rows = std::copy_n(value, own, rows);
      rows = std::fill_n(rows, absent, std::numeric_limits<double>::quiet_NaN());
    }
  });
}

void FillSolidStress(const Problem& problem, const Solution& solution, double* rows)
{
  // The solution has them as x, y, z, xy, xz, yz.
  constexpr int kOrder[] = {0, 1, 2, 3, 5, 4};
  problem.ForEachNodeRead([&](int, const Node& node) {
    const double* const stresses = solution.nodalStresses.Data() + PlaceOfStresses(node.number);
    for (const int k : kOrder)
      *rows++ = stresses[k];
  });
}

}  // namespace morlen::python
