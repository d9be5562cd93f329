#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <vector>

#include "problem/settings.h"

namespace morlen {

class BSolver;
class DirectSolver;
class ElementFamilies;
class InternalForces;
struct AnalysisTask;
struct LoadCase;
struct Problem;
struct Solution;

/// Called with the index of each load case that has been solved.
using OnSolved = std::function<void(std::size_t)>;

/// The estimated work of the solver of `Solver Direct` for one problem, and what the estimate has
/// found out for the solver. Seconds are comparable with those of SolverWork.
struct DirectPlan
{
  DirectPlan() = default;
  DirectPlan(const DirectPlan&) = delete;
  DirectPlan& operator=(const DirectPlan&) = delete;
  virtual ~DirectPlan() = default;

  double Seconds(double loadVectors) const
  {
    return seconds + (loadVectors - 1.0) * secondsPerFurther;
  }

  double seconds = 0.0;            ///< with one load vector
  double secondsPerFurther = 0.0;  ///< for each further load vector
  std::uint64_t bytes = 0;
};

/// The parts of an analysis that a program adds or replaces.
///
/// The core has no libraries below it. A program that has a solver made of one derives a kit, gives
/// it to RunMorlen or Project, and the analysis takes the solver from there. A program whose matrix
/// is distributed replaces the assembly and the forces too. This class itself is the kit of a
/// program that adds nothing.
///
/// A kit outlives the analysis and may serve several analyses in several threads.
class SolverKit
{
public:
  constexpr SolverKit() = default;
  SolverKit(const SolverKit&) = delete;
  SolverKit& operator=(const SolverKit&) = delete;
  constexpr virtual ~SolverKit() {}  // NOLINT: GCC 12 takes no default here for a constant

  /// The solver for a problem that asks for `asked`. A program that has no choice replaces
  /// Automatic by the solver that it has, and is fatal for solvers that it lacks.
  virtual SolverType Settle(SolverType asked) const;

  /// True when the program has the solver of `Solver Direct`.
  virtual bool HasDirect() const { return false; }

  /// The work of that solver for a problem after its preparation, with the present numbers of the
  /// nodes. Null without the solver, when it needs more than `mostSeconds` at least, and when it
  /// does not fit into the memory that is left. blocks: of the whole matrix, one for each node and
  /// two for each pair of coupled nodes.
  virtual std::unique_ptr<DirectPlan> PlanDirect(const Problem& problem, double blocks,
                                                 double mostSeconds) const;

  /// An empty matrix with that solver, for the same problem; null without the solver. plan: null,
  /// or a result of PlanDirect, whose work is then used.
  virtual std::unique_ptr<DirectSolver> MakeDirect(const Problem& problem,
                                                   std::unique_ptr<DirectPlan> plan) const;

  /// True when `Solver Automatic` shall leave this problem to Solve. Asked after PrepareModel, with
  /// the numbers of the file; triangles still have three nodes.
  virtual bool Suits(const Problem& problem) const;

  /// Solves all load cases of a problem that suits it, by a method that is neither a DirectSolver
  /// nor a SparseSolver. Returns false when the method has failed in a way that the solvers of the
  /// automatic choice may mend; they get cases made anew.
  ///
  /// cases: loads by equation in the axes of the supports, without the effect of supports. Each
  /// solution gets displacements and displacementRests in the same axes, elementForces in global
  /// axes, and accuracy, as in SolveDirectly; then onSolved is called with its index. Such a method
  /// must test the structure with the probe (ProbeLoad), and be fatal by SolverFailed for one that
  /// can move.
  virtual bool Solve(const AnalysisTask& task, std::vector<LoadCase>& cases,
                     const OnSolved& onSolved) const;

  /// Declares the couplings of the nodes and allocates the matrix; of any solver.
  virtual void CreateMatrix(const AnalysisTask& task, BSolver& solver) const;

  /// Adds the stiffness of all elements, in the axes of the supports. Also called for a second
  /// assembly, after SetToZero. Supports and springs follow, by ApplyConstraint and AddSubMatriu.
  virtual void AddStiffness(const AnalysisTask& task, BSolver& solver) const;

  /// Adds the forces of all elements for given displacements: the refinement's residuals, and the
  /// reactions.
  virtual void AddForces(const AnalysisTask& task, InternalForces& forces) const;

  /// Fills the results of a mesh (from 0), whose numbers and points are known, by the function of
  /// its family.
  virtual void FillStrengths(const Problem& problem, const ElementFamilies& families, int mesh,
                             Solution& solution) const;
};

/// The kit of a program that adds nothing.
inline constexpr SolverKit kPlainKit;

}  // namespace morlen
