// The order of the steps of an analysis, from the problem as read to the displacements.

#include "assembly/analysis.h"

#include <algorithm>
#include <sstream>
#include <string>
#include <utility>

#include "assembly/coplanarity.h"
#include "assembly/direct_solution.h"
#include "assembly/iterated_solution.h"
#include "assembly/load_vector.h"
#include "assembly/model_checks.h"
#include "assembly/six_nodes.h"
#include "assembly/solve.h"
#include "assembly/solver_choice.h"
#include "assembly/support_axes.h"
#include "base/errorwriter.h"
#include "base/memory_limit.h"
#include "base/stprintf.h"
#include "model/mesh.h"
#include "model/node.h"
#include "numeric/plex_range.h"
#include "problem/hinges.h"
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

/// The reason why a model that is too large for the direct solver is refused.
std::string NoSolverHint(const SparseSolver& sparse, const SolverWork& work)
{
  std::ostringstream text;
  text << "The iteration has not converged: " << Outcome(sparse);
  stprintf(text,
           ". The direct solver would need %.0f Mb of memory. Where nothing can move, give it so "
           "much, or more iterations by a line \"Solver: Sparse 1e-5 1e-5 20000\"\n",
           static_cast<double>(work.DirectBytes()) / (1024.0 * 1024.0));
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

/// One analysis of a problem: the solver that is in use and the solutions.
// reason: why this solver, for the information stream; empty for none.
std::vector<LoadCase> AssembleSystem(const AnalysisTask& task, BSolver& solver,
                                     const MakeLoads& makeLoads, const std::string& reason)
{
  const auto& [problem, families, info] = task;
  CreateMatrix(problem.meshes, problem.components, solver);
  if (!reason.empty())
    Progress(info, "Solver %s taken: %s\n",
             problem.solverSettings.type == SolverType::Sparse ? "Sparse" : "SkyLine",
             reason.c_str());
  if (info)
    solver.PrintInfoMem(info);
  Progress(info, "Just before filling global stiffness matrix\n");
  AddStiffness(task, solver);
  Progress(info, "Stiffness matrix filled\n");
  std::vector<ReaVecV> loads = makeLoads(problem, families);
  Progress(info, "Load vector constructed\n");
  Progress(info, "Beginning to apply constraints\n");
  return MakeLoadCases(problem.GiveNodes(), problem.components, std::move(loads));
}

std::vector<Solution> Finish(const AnalysisTask& task, std::vector<LoadCase> cases)
{
  const Problem& problem = task.problem;
  std::vector<Solution> solutions =
      FinishSolutions(problem.GiveNodes(), problem.components, std::move(cases));
  Progress(task.info, "Solver finished\n");
  return solutions;
}

std::vector<Solution> Solve(const AnalysisTask& task, BSolver& solver, const MakeLoads& makeLoads,
                            const std::string& reason)
{
  std::vector<LoadCase> cases = AssembleSystem(task, solver, makeLoads, reason);
  if (task.problem.solverSettings.type == SolverType::Sparse)
    SolveByIteration(task, static_cast<SparseSolver&>(solver), cases);
  else
    SolveDirectly(task, static_cast<SkyMatriu&>(solver), cases);
  return Finish(task, std::move(cases));
}

class Analysis
{
public:
  Analysis(Problem& problem_, const ElementFamilies& families_, const AnalysisOptions& options,
           const MakeLoads& makeLoads_)
      : problem(problem_),
        families(families_),
        renumber(options.renumber),
        info(options.info),
        makeLoads(makeLoads_)
  {
  }

  Analysed Run()
  {
    CheckReferences(problem.meshes, problem.materials, families);
    CheckModel(problem.meshes, problem.problemType, problem.components, families);
    if (problem.hasHinges)
      MergeHinges(problem);
    if (Type() == SolverType::Double)
      PreSolve();
    if (problem.convertTo6Nodes && ConvertTriangles(problem))
      Progress(info, "Mesh converted to internal 6-noded representation\n");
    if (Type() == SolverType::Automatic) {
      SolveAutomatically();
    } else {
      Number();
      MarkNodes();
      ReportMarks();
      MakeSolver();
      SolveBySolver("the problem file asks for it");
    }
    return {std::move(solver), std::move(solutions)};
  }

private:
  SolverType& Type() { return problem.solverSettings.type; }
  AnalysisTask Task() const { return {problem, families, info}; }

  void SolveAutomatically();
  void PreSolve();
  SolverChoice ChooseSolver();
  void MakeSolver();
  void MakeIteration(const SolverChoice& choice);

  // --- Numbers of the nodes, and the coplanarity marks, which are valid for some numbers ---

  // Renumbers for the direct solver. The iteration uses the numbers of the file.
  void Number()
  {
    if (Type() == SolverType::SkyLine)
      Renumber();
  }
  void Renumber();
  void RestoreNumbers();
  void MarkNodes();
  void ReportMarks() const;

  void MakeSkyline();
  void SolveBySolver(const std::string& reason)
  {
    solutions = Solve(Task(), *solver, makeLoads, reason);
  }

  Problem& problem;
  const ElementFamilies& families;
  bool renumber;
  std::FILE* info;
  const MakeLoads& makeLoads;
  std::unique_ptr<BSolver> solver;
  std::vector<Solution> solutions;
  ReaVecV start;               ///< displacements of the pre-solve; empty without one
  bool marksAreValid = false;  ///< for the current nodes and their numbers
};

// Uses the solver that is estimated to be faster. When that is the iteration and it fails, the
// direct solver follows.
void Analysis::SolveAutomatically()
{
  const SolverChoice choice = ChooseSolver();
  MarkNodes();
  ReportMarks();
  if (choice.type == SolverType::SkyLine) {
    MakeSolver();
    return SolveBySolver(choice.reason);
  }
  MakeIteration(choice);
  auto& sparse = static_cast<SparseSolver&>(*solver);
  std::vector<LoadCase> cases = AssembleSystem(Task(), sparse, makeLoads, choice.reason);
  if (IterateToTheEnd(Task(), sparse, cases)) {
    solutions = Finish(Task(), std::move(cases));
    return;
  }
  if (!choice.fitsDirectly)
    SolverFailed(problem.meshes, problem.components, -std::max(sparse.ModelReport().iterations, 1),
                 NoSolverHint(sparse, choice.work));
  const std::string reason = Outcome(sparse);
  solver.reset();
  Type() = SolverType::SkyLine;
  Number();
  MarkNodes();
  MakeSolver();
  SolveBySolver(reason);
}

// Solves the model of three-node triangles by the skyline solver. Its displacements are the
// starting vector of the sparse solver for the model of six-node triangles.
void Analysis::PreSolve()
{
  CheckDoubleSolver(problem.meshes);
  Renumber();
  Progress(info, "Running a pre-solver to prepare initial values\n");
  MarkNodes();
  ReportMarks();
  MakeSkyline();
  SolveBySolver("");
  start = std::move(solutions.front().displacements);
  solutions.clear();
  solver.reset();
  problem.coplanarity.clear();
  marksAreValid = false;
  Type() = SolverType::Sparse;
  problem.convertTo6Nodes = true;
}

void Analysis::Renumber()
{
  if (!renumber)
    return;
  problem.meshes.front()->RenumberNodes();
  marksAreValid = false;
}

void Analysis::RestoreNumbers()
{
  if (!renumber)
    return;
  problem.meshes.front()->RestoreNumbers();
  marksAreValid = false;
}

void Analysis::MarkNodes()
{
  if (!marksAreValid)
    MarkCoplanarNodes(problem);
  marksAreValid = true;
}

void Analysis::ReportMarks() const
{
  const std::vector<int>& marks = problem.coplanarity;
  if (!marks.empty())
    Progress(info, "%i out of %i nodes are coplanar\n",
             static_cast<int>(std::count(marks.begin(), marks.end(), 1)), problem.numNodes);
}

// The nodes have the numbers of the chosen solver afterwards.
SolverChoice Analysis::ChooseSolver()
{
  Type() = SolverType::SkyLine;
  Number();
  const long long equations = static_cast<long long>(problem.numNodes) * problem.components.count;
  if (equations < kChoiceFrom)
    return {.reason = std::to_string(equations) + " equations are less than " +
                      std::to_string(kChoiceFrom)};
  MarkNodes();
  SolverChoice choice = FasterSolver(EstimateWork(problem, families), UsableMemory(MemoryLimit()));
  Type() = choice.type;
  if (choice.type == SolverType::Sparse)
    RestoreNumbers();
  return choice;
}

void Analysis::MakeSkyline()
{
  solver = std::make_unique<SkyMatriu>(problem.Equations(), problem.solverSettings.processor);
}

void Analysis::MakeSolver()
{
  const SolverSettings& s = problem.solverSettings;
  if (s.type == SolverType::SkyLine)
    return MakeSkyline();
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
  solver = std::move(sparse);
}

// An iteration with the default tolerances that continues until the results are good. When the
// direct solver can follow, the iteration ends as soon as that would have been faster, or when the
// structure seems to move.
void Analysis::MakeIteration(const SolverChoice& choice)
{
  auto sparse = std::make_unique<SparseSolver>(problem.numNodes, problem.components.count,
                                               problem.solverSettings.processor);
  IterationDemands demands = {.error = IterationDemands::kGoodError,
                              .change = IterationDemands::kGoodChange,
                              .components = problem.components};
  if (choice.fitsDirectly) {
    demands.quotient = IterationDemands::kLeastQuotient;
    sparse->LimitIterations(choice.work.IterationsWorthTrying());
  }
  sparse->Demand(demands);
  solver = std::move(sparse);
}

}  // namespace

std::vector<ReaVecV> LoadsOfProblem(const Problem& problem, const ElementFamilies& families)
{
  std::vector<ReaVecV> loads;
  loads.push_back(AppliedLoads(problem, families));
  return loads;
}

std::vector<Solution> SolvePrepared(const Problem& problem, const ElementFamilies& families,
                                    BSolver& solver, const MakeLoads& makeLoads, std::FILE* info)
{
  return Solve({problem, families, info}, solver, makeLoads, "");
}

Analysed Analyse(Problem& problem, const ElementFamilies& families, const AnalysisOptions& options,
                 const MakeLoads& makeLoads)
{
  return Analysis(problem, families, options, makeLoads).Run();
}

}  // namespace morlen
