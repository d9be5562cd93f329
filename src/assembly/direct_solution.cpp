// The direct solution: factorisation, refinement, and the verdict of the refinement.

#include "assembly/direct_solution.h"

#include <algorithm>
#include <optional>
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

/// Solves all load cases and the probe with one factorisation.
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

  RefinedCases Solve() const
  {
    std::vector<ReaVecV> sides = LoadsOf(loadCases);
    ApplySupports(nodes, scale.components, matrix, sides);
    Progress(task.info, "Just before Solver\n");
    RefinedCases cases;
    if (const int refused = SolveCases(std::move(sides), cases, task.info))
      FailAtPivot(refused);
    const Refinement refinement = MakeRefinement();
    const Refinement::Verdict verdict = refinement.Run(cases);
    if (verdict == Refinement::Verdict::Moves)
      FailByMotion(refinement, cases);
    if (verdict == Refinement::Verdict::TooRough)
      FailByRoughness(refinement, cases);
    return cases;
  }

  // Empty when the structure or the model is refused.
  std::optional<RefinedCases> TrySolve() const
  {
    std::vector<ReaVecV> sides = LoadsOf(loadCases);
    ApplySupports(nodes, scale.components, matrix, sides);
    RefinedCases cases;
    if (SolveCases(std::move(sides), cases, task.info) != 0 ||
        MakeRefinement().Run(cases) != Refinement::Verdict::Accepted)
      return {};
    return cases;
  }

private:
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

  // Solves the right-hand sides and the probe without refinement. Returns 0 or the `result` of
  // SolverFailed.
  int SolveCases(std::vector<ReaVecV> sides, RefinedCases& cases, std::FILE* info) const
  {
    using Norm = RefinedCase::Norm;
    const ReaVecV probeLoads = ProbeLoad(nodes, scale, matrix.GiveSize());
    ReaVecV probe = probeLoads;
    const double sizeOfProbe = SizeOnFree(Norm::Largest, nodes, scale, probe);
    std::vector<double> sizes;
    sizes.reserve(sides.size());
    DirectSolver::RightHandSides all;
    for (ReaVecV& side : sides) {
      sizes.push_back(SizeOnFree(Norm::Euclidean, nodes, scale, side));
      all.push_back(&side);
    }
    all.push_back(&probe);
    if (const int refused = matrix.Solver(all, info))
      return refused;
    if (!std::all_of(sides.begin(), sides.end(), AllFinite))
      return -1;
    for (std::size_t k = 0; k < sides.size(); ++k)
      cases.models.emplace_back(loadCases[k].loads, Norm::Euclidean, sizes[k], std::move(sides[k]));
    cases.probe = RefinedCase(probeLoads, Norm::Largest, sizeOfProbe, std::move(probe));
    return 0;
  }

  // A refused pivot does not show why it is small: the structure can move, or the model is too
  // rough. The refinement can often tell, after a factorisation that accepts pivots without digits.
  std::string RefusedPivotHint() const
  {
    matrix.SetToZero();
    task.kit.AddStiffness(task, matrix);
    std::vector<ReaVecV> sides = LoadsOf(loadCases);
    ApplySupports(nodes, scale.components, matrix, sides);
    matrix.AcceptLostPivots();
    RefinedCases cases;
    if (SolveCases(std::move(sides), cases, nullptr) != 0)
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

void EnterSolutions(const AnalysisTask& task, RefinedCases refined, std::vector<LoadCase>& cases)
{
  for (std::size_t k = 0; k < cases.size(); ++k) {
    RefinedCase& from = refined.models[k];
    Solution& solution = cases[k].solution;
    solution.accuracy = {.error = from.LastCorrection(), .residual = from.LastResidual()};
    solution.displacements = std::move(from.u.value);
    solution.displacementRests = std::move(from.u.rest);
    solution.elementForces = std::move(from.elementForces);
    TellAccuracy(solution.accuracy, SolverType::SkyLine, task.info);
  }
}

}  // namespace

void SolveDirectly(const AnalysisTask& task, DirectSolver& matrix, std::vector<LoadCase>& cases)
{
  EnterSolutions(task, DirectSolution(task, matrix, cases).Solve(), cases);
}

bool TrySolveDirectly(const AnalysisTask& task, DirectSolver& matrix, std::vector<LoadCase>& cases)
{
  std::optional<RefinedCases> refined = DirectSolution(task, matrix, cases).TrySolve();
  if (refined)
    EnterSolutions(task, std::move(*refined), cases);
  return refined.has_value();
}

}  // namespace morlen
