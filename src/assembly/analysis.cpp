// The order of the steps of an analysis, from the problem as read to the displacements.

#include "assembly/analysis.h"

#include <algorithm>
#include <limits>
#include <sstream>
#include <string>
#include <utility>

#include "assembly/direct_solution.h"
#include "assembly/iterated_solution.h"
#include "assembly/load_vector.h"
#include "assembly/model_checks.h"
#include "assembly/preparation.h"
#include "assembly/solve.h"
#include "assembly/support_axes.h"
#include "base/errorwriter.h"
#include "base/stprintf.h"
#include "model/mesh.h"
#include "model/node.h"
#include "numeric/plex_range.h"
#include "problem/problem.h"
#include "solvers/skymatriu.h"
#include "solvers/sparse_solver.h"

namespace morlen {

namespace {

/// The state of an iteration whose result cannot be used.
std::string Outcome(const SparseSolver& sparse)
{
  const IterationReport& model = sparse.ModelReport();
  const IterationReport& probe = sparse.ProbeReport();
  std::ostringstream text;
  stprintf(
      text,
      "after %i iterations the residual is %.1e, the error about %.1e, and the residual of the "
      "probe %.1e",
      std::max(model.iterations, probe.iterations), model.residual, model.error, probe.residual);
  return text.str();
}

/// The reason why a model that is too large for the direct solvers is refused. plan: of Solver
/// Direct; null without it.
std::string NoSolverHint(const std::string& outcome, const SolverWork& work, const DirectPlan* plan)
{
  const bool sparse = plan && plan->bytes < work.SkylineBytes();
  std::ostringstream text;
  text << "The iteration has not converged: " << outcome;
  stprintf(text, ". The direct solver would need %.0f Mb of memory. ",
           static_cast<double>(sparse ? plan->bytes : work.SkylineBytes()) / (1024.0 * 1024.0));
  text << "Where nothing can move, give it so much"
       << (sparse ? " and take it by a line \"Solver: Direct\"" : "")
       << ", or more iterations by a line \"Solver: Sparse 1e-5 1e-5 20000\"\n";
  return text.str();
}

/// The displacements of the three-node model, in the axes of the supports, as the starting vector
/// of the six-node model. A mid-side node gets the mean of the corners of its edge. `start`: global
/// axes, with the equations of the six-node model.
std::unique_ptr<double[]> StartOfSixNodes(const Meshes& meshes, const NodeComponents& components,
                                          ReaVecV start)
{
  const auto at = [&](const Node& node, int k) -> double& {
    return start(components.Equation(node.number, k));
  };
  for (const auto& mesh : meshes) {
    if (mesh->GiveElemType() != Triangle)
      continue;
    for (const Elem& elem : Each<Elem>(*mesh->GiveElemPlex())) {
      for (int i = 0; i < 3; ++i) {
        for (int k = 1; k <= components.count; ++k)
          at(*elem(i + 3), k) = (at(*elem(i), k) + at(*elem((i + 1) % 3), k)) / 2.0;
      }
    }
  }
  ConvertGlobalLoadToLocal(*meshes.front()->GiveNodePlex(), start, components.count);
  auto values = std::make_unique<double[]>(static_cast<std::size_t>(start.Size()));
  std::copy_n(start.Data(), start.Size(), values.get());
  return values;
}

std::unique_ptr<DirectSolver> MakeDirect(const Problem& problem, const SolverKit& kit,
                                         std::unique_ptr<DirectPlan> plan)
{
  std::unique_ptr<DirectSolver> solver = kit.MakeDirect(problem, std::move(plan));
  if (!solver)
    Fatal("error: this program has been built without the solver Direct\n");
  return solver;
}

std::unique_ptr<SkyMatriu> MakeSkyline(const Problem& problem)
{
  return std::make_unique<SkyMatriu>(problem.Equations(), problem.solverSettings.processor);
}

// start: displacements of a pre-solve, empty without one.
std::unique_ptr<BSolver> MakeSolver(const Problem& problem, const SolverKit& kit,
                                    std::unique_ptr<DirectPlan> plan, ReaVecV& start)
{
  const SolverSettings& s = problem.solverSettings;
  if (s.type == SolverType::SkyLine)
    return MakeSkyline(problem);
  if (s.type == SolverType::Direct)
    return MakeDirect(problem, kit, std::move(plan));
  if (s.type != SolverType::Sparse)
    Fatal("error: unknown solver\n");
  const int n = problem.components.count;
  auto sparse = s.maxIterations == 0
                    ? std::make_unique<SparseSolver>(problem.numNodes, n, s.processor)
                    : std::make_unique<SparseSolver>(problem.numNodes, n, s.tolerance1,
                                                     s.tolerance2, s.maxIterations, s.processor);
  if (start.Size() > 0) {
    start.resize(problem.Equations(), 0.0);
    sparse->EnterInitialvalues(StartOfSixNodes(problem.meshes, problem.components, start));
  }
  return sparse;
}

// An iteration with the default tolerances that continues until the results are good. When the
// direct solver can follow, the iteration ends as soon as that would have been faster, or when the
// structure seems to move.
std::unique_ptr<SparseSolver> MakeIteration(const Problem& problem, const SolverChoice& choice)
{
  auto sparse = std::make_unique<SparseSolver>(problem.numNodes, problem.components.count,
                                               problem.solverSettings.processor);
  // Bending of thin shells has little of their energy.
  constexpr double kPartForRefinedShells = 0.1;
  const double part =
      problem.shellFormulation == ShellFormulation::Refined ? kPartForRefinedShells : 1.0;
  IterationDemands demands = {.error = part * IterationDemands::kGoodError,
                              .change = part * IterationDemands::kGoodChange,
                              .components = problem.components};
  if (choice.fitsDirectly) {
    demands.quotient = IterationDemands::kLeastQuotient;
    sparse->LimitIterations(choice.work.IterationsWorthTrying(choice.directSeconds));
  }
  sparse->Demand(demands);
  return sparse;
}

void RequireLoads(const std::vector<LoadVector>& loads, int equations)
{
  const auto fits = [&](const LoadVector& load) { return load.values.Size() == equations; };
  if (loads.empty() || !std::all_of(loads.begin(), loads.end(), fits))
    Fatal("error: an analysis needs load vectors of ", equations, " components\n");
}

std::vector<LoadCase> MakeCases(const AnalysisTask& task, const MakeLoads& makeLoads)
{
  const Problem& problem = task.problem;
  std::vector<LoadVector> loads = makeLoads(problem, task.families);
  RequireLoads(loads, problem.Equations());
  Progress(task.info, "Load vector constructed\n");
  Progress(task.info, "Beginning to apply constraints\n");
  return MakeLoadCases(problem.GiveNodes(), problem.components, std::move(loads));
}

const char* NameOf(const BSolver& solver, SolverType type)
{
  return type == SolverType::Sparse ? "Sparse" : static_cast<const DirectSolver&>(solver).Name();
}

/// Creates and fills the matrix, and makes the load cases. reason: why this solver; empty for none.
std::vector<LoadCase> AssembleSystem(const AnalysisTask& task, BSolver& solver,
                                     const MakeLoads& makeLoads, const std::string& reason)
{
  const auto& [problem, families, info, kit] = task;
  kit.CreateMatrix(task, solver);
  if (!reason.empty())
    Progress(info, "Solver %s taken: %s\n", NameOf(solver, problem.solverSettings.type),
             reason.c_str());
  if (info)
    solver.PrintInfoMem(info);
  Progress(info, "Just before filling global stiffness matrix\n");
  kit.AddStiffness(task, solver);
  Progress(info, "Stiffness matrix filled\n");
  return MakeCases(task, makeLoads);
}

// Collects the solutions of load cases, or hands them on.
class Solutions
{
public:
  explicit Solutions(const UseSolution& use_) : use(use_) {}

