// The order of the analysis: from the model as read to the displacements.

#include <climits>

#include "base/errorwriter.h"
#include "model/mesh.h"
#include "model/node.h"
#include "numeric/plex_range.h"
#include "problem/element_family.h"
#include "problem/project.h"
#include "solvers/skymatriu.h"
#include "solvers/sparse_solver.h"

namespace {

// From this number of equations on, the automatic choice is the sparse solver.
constexpr int kSparseFrom = 15000;

void CheckLengths(const Mesh& beams)
{
  for (const Elem& elem : Each<Elem>(*beams.GiveElemPlex())) {
    if (!(dist2(elem(0), elem(1)) > 0.0))
      Fatal("error: element ", elem.Num(), " has no length\n");
  }
}

}  // namespace

void Project::Calc(int renumber, std::FILE* info)
{
  CheckModel();
  if (hasHinges)
    CalcElemsRotules();
  ChooseSolver();
  if (renumber && solverSettings.type == SolverType::SkyLine)
    meshes.front()->RenumberNodes();
  MakeSolver();
  displacements.resize(numNodes * freeDegrees, 0.0);
  displacements = 0.0;
  FillMatrixVectorAndSolve(info);
}

void Project::CheckModel() const
{
  if (numNodes > INT_MAX / freeDegrees)
    Fatal("Not space available on heap");
  for (const auto& mesh : meshes) {
    if (FamilyOf(*mesh).spaceOnly && problemType == kPlane)
      Fatal("error: elements of type ", ElemTypeName(mesh->GiveElemType()), " need a 3d problem\n");
    if (mesh->GiveElemType() == Linear)
      CheckLengths(*mesh);
  }
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
  if (s.type == SolverType::SkyLine)
    solver = std::make_unique<SkyMatriu>(numNodes * freeDegrees);
  else if (s.type != SolverType::Sparse)
    Fatal("error: unknown solver\n");
  else if (s.maxIterations == 0)
    solver = std::make_unique<SparseSolver>(numNodes, freeDegrees);
  else
    solver = std::make_unique<SparseSolver>(numNodes, freeDegrees, s.tolerance1, s.tolerance2,
                                            s.maxIterations);
}
