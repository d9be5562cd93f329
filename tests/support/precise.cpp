// The reference solution in higher precision: supports, the profile system of equations, and the
// refinement of its solution. Code for several number types is a template on the type R.

#include "support/precise.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <numeric>
#include <utility>

#include "support/precise_elements.h"
#include "support/precise_refined.h"

namespace morlen {

namespace {

using namespace precise;

// Numbers of 113 bits. On processors without __float128, long double has 113 bits.
#ifdef __SIZEOF_FLOAT128__
// An extension of the compiler, which `using` would not let pass.
__extension__ typedef __float128 Quad;  // NOLINT(modernize-use-using)
#else
using Quad = long double;
#endif

// --- Elements ---

enum class Family
{
  Beams,
  Triangles,
  Tetrahedra
};

/// Calls visit(element, family) for each element.
template <class R, class Visit>
void ForEachElement(const Structure& s, Visit visit)
{
  for (std::size_t i = 0; i < s.beams.size(); ++i)
    visit(BeamElement<R>(s, static_cast<int>(i)), Family::Beams);
  const std::vector<char> folded = s.shell.refined ? std::vector<char>() : FoldedNodes(s);
  const std::vector<double> shares = s.shell.refined ? SharesOfNodes(s) : std::vector<double>();
  for (std::size_t i = 0; i < s.triangles.size(); ++i) {
    const int index = static_cast<int>(i);
    visit(s.shell.refined ? RefinedTriangleElement<R>(s, index, shares)
                          : TriangleElement<R>(s, index, folded),
          Family::Triangles);
  }
  for (std::size_t i = 0; i < s.tetrahedra.size(); ++i)
    visit(SolidElement<R>(s, static_cast<int>(i)), Family::Tetrahedra);
}

// --- Supports ---

/// The support of each node. Its axes are computed from the angles as doubles: a difference of
/// 1e-16 of an angle would change the model, not the accuracy of its solution.
template <class R>
class Supports
{
public:
  explicit Supports(const Structure& s) : n(s.Components()), of(s.nodes.size())
  {
    for (const Frame::Support& support : s.supports) {
      Held& held = of[support.node - 1];
      held.flags = support.flags;
      for (int k = 0; k < 6; ++k)
        held.values[k] = R(support.values[k]);
      if (support.euler)
        SetAxes(*support.euler, held);
    }
    if (!s.hinges.empty())
      FixLooseRotations(s);
  }

  bool IsPrescribed(int equation) const { return of[equation / n].flags[equation % n] == 1; }
  R Value(int equation) const { return of[equation / n].values[equation % n]; }
  R Spring(int equation) const
  {
    return of[equation / n].flags[equation % n] == 2 ? Value(equation) : R(0);
  }
  /// Sets the rotations without stiffness to 0.
  void FixLoose(std::vector<R>& u) const
  {
    for (const int equation : loose)
      u[equation] = R(0);
  }
  /// True when the support of the node may carry a force in this equation.
  bool Carries(int equation) const
  {
    return of[equation / n].hasAxes || of[equation / n].flags[equation % n] != 0;
  }

  void ToSupportAxes(std::vector<R>& values) const
  {
    for (std::size_t i = 0; i < of.size(); ++i) {
      if (of[i].hasAxes)
        TurnToLocal(of[i].axes, n, values.data() + i * n);
    }
  }
  void ToGlobalAxes(std::vector<R>& values) const
  {
    for (std::size_t i = 0; i < of.size(); ++i) {
      if (of[i].hasAxes)
        TurnToGlobal(of[i].axes, n, values.data() + i * n);
    }
  }
  const Axes<R>* AxesAt(int node) const { return of[node].hasAxes ? &of[node].axes : nullptr; }

private:
  struct Held
  {
    std::array<int, 6> flags{};
    std::array<R, 6> values{};
    bool hasAxes = false;
    Axes<R> axes{};
  };