  // For the cases, which it borrows; without the solutions of an attempt before.
  OnSolved Collect(const Problem& problem, std::vector<LoadCase>& cases)
  {
    collected.clear();
    return [this, &problem, &cases](std::size_t k) {
      Solution solution = FinishSolution(problem.GiveNodes(), problem.components, cases[k]);
      if (use)
        use(k, std::move(solution));
      else
        collected.push_back(std::move(solution));
    };
  }

  std::vector<Solution>& Collected() { return collected; }

private:
  const UseSolution& use;
  std::vector<Solution> collected;
};

void Solve(const AnalysisTask& task, BSolver& solver, const MakeLoads& makeLoads,
           const std::string& reason, Solutions& solutions)
{
  std::vector<LoadCase> cases = AssembleSystem(task, solver, makeLoads, reason);
  const OnSolved onSolved = solutions.Collect(task.problem, cases);
  if (task.problem.solverSettings.type == SolverType::Sparse)
    SolveByIteration(task, static_cast<SparseSolver&>(solver), cases, onSolved);
  else
    SolveDirectly(task, static_cast<DirectSolver&>(solver), cases, onSolved);
  Progress(task.info, "Solver finished\n");
}

/// One analysis of a problem: the solver that is in use, and the solutions.
class Analysis
{
public:
  Analysis(Problem& problem_, const ElementFamilies& families_, const AnalysisOptions& options_,
           const MakeLoads& makeLoads_, const UseSolution& use)
      : problem(problem_),
        families(families_),
        options(options_),
        makeLoads(makeLoads_),
        solutions(use)
  {
  }

  Analysed Run()
  {
    PrepareModel(problem, families);
    SolverType& type = problem.solverSettings.type;
    const bool automatic = type == SolverType::Automatic;
    type = options.kit.Settle(type);
    const bool replaced = automatic && type != SolverType::Automatic;
    if (type == SolverType::Double)
      PreSolve();
    if (automatic && options.kit.Suits(problem) && SolveByKit())
      return {nullptr, std::move(solutions.Collected())};
    SolverChoice choice = PrepareEquations(problem, families, options);
    if (replaced)
      choice.reason = "the program has no other";
    if (automatic && choice.type == SolverType::Sparse) {
      IterateFirst(choice);
    } else {
      solver = MakeSolver(problem, options.kit, std::move(choice.plan), start);
      SolveFor(choice.reason);
    }
    SolverAccount account = Account();
    return {std::move(solver), std::move(solutions.Collected()), std::move(account)};
  }

private:
  AnalysisTask Task() const { return {problem, families, options.info, options.kit}; }

