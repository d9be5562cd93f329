// The direct solution: factorisation, refinement, and the verdict of the refinement.

#include "assembly/direct_solution.h"

#include <algorithm>
#include <span>
#include <string>
#include <utility>

#include "assembly/coplanarity.h"
#include "assembly/free_equations.h"
#include "assembly/free_motion.h"
#include "assembly/internal_forces.h"
#include "assembly/motion_words.h"
#include "assembly/probe_load.h"
#include "assembly/refinement.h"
#include "assembly/rigid_motion.h"
#include "assembly/solver_kit.h"
#include "assembly/support_axes.h"
#include "base/errorwriter.h"
#include "base/stprintf.h"
#include "problem/problem.h"
#include "solvers/direct_solver.h"

namespace morlen {

namespace {

/// The hint for a model that is refused although it may be stable; empty for one that can move.
std::string RoughModelHint(const RefinedCases& cases, Refinement::Verdict verdict)
{
  if (verdict == Refinement::Verdict::Moves && !cases.probe.Diverges())
    return "";
  return "The model is too rough: its stiffnesses or lengths differ so much that the digits of the "
         "arithmetic are not enough for its displacements\n";
}

/// Solves all load cases and the probe with one factorisation. The first batch of cases is solved
/// and refined with the probe, which tests the structure; the others follow batch by batch, so that
/// only one batch has the vectors of the refinement.
class DirectSolution
{
public:
  DirectSolution(const AnalysisTask& task_, DirectSolver& matrix_,
                 const std::vector<LoadCase>& loadCases_)
      : task(task_),
        matrix(matrix_),
        loadCases(loadCases_),
        nodes(task.problem.GiveNodes()),
        scale(ScaleOfComponents(task.problem.meshes, task.problem.components))
  {
  }

  /// deliver(index, solved case): for each load case, in order. Fatal when the structure or the
  /// model is refused.
  template <class Deliver>
  void Solve(Deliver deliver) const
  {
    RefinedCases cases;
    const Refinement refinement = MakeRefinement();
    const Outcome outcome = Run(refinement, cases, deliver);
    if (outcome.refused != 0)
      FailAtPivot(outcome.refused);
    if (outcome.verdict == Refinement::Verdict::Moves)
      FailByMotion(refinement, cases);
    if (outcome.verdict == Refinement::Verdict::TooRough)
      FailByRoughness(refinement, cases);
    if (!outcome.finite)
      Fail(-1, "");
  }

  /// The same, but returns false where Solve is fatal.
  template <class Deliver>
  bool TrySolve(Deliver deliver) const
  {
    RefinedCases cases;
    const Outcome outcome = Run(MakeRefinement(), cases, deliver);
    return outcome.refused == 0 && outcome.verdict == Refinement::Verdict::Accepted &&
           outcome.finite;
  }

private:
  // How a solution has ended: the first member that is not as here tells why it has failed.
  struct Outcome
  {
    int refused = 0;  // the result of SolveFirst
    Refinement::Verdict verdict = Refinement::Verdict::Accepted;
    bool finite = true;  // all solutions after the first batch
  };

  // Leaves in `cases` the batch with which it has ended.
  template <class Deliver>
  Outcome Run(const Refinement& refinement, RefinedCases& cases, Deliver deliver) const
  {
    std::vector<ReaVecV> sides = LoadsOf(loadCases);
    ApplySupports(nodes, scale.components, matrix, sides, loadCases);
    Progress(task.info, "Just before Solver\n");
    if (const int refused = SolveFirst(sides, cases, task.info))
      return {.refused = refused};
    for (std::size_t first = 0;;) {
      const Refinement::Verdict verdict = refinement.Run(cases);
      if (verdict != Refinement::Verdict::Accepted)
        return {.verdict = verdict};
      for (RefinedCase& one : cases.models)
        deliver(first++, one);
      if (first == sides.size())
        return {};
      if (!SolveNext(first, sides, cases))
        return {.finite = false};
    }
  }