  static void SetAxes(const Vector3& a, Held& held)
  {
    const R c1(std::cos(a[0])), s1(std::sin(a[0])), c2(std::cos(a[1])), s2(std::sin(a[1])),
        c3(std::cos(a[2])), s3(std::sin(a[2]));
    held.hasAxes = true;
    held.axes = {Vec<R>{c3 * c1 - c2 * s1 * s3, -s3 * c1 - c2 * s1 * c3, s2 * s1},
                 {c3 * s1 + c2 * c1 * s3, -s3 * s1 + c2 * c1 * c3, -s2 * c1},
                 {s3 * s2, c3 * s2, c2}};
  }

  /// Rotations of nodes at which every beam end is hinged are prescribed.
  void FixLooseRotations(const Structure& s)
  {
    std::vector<char> held(s.nodes.size(), 0);
    for (std::size_t i = 0; i < s.beams.size(); ++i) {
      const auto found = s.hinges.find(static_cast<int>(i) + 1);
      const int code = found == s.hinges.end() ? 11 : found->second;
      held[s.beams[i].first - 1] |= static_cast<char>(code / 10);
      held[s.beams[i].second - 1] |= static_cast<char>(code % 10);
    }
    for (const std::vector<int>& triangle : s.triangles) {
      for (const int node : triangle)
        held[node - 1] = 1;
    }
    for (std::size_t i = 0; i < of.size(); ++i) {
      for (int k = s.space ? 3 : 2; k < n && !held[i]; ++k) {
        if (of[i].flags[k] != 0)
          continue;
        of[i].flags[k] = 1;
        loose.push_back(static_cast<int>(i) * n + k);
      }
    }
  }

  int n;
  std::vector<Held> of;
  std::vector<int> loose;
};

// --- The system of equations ---

/// The lower half of a symmetric matrix, row by row from its first entry, and its factors
/// L·D·Lᵀ in the same place.
template <class R>
class Profile
{
public:
  explicit Profile(const std::vector<int>& first_) : first(first_), starts(first_.size() + 1, 0)
  {
    for (std::size_t i = 0; i < first.size(); ++i)
      starts[i + 1] = starts[i] + i - first[i] + 1;
    values.assign(starts.back(), R(0));
  }

  /// The entry (i, j), first <= j <= i.
  R& At(std::size_t i, std::size_t j) { return values[starts[i] + (j - first[i])]; }

  /// False when the matrix is not positive definite.
  bool Factorise()
  {
    for (std::size_t i = 0; i < first.size(); ++i) {
      const std::size_t begin = first[i];
      for (std::size_t j = begin; j < i; ++j)
        At(i, j) -= Product(i, j);
      R& diagonal = At(i, i);
      for (std::size_t j = begin; j < i; ++j) {
        const R ratio = At(i, j) / At(j, j);
        diagonal -= ratio * At(i, j);
        At(i, j) = ratio;
      }
      if (!(diagonal > R(0)))
        return false;
    }
    return true;
  }

  void Solve(std::vector<R>& b)
  {
    for (std::size_t i = 0; i < b.size(); ++i) {
      for (std::size_t j = first[i]; j < i; ++j)
        b[i] -= At(i, j) * b[j];
    }
    for (std::size_t i = 0; i < b.size(); ++i)
      b[i] /= At(i, i);
    for (std::size_t i = b.size(); i-- > 0;) {
      for (std::size_t j = first[i]; j < i; ++j)
        b[j] -= At(i, j) * b[i];
    }
  }

private:
  /// The inner product of the rows i and j over the columns before j that both have.
  R Product(std::size_t i, std::size_t j)
  {
    const std::size_t begin = std::max(first[i], first[j]);
    if (begin >= j)
      return R(0);
    const R* const a = &At(i, begin);
    const R* const b = &At(j, begin);
    R sum(0);
    for (std::size_t k = 0; k < j - begin; ++k)
      sum += a[k] * b[k];
    return sum;
  }

  std::vector<int> first;
  std::vector<std::size_t> starts;
  std::vector<R> values;
};

/// The order of the nodes in the matrix: that of the structure or, if the profile is smaller, that
/// along its longest side.
class Ordering
{
public:
  explicit Ordering(const Structure& structure) : s(structure), place(s.nodes.size())
  {
    std::vector<int> order(place.size());
    std::iota(order.begin(), order.end(), 0);
    SetPlaces(order);
    const std::vector<int> given = place;
    const std::vector<int> lowest = FirstPlaces();
    const int axis = LongestAxis();
    std::stable_sort(order.begin(), order.end(),
                     [&](int a, int b) { return s.nodes[a][axis] < s.nodes[b][axis]; });
    SetPlaces(order);
    if (Size(FirstPlaces()) >= Size(lowest))
      place = given;
  }

