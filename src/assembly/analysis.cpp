// The order of the analysis: from the problem as read to the displacements.

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

/// Why a model that is too large for the direct solver is refused.
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
/// of the six-node model. A mid-side node gets the mean of the corners of its edge.
std::unique_ptr<double[]> StartOfSixNodes(const Problem& problem, ReaVecV start)
{
  start.resize(problem.Equations(), 0.0);
  for (const auto& mesh : problem.meshes) {
    if (mesh->GiveElemType() != Triangle)
      continue;
    for (const Elem& elem : Each<Elem>(*mesh->GiveElemPlex())) {
      for (int i = 0; i < 3; ++i) {
        for (int k = 1; k <= problem.components.count; ++k)
          start(problem.Equation(*elem(i + 3), k)) =
              (start(problem.Equation(*elem(i), k)) +
               start(problem.Equation(*elem((i + 1) % 3), k))) /
              2.0;
      }
    }
  }
  ConvertGlobalLoadToLocal(problem.GiveNodes(), start, problem.components.count);
  auto values = std::make_unique<double[]>(static_cast<std::size_t>(start.Size()));
  std::copy_n(start.Data(), start.Size(), values.get());
  return values;
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
    CheckReferences(problem, families);
    CheckModel(problem, families);
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

  // The iteration runs on the numbers of the file.
  void Number()
  {
    if (renumber && Type() == SolverType::SkyLine)
      problem.meshes.front()->RenumberNodes();
  }

  void MarkNodes();
  void MakeSkyline();
  std::vector<LoadCase> AssembleSystem(const std::string& reason);
  void SolveBySolver(const std::string& reason);

  Problem& problem;
  const ElementFamilies& families;
  bool renumber;
  std::FILE* info;
  const MakeLoads& makeLoads;
  std::unique_ptr<BSolver> solver;
  std::vector<Solution> solutions;
  ReaVecV start;  ///< displacements of the pre-solve; empty without one
};

// For large models the faster solver is taken, and where that is the iteration and it fails, the
// direct one after it.
void Analysis::SolveAutomatically()
{
  const SolverChoice choice = ChooseSolver();
  MarkNodes();
  if (choice.type == SolverType::SkyLine) {
    MakeSolver();
    return SolveBySolver(choice.reason);
  }
  MakeIteration(choice);
  auto& sparse = static_cast<SparseSolver&>(*solver);
  std::vector<LoadCase> cases = AssembleSystem(choice.reason);
  if (IterateToTheEnd(Task(), sparse, cases)) {
    solutions = FinishSolutions(Task(), std::move(cases));
    return;
  }
  if (!choice.fitsDirectly)
    SolverFailed(problem, -std::max(sparse.ModelReport().iterations, 1),
                 NoSolverHint(sparse, choice.work));
  const std::string reason = Outcome(sparse);
  solver.reset();
  Type() = SolverType::SkyLine;
  Number();
  MarkCoplanarNodes(problem);
  MakeSolver();
  SolveBySolver(reason);
}

// Solves the model of three-node triangles by the skyline solver: its displacements are the
// starting vector of the sparse solver for the model of six-node triangles.
void Analysis::PreSolve()
{
  CheckDoubleSolver(problem);
  if (renumber)
    problem.meshes.front()->RenumberNodes();
  Progress(info, "Running a pre-solver to prepare initial values\n");
  MarkNodes();
  MakeSkyline();
  SolveBySolver("");
  start = std::move(solutions.front().displacements);
  solutions.clear();
  solver.reset();
  problem.coplanarity.clear();
  Type() = SolverType::Sparse;
  problem.convertTo6Nodes = true;
}

void Analysis::MarkNodes()
{
  MarkCoplanarNodes(problem);
  const std::vector<int>& marks = problem.coplanarity;
  if (!marks.empty())
    Progress(info, "%i out of %i nodes are coplanar\n",
             static_cast<int>(std::count(marks.begin(), marks.end(), 1)), problem.numNodes);
}

// Leaves the nodes with the numbers on which the chosen solver works.
SolverChoice Analysis::ChooseSolver()
{
  Type() = SolverType::SkyLine;
  Number();
  const long long equations = static_cast<long long>(problem.numNodes) * problem.components.count;
  if (equations < kChoiceFrom)
    return {.reason = std::to_string(equations) + " equations are less than " +
                      std::to_string(kChoiceFrom)};
  MarkCoplanarNodes(problem);
  SolverChoice choice = FasterSolver(EstimateWork(problem, families), UsableMemory(MemoryLimit()));
  Type() = choice.type;
  if (choice.type == SolverType::Sparse && renumber)
    problem.meshes.front()->RestoreNumbers();
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
  if (start.Size() > 0)
    sparse->EnterInitialvalues(StartOfSixNodes(problem, start));
  solver = std::move(sparse);
}

// With the default tolerances, but it goes on until the results are good. Where the direct solver
// can follow, the iteration ends as soon as that would have been faster, or a structure seems to
// move.
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

std::vector<LoadCase> Analysis::AssembleSystem(const std::string& reason)
{
  CreateMatrix(problem, *solver);
  if (!reason.empty())
    Progress(info, "Solver %s taken: %s\n", Type() == SolverType::Sparse ? "Sparse" : "SkyLine",
             reason.c_str());
  if (info)
    solver->PrintInfoMem(info);
  Progress(info, "Just before filling global stiffness matrix\n");
  AddStiffness(Task(), *solver);
  Progress(info, "Stiffness matrix filled\n");
  std::vector<ReaVecV> loads = makeLoads(problem, families);
  Progress(info, "Load vector constructed\n");
  Progress(info, "Beginning to apply constraints\n");
  return MakeLoadCases(problem, std::move(loads));
}

void Analysis::SolveBySolver(const std::string& reason)
{
  std::vector<LoadCase> cases = AssembleSystem(reason);
  if (Type() == SolverType::Sparse)
    SolveByIteration(Task(), static_cast<SparseSolver&>(*solver), cases);
  else
    SolveDirectly(Task(), static_cast<SkyMatriu&>(*solver), cases);
  solutions = FinishSolutions(Task(), std::move(cases));
}

}  // namespace

Analysed Analyse(Problem& problem, const ElementFamilies& families, const AnalysisOptions& options,
                 const MakeLoads& makeLoads)
{
  return Analysis(problem, families, options, makeLoads).Run();
}

Analysed Analyse(Problem& problem, const ElementFamilies& families, const AnalysisOptions& options)
{
  return Analyse(problem, families, options,
                 [](const Problem& prepared, const ElementFamilies& known) {
                   std::vector<ReaVecV> loads;
                   loads.push_back(AppliedLoads(prepared, known));
                   return loads;
                 });
}

}  // namespace morlen