  // hint: of a model that is too rough; empty for one that can move.
  [[noreturn]] void Fail(int result, const std::string& hint) const
  {
    if (!hint.empty())
      ExplainSlightFolds(task.problem);
    SolverFailed(task.problem.meshes, scale.components, result, hint);
  }

  [[noreturn]] void FailAtPivot(int refused) const
  {
    // RefusedPivotHint assembles the matrix anew. A result of -1 is no equation.
    ReaVecV motion;
    if (refused > 0)
      motion = matrix.MotionOfRefused(refused);
    const std::string hint = RefusedPivotHint();
    if (hint.empty() && refused > 0)
      ExplainMotion(std::move(motion));
    Fail(refused, hint);
  }

  [[noreturn]] void FailByMotion(const Refinement& refinement, const RefinedCases& cases) const
  {
    const std::string hint = RoughModelHint(cases, Refinement::Verdict::Moves);
    if (hint.empty())
      ExplainMotion(refinement.Motion(cases.probe));
    Fail(refinement.LargestMotion(cases.probe.u.value), hint);
  }

  // The corrections of a motion are lost beside those of a much softer part. The residual, which no
  // element resists, still has it. A stable structure may be so soft that its own residual looks
  // free of strains too: only a rigid motion that its supports leave a part is proof.
  [[noreturn]] void FailByRoughness(const Refinement& refinement, const RefinedCases& cases) const
  {
    ReaVecV motion = refinement.Motion(cases.probe);
    ConvertLocalResultsToGlobal(nodes, motion, scale.components.count);
    std::optional<ReaVecV> free = FreeMotionOfAPart(task.problem, task.families, std::move(motion));
    if (!free)
      Fail(-1, RoughModelHint(cases, Refinement::Verdict::TooRough));
    Explain(DescribeMotion(task.problem, *free).text);
    ConvertGlobalLoadToLocal(nodes, *free, scale.components.count);
    Fail(refinement.LargestMotion(*free), "");
  }

  // motion: in the axes of the supports.
  void ExplainMotion(ReaVecV motion) const
  {
    ConvertLocalResultsToGlobal(nodes, motion, scale.components.count);
    if (!IsFreeMotion(task.problem, task.families, motion))
      return;
    const std::optional<ReaVecV> rigid = FreeRigidMotion(task.problem, task.families, motion);
    Explain(DescribeMotion(task.problem, rigid.value_or(motion)).text);
  }

  // The sides of the batch that begins with this one.
  static std::span<ReaVecV> Batch(std::size_t first, std::vector<ReaVecV>& sides)
  {
    constexpr std::size_t kMost = 16;
    return std::span(sides).subspan(first, std::min(kMost, sides.size() - first));
  }

  // Factorises, and solves the first right-hand sides and the probe without refinement. Returns 0
  // or the `result` of SolverFailed.
  int SolveFirst(std::vector<ReaVecV>& sides, RefinedCases& cases, std::FILE* info) const
  {
    const ReaVecV probeLoads = ProbeLoad(nodes, scale, matrix.GiveSize());
    ReaVecV probe = probeLoads;
    const double sizeOfProbe = SizeOnFree(RefinedCase::Norm::Largest, nodes, scale, probe);
    const std::span<ReaVecV> batch = Batch(0, sides);
    const std::vector<double> sizes = SizesOf(batch);
    DirectSolver::RightHandSides all = PointersTo(batch);
    all.push_back(&probe);
    if (const int refused = matrix.Solver(all, info))
      return refused;
    if (!EnterModels(0, batch, sizes, cases))
      return -1;
    cases.probe =
        RefinedCase(probeLoads, RefinedCase::Norm::Largest, sizeOfProbe, std::move(probe));
    return 0;
  }