  /// The row of an equation.
  int Row(int equation) const
  {
    const int n = s.Components();
    return place[equation / n] * n + equation % n;
  }

  /// First entry of each row of the matrix.
  std::vector<int> FirstEntries() const
  {
    const int n = s.Components();
    std::vector<int> first;
    for (const int low : FirstPlaces())
      first.insert(first.end(), n, low * n);
    return first;
  }

private:
  void SetPlaces(const std::vector<int>& order)
  {
    for (std::size_t i = 0; i < order.size(); ++i)
      place[order[i]] = static_cast<int>(i);
  }

  /// For each place, the lowest place that shares an element with it.
  std::vector<int> FirstPlaces() const
  {
    std::vector<int> lowest(place.size());
    std::iota(lowest.begin(), lowest.end(), 0);
    const auto join = [&](const std::vector<int>& nodes) {  // from 1
      int low = place[nodes[0] - 1];
      for (const int node : nodes)
        low = std::min(low, place[node - 1]);
      for (const int node : nodes)
        lowest[place[node - 1]] = std::min(lowest[place[node - 1]], low);
    };
    for (const Frame::Beam& beam : s.beams)
      join({beam.first, beam.second});
    for (const auto* elements : {&s.triangles, &s.tetrahedra})
      std::for_each(elements->begin(), elements->end(), join);
    return lowest;
  }

  static double Size(const std::vector<int>& lowest)
  {
    double size = 0.0;
    for (std::size_t i = 0; i < lowest.size(); ++i) {
      const double length = static_cast<double>(i) - lowest[i];
      size += length * length;
    }
    return size;
  }

  int LongestAxis() const
  {
    const Vector3 extent = s.Extent();
    return static_cast<int>(std::max_element(extent.begin(), extent.end()) - extent.begin());
  }

  const Structure& s;
  std::vector<int> place;  ///< of each node, from 0
};

template <class R>
Profile<R> Assembled(const Structure& s, const Supports<R>& supports, const Ordering& ordering)
{
  const int n = s.Components();
  Profile<R> matrix(ordering.FirstEntries());
  const auto equation = [n](const Element<R>& e, int i) { return e.nodes[i / n] * n + i % n; };
  ForEachElement<R>(s, [&](const Element<R>& e, Family) {
    const int size = static_cast<int>(e.nodes.size()) * n;
    for (int c = 0; c < size; ++c) {  // a column for a unit displacement
      if (supports.IsPrescribed(equation(e, c)))
        continue;
      const int column = ordering.Row(equation(e, c));
      std::vector<R> u(size, R(0));
      u[c] = R(1);
      if (const Axes<R>* axes = supports.AxesAt(e.nodes[c / n]))
        TurnToGlobal(*axes, n, &u[c / n * n]);
      std::vector<R> f = ForcesOf(e, std::move(u), nullptr);
      for (std::size_t i = 0; i < e.nodes.size(); ++i) {
        if (const Axes<R>* axes = supports.AxesAt(e.nodes[i]))
          TurnToLocal(*axes, n, &f[i * n]);
      }
      for (int r = 0; r < size; ++r) {
        const int row = ordering.Row(equation(e, r));
        if (row >= column && !supports.IsPrescribed(equation(e, r)))
          matrix.At(row, column) += f[r];
      }
    }
  });
  for (int i = 0; i < s.Equations(); ++i) {
    const int row = ordering.Row(i);
    matrix.At(row, row) += supports.IsPrescribed(i) ? R(1) : supports.Spring(i);
  }
  return matrix;
}

/// Iterative refinement of a solution with the factors of a less precise matrix.
class CaseRefinement
{
public:
  explicit CaseRefinement(const Structure& structure)
      : s(structure),
        n(s.Components()),
        supports(s),
        length(s.MeanLength()),
        loads(s.Equations(), Quad(0)),
        displacements(s.Equations(), Quad(0))
  {
    ForEachElement<Quad>(s, [&](Element<Quad> e, Family) { elements.push_back(std::move(e)); });
    for (const Frame::NodalLoad& load : s.loads) {
      for (int k = 0; k < n; ++k)
        loads[(load.node - 1) * n + k] += Quad(load.values[k]);
    }
    for (int i = 0; i < s.Equations(); ++i) {
      if (supports.IsPrescribed(i))
        displacements[i] = supports.Value(i);
    }
    supports.ToGlobalAxes(displacements);
  }