  void SolveFor(const std::string& why)
  {
    reason = why;
    Solve(Task(), *solver, makeLoads, reason, solutions);
  }

  SolverAccount Account() const
  {
    const SolverType type = problem.solverSettings.type;
    const bool iterated = type == SolverType::Sparse;
    const int iterations =
        iterated ? static_cast<const SparseSolver&>(*solver).ModelReport().iterations : 0;
    return {NameOf(*solver, type), reason, iterations};
  }

  void PreSolve();
  bool SolveByKit();
  void IterateFirst(const SolverChoice& choice);
  [[noreturn]] void Refuse(const SolverWork& work, int iterations, const std::string& outcome);

  Problem& problem;
  const ElementFamilies& families;
  const AnalysisOptions& options;
  const MakeLoads& makeLoads;
  std::unique_ptr<BSolver> solver;
  Solutions solutions;
  std::string reason;  ///< why this solver
  ReaVecV start;       ///< displacements of the pre-solve; empty without one
};

// Solves the model of three-node triangles by a direct solver, for the first load vector. Its
// displacements are the starting vector of the sparse solver for the model of six-node triangles.
void Analysis::PreSolve()
{
  CheckDoubleSolver(problem.meshes);
  Progress(options.info, "Running a pre-solver to prepare initial values\n");
  const bool large = problem.Equations() >= kChoiceFrom;
  const bool sparse = large && options.kit.HasDirect();
  PrepareForDirect(problem, sparse ? SolverType::Direct : SolverType::SkyLine, options.renumber);
  ReportMarks(problem, options.info);
  ReaVecV noStart;
  const auto direct = MakeSolver(problem, options.kit, nullptr, noStart);
  const MakeLoads firstLoads = [this](const Problem& prepared, const ElementFamilies& known) {
    std::vector<LoadVector> loads = makeLoads(prepared, known);
    if (!loads.empty())
      loads.erase(loads.begin() + 1, loads.end());
    return loads;
  };
  const UseSolution none;
  Solutions first(none);
  Solve(Task(), *direct, firstLoads, "", first);
  start = std::move(first.Collected().front().displacements);
  problem.solverSettings.type = SolverType::Sparse;
  problem.convertTo6Nodes = true;
}

// The program's own method. Returns false when it has failed.
bool Analysis::SolveByKit()
{
  std::vector<LoadCase> cases = MakeCases(Task(), makeLoads);
  if (!options.kit.Solve(Task(), cases, solutions.Collect(problem, cases)))
    return false;
  Progress(options.info, "Solver finished\n");
  return true;
}

// The plan of Solver Direct is made anew: the choice has no plan for a solver that would be slow.
void Analysis::Refuse(const SolverWork& work, int iterations, const std::string& outcome)
{
  const int n = problem.components.count;
  const auto plan = options.kit.PlanDirect(problem, work.sparseEntries / n / n,
                                           std::numeric_limits<double>::infinity());
  SolverFailed(problem.meshes, problem.components, -iterations,
               NoSolverHint(outcome, work, plan.get()));
}

// The iteration of an automatic choice. When it fails, the direct solver follows.
void Analysis::IterateFirst(const SolverChoice& choice)
{
  auto sparse = MakeIteration(problem, choice);
  reason = choice.reason;
  std::vector<LoadCase> cases = AssembleSystem(Task(), *sparse, makeLoads, reason);
  if (IterateToTheEnd(Task(), *sparse, cases, solutions.Collect(problem, cases))) {
    Progress(options.info, "Solver finished\n");
    solver = std::move(sparse);
    return;
  }
  const std::string outcome = Outcome(*sparse);
  const int iterations = std::max(sparse->ModelReport().iterations, 1);
  sparse.reset();
  if (!choice.fitsDirectly)
    Refuse(choice.work, iterations, outcome);
  PrepareForDirect(problem, choice.directType, options.renumber);
  solver = MakeSolver(problem, options.kit, nullptr, start);
  SolveFor(outcome);
}

}  // namespace

std::vector<LoadVector> LoadsOfProblem(const Problem& problem, const ElementFamilies& families)
{
  std::vector<LoadVector> loads;
  loads.push_back({.values = AppliedLoads(problem, families)});
  return loads;
}

std::vector<Solution> SolvePrepared(const Problem& problem, const ElementFamilies& families,
                                    BSolver& solver, const MakeLoads& makeLoads, std::FILE* info,
                                    const SolverKit& kit)
{
  const UseSolution none;
  Solutions solutions(none);
  Solve({problem, families, info, kit}, solver, makeLoads, "", solutions);
  return std::move(solutions.Collected());
}

Analysed Analyse(Problem& problem, const ElementFamilies& families, const AnalysisOptions& options,
                 const MakeLoads& makeLoads, const UseSolution& use)
{
  return Analysis(problem, families, options, makeLoads, use).Run();
}

}  // namespace morlen