  // The same for the sides from `first` on, with the factors and the probe of SolveFirst. False
  // when a solution is not finite.
  bool SolveNext(std::size_t first, std::vector<ReaVecV>& sides, RefinedCases& cases) const
  {
    const std::span<ReaVecV> batch = Batch(first, sides);
    const std::vector<double> sizes = SizesOf(batch);
    matrix.Substitute(PointersTo(batch), nullptr);
    return EnterModels(first, batch, sizes, cases);
  }

  std::vector<double> SizesOf(std::span<const ReaVecV> sides) const
  {
    std::vector<double> sizes;
    for (const ReaVecV& side : sides)
      sizes.push_back(SizeOnFree(RefinedCase::Norm::Euclidean, nodes, scale, side));
    return sizes;
  }

  static DirectSolver::RightHandSides PointersTo(std::span<ReaVecV> sides)
  {
    DirectSolver::RightHandSides pointers;
    for (ReaVecV& side : sides)
      pointers.push_back(&side);
    return pointers;
  }

  // Makes the solved sides, of the load cases from `first` on, the models of the cases. False when
  // one is not finite.
  bool EnterModels(std::size_t first, std::span<ReaVecV> solved, const std::vector<double>& sizes,
                   RefinedCases& cases) const
  {
    if (!std::all_of(solved.begin(), solved.end(), AllFinite))
      return false;
    cases.models.clear();
    for (std::size_t k = 0; k < solved.size(); ++k)
      cases.models.emplace_back(loadCases[first + k].loads, RefinedCase::Norm::Euclidean, sizes[k],
                                std::move(solved[k]));
    return true;
  }

  // A refused pivot does not show why it is small: the structure can move, or the model is too
  // rough. The refinement can often tell, after a factorisation that accepts pivots without digits.
  std::string RefusedPivotHint() const
  {
    matrix.SetToZero();
    task.kit.AddStiffness(task, matrix);
    std::vector<ReaVecV> sides = LoadsOf(loadCases);
    ApplySupports(nodes, scale.components, matrix, sides, loadCases);
    matrix.AcceptLostPivots();
    RefinedCases cases;
    if (SolveFirst(sides, cases, nullptr) != 0)
      return "";
    return RoughModelHint(cases, MakeRefinement().Run(cases));
  }

  Refinement MakeRefinement() const
  {
    return {matrix, nodes, scale, [this](InternalForces& f) { task.kit.AddForces(task, f); }};
  }

  const AnalysisTask& task;
  DirectSolver& matrix;
  const std::vector<LoadCase>& loadCases;
  const VoidPlex& nodes;
  ComponentScale scale;
};

// The refined case becomes the solution of a case, whose loads are no longer needed.
void EnterSolution(const AnalysisTask& task, RefinedCase& from, LoadCase& one)
{
  Solution& solution = one.solution;
  solution.accuracy = {.error = from.LastCorrection(), .residual = from.LastResidual()};
  solution.displacements = std::move(from.u.value);
  solution.displacementRests = std::move(from.u.rest);
  solution.elementForces = std::move(from.elementForces);
  one.loads = {};
  TellAccuracy(one, SolverType::SkyLine, task.info);
}

}  // namespace

void SolveDirectly(const AnalysisTask& task, DirectSolver& matrix, std::vector<LoadCase>& cases,
                   const OnSolved& onSolved)
{
  DirectSolution(task, matrix, cases).Solve([&](std::size_t k, RefinedCase& from) {
    EnterSolution(task, from, cases[k]);
    onSolved(k);
  });
}

bool TrySolveDirectly(const AnalysisTask& task, DirectSolver& matrix, std::vector<LoadCase>& cases,
                      const OnSolved& onSolved)
{
  return DirectSolution(task, matrix, cases).TrySolve([&](std::size_t k, RefinedCase& from) {
    EnterSolution(task, from, cases[k]);
    onSolved(k);
  });
}

}  // namespace morlen