  /// Refines with factors of this number type. Returns false when its precision is not enough.
  template <class R>
  bool ImproveByFactors()
  {
    const Ordering ordering(s);
    Profile<R> matrix = Assembled<R>(s, Supports<R>(s), ordering);
    if (!matrix.Factorise())
      return false;
    return Improve(1e-20, [&](const std::vector<Quad>& residual) {
      std::vector<R> rows(residual.size());
      for (int i = 0; i < s.Equations(); ++i)
        rows[ordering.Row(i)] = static_cast<R>(residual[i]);
      matrix.Solve(rows);
      std::vector<Quad> correction(residual.size());
      for (int i = 0; i < s.Equations(); ++i)
        correction[i] = rows[ordering.Row(i)];
      supports.ToGlobalAxes(correction);
      return correction;
    });
  }

  /// Refines by runs of the program with the residual as the loads.
  bool ImproveByRuns()
  {
    constexpr double kSmall = 1e-6;  // a run reduces the error at least to this part
    return Improve(kSmall, [&](const std::vector<Quad>& residual) {
      Structure rest = s;
      rest.loads.clear();
      for (Frame::Support& support : rest.supports) {
        for (int k = 0; k < n; ++k)
          support.values[k] = support.flags[k] == 1 ? 0.0 : support.values[k];
      }
      std::vector<Quad> forces = residual;
      supports.ToGlobalAxes(forces);
      for (int i = 0; i < s.Equations(); i += n) {
        rest.Load(i / n + 1, {});
        std::copy_n(forces.begin() + i, n, rest.loads.back().values.begin());
      }
      const Solved solved(rest.Text("Solver SkyLine\n"));
      std::vector<Quad> correction;
      for (int node = 1; node <= s.NodeCount(); ++node) {
        const std::vector<double> u = solved.Displacement(node);
        correction.insert(correction.end(), u.begin(), u.end());
      }
      return correction;
    });
  }

  const std::vector<Quad>& Displacements() const { return displacements; }

private:
  /// Adds corrections until one is smaller than this part of the displacements. solve(residual)
  /// returns a correction in global axes.
  template <class Solve>
  bool Improve(double small, Solve solve)
  {
    constexpr int kMostSteps = 60;
    for (int step = 0; step < kMostSteps; ++step) {
      const std::vector<Quad> correction = solve(Residual());
      for (std::size_t i = 0; i < correction.size(); ++i)
        displacements[i] += correction[i];
      if (Size(correction) <= small * Size(displacements))
        return true;
    }
    return false;
  }

  /// The residual in the axes of the supports; 0 at prescribed components.
  std::vector<Quad> Residual() const
  {
    std::vector<Quad> residual = loads;
    for (const Element<Quad>& e : elements) {
      std::vector<Quad> f = ForcesOf(e, AtNodes(e, n, displacements), nullptr);
      for (Quad& force : f)
        force = -force;
      AddAtNodes(e, n, f, residual);
    }
    std::vector<Quad> u = displacements;
    supports.ToSupportAxes(residual);
    supports.ToSupportAxes(u);
    for (int i = 0; i < s.Equations(); ++i)
      residual[i] = supports.IsPrescribed(i) ? Quad(0) : residual[i] - supports.Spring(i) * u[i];
    return residual;
  }

  double Size(const std::vector<Quad>& u) const
  {
    double size = 0.0;
    for (std::size_t i = 0; i < u.size(); ++i) {
      const bool rotation = static_cast<int>(i) % n >= s.Translations();
      size = std::max(size, std::fabs(static_cast<double>(u[i])) * (rotation ? length : 1.0));
    }
    return size;
  }

