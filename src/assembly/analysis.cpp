// The order of the analysis: from the model as read to the displacements.

#include <algorithm>
#include <sstream>
#include <string>

#include "assembly/six_nodes.h"
#include "assembly/solver_choice.h"
#include "assembly/support_axes.h"
#include "base/array_size.h"
#include "base/errorwriter.h"
#include "base/memory_limit.h"
#include "base/read_observer.h"
#include "base/stprintf.h"
#include "model/constraint.h"
#include "model/mesh.h"
#include "model/node.h"
#include "numeric/matriu.h"
#include "numeric/plex_range.h"
#include "problem/element_family.h"
#include "problem/project.h"
#include "problem/references.h"
#include "solvers/skymatriu.h"
#include "solvers/sparse_solver.h"

namespace morlen {

namespace {

/// What an iteration has come to that cannot be used.
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

void RequireLength(const Elem& beam)
{
  if (!(dist2(beam(0), beam(1)) > 0.0))
    Fatal("error: element ", beam.Num(), " has no length\n");
}

void CheckLengths(const Mesh& beams)
{
  for (const Elem& elem : Each<Elem>(*beams.GiveElemPlex()))
    AttemptOn(ReadItem::Element, elem.Num(), [&] { RequireLength(elem); });
}

}  // namespace

void Project::Calc(int renumber, std::FILE* info)
{
  CheckReferences(*this);
  CheckModel();
  if (hasHinges)
    CalcElemsRotules();
  if (solverSettings.type == SolverType::Double)
    PreSolve(renumber, info);
  if (convertTo6Nodes)
    ConvertTriangles(info);
  if (solverSettings.type == SolverType::Automatic) {
    CalcAutomatically(renumber, info);
    return;
  }
  Number(renumber);
  MarkCoplanarNodes(info);
  solverReason = "the problem file asks for it";
  MakeSolver();
  FillMatrixVectorAndSolve(info);
}

// Small models are solved directly. For large ones the faster solver is taken, and where that is
// the iteration and it fails, the direct one after it.
void Project::CalcAutomatically(int renumber, std::FILE* info)
{
  const SolverChoice choice = ChooseSolver(renumber);
  MarkCoplanarNodes(info);
  solverReason = choice.reason;
  if (choice.type == SolverType::SkyLine) {
    MakeSolver();
    FillMatrixVectorAndSolve(info);
    return;
  }
  MakeIteration(choice);
  PrepareSystem(info);
  if (IterateToTheEnd(info)) {
    FinishSolution(info);
    return;
  }
  const auto& sparse = static_cast<const SparseSolver&>(*solver);
  if (!choice.fitsDirectly)
    SolverFailed(-std::max(sparse.ModelReport().iterations, 1), NoSolverHint(sparse, choice.work));
  solverReason = Outcome(sparse);
  solver.reset();
  solverSettings.type = SolverType::SkyLine;
  Number(renumber);
  MarkCoplanarNodes(nullptr);
  MakeSolver();
  FillMatrixVectorAndSolve(info);
}

// The iteration runs on the numbers of the file.
void Project::Number(int renumber)
{
  if (renumber && solverSettings.type == SolverType::SkyLine)
    meshes.front()->RenumberNodes();
}

// The model as it stands, by the skyline solver: its displacements are the starting vector
// of the sparse solver for the model of six-node triangles.
void Project::PreSolve(int renumber, std::FILE* info)
{
  CheckDoubleSolver();
  if (renumber)
    meshes.front()->RenumberNodes();
  Progress(info, "Running a pre-solver to prepare initial values\n");
  MarkCoplanarNodes(info);
  solver =
      std::make_unique<SkyMatriu>(ArrayLength(numNodes, freeDegrees), solverSettings.processor);
  FillMatrixVectorAndSolve(info);
  solver.reset();
  coplanarity.clear();
  preSolved = true;
  solverSettings.type = SolverType::Sparse;
  convertTo6Nodes = true;
}

void Project::CheckDoubleSolver() const
{
  for (const auto& mesh : meshes) {
    if (mesh->GiveElemType() == Triangle && mesh->GiveNnode() != 3)
      Fatal("error: Solver DOUBLE needs a shell mesh of 3-noded triangles\n");
    if (mesh->GiveElemType() == Tetrahedra)
      Fatal("error: Double solver not implemented for tetrahedras\n");
  }
}

void Project::ConvertTriangles(std::FILE* info)
{
  EdgeNodes edges;
  bool converted = false;
  for (const auto& mesh : meshes) {
    if (mesh->GiveElemType() != Triangle || mesh->GiveNnode() != 3)
      continue;
    ConvertTriangleTo6nod(mesh.get(), edges);
    converted = true;
  }
  if (converted)
    Progress(info, "Mesh converted to internal 6-noded representation\n");
}

void Project::MarkCoplanarNodes(std::FILE* info)
{
  const bool shells = std::any_of(meshes.begin(), meshes.end(), [](const auto& mesh) {
    return mesh->GiveElemType() == Triangle;
  });
  if (!shells)
    return;
  CalcCoplanarityVector();
  Progress(info, "%i out of %i nodes are coplanar\n",
           static_cast<int>(std::count(coplanarity.begin(), coplanarity.end(), 1)), numNodes);
}

void Project::CheckModel() const
{
  for (const auto& mesh : meshes) {
    Attempt(nullptr, [&] { RequireFamily(*mesh); });
    if (mesh->GiveElemType() == Linear)
      CheckLengths(*mesh);
  }
  // Once, while the nodes still have the numbers of the file.
  Matriu T;
  for (const auto [number, node] : EachNumbered<Node>(GiveNodes())) {
    if (node.constraint)
      AttemptOn(ReadItem::Support, number, [&, &support = *node.constraint, number = number] {
        support.CalcTransfMatFromEuler(number, T, freeDegrees, 1);
      });
  }
}

void Project::RequireFamily(const Mesh& mesh) const
{
  if (FamilyOf(mesh).spaceOnly && problemType == kPlane)
    Fatal("error: elements of type ", ElemTypeName(mesh.GiveElemType()), " need a 3d problem\n");
}

// Leaves the nodes with the numbers that the chosen solver works on.
SolverChoice Project::ChooseSolver(int renumber)
{
  solverSettings.type = SolverType::SkyLine;
  Number(renumber);
  const long long equations = static_cast<long long>(numNodes) * freeDegrees;
  if (equations < kChoiceFrom)
    return {.reason = std::to_string(equations) + " equations are less than " +
                      std::to_string(kChoiceFrom)};
  MarkCoplanarNodes(nullptr);
  SolverChoice choice = FasterSolver(EstimateWork(*this), UsableMemory(MemoryLimit()));
  solverSettings.type = choice.type;
  if (choice.type == SolverType::Sparse && renumber)
    meshes.front()->RestoreNumbers();
  return choice;
}

void Project::MakeSolver()
{
  const SolverSettings& s = solverSettings;
  if (s.type == SolverType::SkyLine) {
    solver = std::make_unique<SkyMatriu>(ArrayLength(numNodes, freeDegrees), s.processor);
    return;
  }
  if (s.type != SolverType::Sparse)
    Fatal("error: unknown solver\n");
  auto sparse = s.maxIterations == 0
                    ? std::make_unique<SparseSolver>(numNodes, freeDegrees, s.processor)
                    : std::make_unique<SparseSolver>(numNodes, freeDegrees, s.tolerance1,
                                                     s.tolerance2, s.maxIterations, s.processor);
  if (preSolved)
    sparse->EnterInitialvalues(StartFromPreSolve());
  solver = std::move(sparse);
}

// With the defaults, but it goes on until the results are good. Where the direct solver can take
// over, it is left as soon as that would have been faster, or a structure seems to move.
void Project::MakeIteration(const SolverChoice& choice)
{
  auto sparse = std::make_unique<SparseSolver>(numNodes, freeDegrees, solverSettings.processor);
  IterationDemands demands = {.error = IterationDemands::kGoodError,
                              .change = IterationDemands::kGoodChange,
                              .components = freeDegrees,
                              .translations = translations};
  if (choice.fitsDirectly) {
    demands.quotient = IterationDemands::kLeastQuotient;
    sparse->LimitIterations(choice.work.IterationsWorthTrying());
  }
  sparse->Demand(demands);
  solver = std::move(sparse);
}

// The displacements of the pre-solve; a mid-side node takes the mean of its corners'.
std::unique_ptr<double[]> Project::StartFromPreSolve() const
{
  ReaVecV start = displacements;
  start.resize(ArrayLength(numNodes, freeDegrees), 0.0);
  for (const auto& mesh : meshes) {
    if (mesh->GiveElemType() != Triangle)
      continue;
    for (const Elem& elem : Each<Elem>(*mesh->GiveElemPlex())) {
      for (int i = 0; i < 3; ++i) {
        for (int k = 1; k <= freeDegrees; ++k)
          start(Equation(*elem(i + 3), k)) =
              (start(Equation(*elem(i), k)) + start(Equation(*elem((i + 1) % 3), k))) / 2.0;
      }
    }
  }
  ConvertGlobalLoadToLocal(GiveNodes(), start, freeDegrees);
  auto values = std::make_unique<double[]>(static_cast<std::size_t>(start.Size()));
  std::copy_n(start.Data(), start.Size(), values.get());
  return values;
}

}  // namespace morlen
