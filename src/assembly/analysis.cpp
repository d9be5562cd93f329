// The order of the analysis: from the model as read to the displacements.

#include <algorithm>

#include "assembly/six_nodes.h"
#include "assembly/support_axes.h"
#include "base/array_size.h"
#include "base/errorwriter.h"
#include "base/read_observer.h"
#include "base/stprintf.h"
#include "model/mesh.h"
#include "model/node.h"
#include "numeric/matriu.h"
#include "numeric/plex_range.h"
#include "problem/constraint.h"
#include "problem/element_family.h"
#include "problem/project.h"
#include "problem/references.h"
#include "solvers/skymatriu.h"
#include "solvers/sparse_solver.h"

namespace {

// From this number of equations on, the automatic choice is the sparse solver.
constexpr int kSparseFrom = 15000;

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
  ChooseSolver();
  if (renumber && solverSettings.type == SolverType::SkyLine)
    meshes.front()->RenumberNodes();
  MarkCoplanarNodes(info);
  MakeSolver();
  Solve(info);
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
  Solve(info);
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

void Project::Solve(std::FILE* info)
{
  displacements.resize(ArrayLength(numNodes, freeDegrees), 0.0);
  displacements = 0.0;
  FillMatrixVectorAndSolve(info);
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

void Project::ChooseSolver()
{
  if (solverSettings.type != SolverType::Automatic)
    return;
  const bool small = static_cast<long long>(numNodes) * freeDegrees < kSparseFrom;
  solverSettings.type = small ? SolverType::SkyLine : SolverType::Sparse;
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