  const Structure& s;
  int n;
  Supports<Quad> supports;
  double length;
  std::vector<Element<Quad>> elements;
  std::vector<Quad> loads;
  std::vector<Quad> displacements;
};

/// All results of these displacements. The loads are those of the structure.
template <class R>
PreciseResults ResultsOf(const Structure& s, const std::vector<R>& u)
{
  const int n = s.Components();
  PreciseResults results;
  std::vector<R> forces(u.size(), R(0));
  ForEachElement<R>(s, [&](const Element<R>& e, Family family) {
    std::vector<double>& values = family == Family::Beams       ? results.beams
                                  : family == Family::Triangles ? results.triangles
                                                                : results.tetrahedra;
    AddAtNodes(e, n, ForcesOf(e, AtNodes(e, n, u), &values), forces);
  });
  for (const Frame::NodalLoad& load : s.loads) {
    for (int k = 0; k < n; ++k)
      forces[(load.node - 1) * n + k] -= R(load.values[k]);
  }
  const Supports<R> supports(s);
  for (int i = 0; i < s.Equations(); ++i) {
    results.displacements.push_back(static_cast<double>(u[i]));
    results.reactions.push_back(supports.Carries(i) ? static_cast<double>(forces[i]) : 0.0);
  }
  return results;
}

}  // namespace

PreciseResults SolvePrecisely(const Structure& structure)
{
  CaseRefinement refinement(structure);
  if (!refinement.ImproveByFactors<long double>() && !refinement.ImproveByFactors<Quad>())
    ADD_FAILURE() << "the reference does not converge";
  return ResultsOf(structure, refinement.Displacements());
}

PreciseResults RefinePrecisely(const Structure& structure)
{
  CaseRefinement refinement(structure);
  if (!refinement.ImproveByRuns())
    ADD_FAILURE() << "the reference does not converge";
  return ResultsOf(structure, refinement.Displacements());
}

PreciseResults LoadFor(Structure& structure, const std::vector<double>& displacements)
{
  using R = long double;
  const int n = structure.Components();
  structure.loads.clear();
  const Supports<R> supports(structure);
  std::vector<R> u(displacements.begin(), displacements.end());
  supports.FixLoose(u);
  std::vector<R> forces(u.size(), R(0));
  ForEachElement<R>(structure, [&](const Element<R>& e, Family) {
    AddAtNodes(e, n, ForcesOf(e, AtNodes(e, n, u), nullptr), forces);
  });
  std::vector<R> local = u;
  supports.ToSupportAxes(local);
  for (Frame::Support& support : structure.supports) {
    for (int k = 0; k < n; ++k) {
      if (support.flags[k] == 1)
        support.values[k] = static_cast<double>(local[(support.node - 1) * n + k]);
    }
  }
  supports.ToSupportAxes(forces);
  for (int i = 0; i < structure.Equations(); ++i)
    forces[i] = supports.IsPrescribed(i) ? R(0) : forces[i] + supports.Spring(i) * local[i];
  supports.ToGlobalAxes(forces);
  for (int node = 1; node <= structure.NodeCount(); ++node) {
    Frame::NodalLoad load = {node, {}};
    for (int k = 0; k < n; ++k)
      load.values[k] = static_cast<double>(forces[(node - 1) * n + k]);
    structure.loads.push_back(load);
  }
  return ResultsOf(structure, u);
}

std::vector<double> BentDisplacements(const Structure& structure, const std::vector<Bend>& bends,
                                      const Vector3& origin)
{
  std::vector<double> displacements;
  for (const Vector3& node : structure.nodes) {
    const Vector3 x = node - origin;
    std::array<double, 6> u{};
    for (const auto& [along, towards, curvature] : bends) {
      u[along] += curvature * x[along] * x[towards];
      u[towards] -= curvature * x[along] * x[along] / 2;
      const int axis = 3 - along - towards;
      const double sign = (along + 1) % 3 == axis ? 1.0 : -1.0;  // towards × along
      u[3 + axis] += sign * curvature * x[along];
    }
    if (!structure.space)
      u[2] = u[5];
    displacements.insert(displacements.end(), u.begin(), u.begin() + structure.Components());
  }
  return displacements;
}

}  // namespace morlen
