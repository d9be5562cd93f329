#include "run/project.h"

#include <utility>

#include "assembly/analysis.h"
#include "assembly/beam_family.h"
#include "assembly/coplanarity.h"
#include "assembly/shell_family.h"
#include "assembly/six_nodes.h"
#include "assembly/solid_family.h"
#include "base/errorwriter.h"
#include "model/constraint.h"
#include "model/node.h"
#include "problem/elem_load_reader.h"
#include "problem/hinges.h"
#include "problem/nodal_reader.h"
#include "problem/problem_reader.h"
#include "problem/settings_reader.h"
#include "problem/support_checks.h"
#include "problem/units_reader.h"
#include "results/beam_strengths.h"
#include "results/kiv_results.h"
#include "results/mesh_output.h"
#include "results/model_dump.h"
#include "results/reactions.h"
#include "results/strengths.h"
#include "results/text_results.h"
#include "run/element_families.h"

namespace morlen {

namespace {

// Copies the reactions of a solution to the supports.
void ShowReactions(const VoidPlex& nodes, const NodeComponents& components,
                   const ReaVecV& reactions)
{
  for (const Node& node : Each<Node>(nodes)) {
    if (!node.constraint)
      continue;
    for (int k = 1; k <= components.count; ++k)
      node.constraint->reactions[k - 1] = reactions(components.Equation(node.number, k));
  }
}

}  // namespace

void Project::ReadFromAscii(std::ifstream& in)
{
  ReadProblem(in, problem);
}

void Project::ReadFromAscii(TextScan& text)
{
  ReadProblem(text, problem);
}

void Project::ReadFAUnitsNames(TextScan& text)
{
  ReadUnitsNames(text, problem);
}

void Project::ReadFAMaterials(TextScan& text)
{
  ReadMaterials(text, problem);
}

void Project::ReadFAConstraints(TextScan& text)
{
  ReadConstraints(text, problem);
}

void Project::ReadFALoads(TextScan& text)
{
  ReadNodalLoads(text, problem);
}

void Project::ReadFARotules(TextScan& text)
{
  ReadNodeHinges(text, problem);
}

void Project::ReadFARotulesElems(TextScan& text)
{
  ReadElementHinges(text, problem);
}

int Project::ReadElemLoad(TextScan& text, std::string_view word)
{
  return morlen::ReadElemLoad(text, word, problem) ? 0 : -1;
}

void Project::Calc(int renumber, std::FILE* info)
{
  Analysed analysed =
      Analyse(problem, FamiliesOf(problem), {.renumber = renumber != 0, .info = info, .kit = kit});
  solver = std::move(analysed.solver);
  solution = std::move(analysed.solutions.front());
  account = std::move(analysed.account);
}

void Project::FillMatrixVectorAndSolve(std::FILE* info)
{
  if (!solver)
    Fatal("error: unknown solver\n");
  solution =
      SolvePrepared(problem, FamiliesOf(problem), *solver, LoadsOfProblem, info, kit).front();
}

void Project::CalcElemsRotules()
{
  MergeHinges(problem);
}

void Project::CalcCoplanarityVector()
{
  MarkCoplanarNodes(problem);
}

void Project::ConvertTriangleTo6nod(Mesh* mesh, EdgeNodes& edges)
{
  morlen::ConvertTriangleTo6nod(problem, *mesh, edges);
}

void Project::CheckTypicalConstraintsErrors() const
{
  morlen::CheckTypicalConstraintsErrors(problem.meshes, problem.components.count);
}

void Project::AddKToGlobalMatrixBeams(Mesh* mesh, int applyLocalAxes, ElementSink& sink) const
{
  AddBeamStiffness(problem, *mesh, applyLocalAxes, sink);
}

void Project::AddKToGlobalMatrixTriangles(Mesh* mesh, int applyLocalAxes, ElementSink& sink) const
{
  AddShellStiffness(problem, *mesh, applyLocalAxes, sink);
}

void Project::AddKToGlobalMatrixTetras(Mesh* mesh, int applyLocalAxes, ElementSink& sink) const
{
  AddSolidStiffness(problem, *mesh, applyLocalAxes, sink);
}

void Project::CalcStrengthsAndReactions(std::FILE* info)
{
  solver.reset();  // frees the memory of the matrix for the results
  morlen::CalcStrengthsAndReactions(problem, FamiliesOf(problem), solution, info, kit);
  ShowReactions(problem.GiveNodes(), problem.components, solution.reactions);
}

void Project::CalcStrengthsBeams(int mesh)
{
  CalcStrengths(problem, FamiliesOf(problem), mesh, solution);
}

void Project::CalcStrengthsTriangles(int mesh)
{
  CalcStrengths(problem, FamiliesOf(problem), mesh, solution);
}

void Project::CalcStrengthsTetras(int mesh)
{
  CalcStrengths(problem, FamiliesOf(problem), mesh, solution);
}

void Project::CalcReactions()
{
  morlen::CalcReactions(problem, FamiliesOf(problem), solution);
  ShowReactions(problem.GiveNodes(), problem.components, solution.reactions);
}

void Project::Smooth(std::FILE* info)
{
  morlen::Smooth(problem, FamiliesOf(problem), solution, info);
}

double Project::GiveStrength(int mesh, const Elem& elem, int component, double t, double L) const
{
  return morlen::GiveStrength(solution.results[mesh], elem.Num(), component, t, L);
}

double Project::GiveReaction(const Elem& elem, int dof, double t) const
{
  return morlen::GiveReaction(problem.components, solution.reactions, elem, dof, t);
}

void Project::SetDisplacementVectors(const Elem& elem, const Matriu& T, int divisions,
                                     double* out) const
{
  morlen::SetDisplacementVectors(problem.components, solution.displacements, elem,
                                 problem.GiveHingeCode(elem.Num()), T, divisions, out);
}

void Project::WriteResults(std::ofstream& out) const
{
  morlen::WriteResults(problem, FamiliesOf(problem), solution, out);
}

void Project::WriteBeamStrength(int mesh, TextOut& out) const
{
  WriteBeamForces({problem, solution, *problem.meshes[mesh], solution.results[mesh]}, out);
}

void Project::WriteKivResults(std::ofstream& res, const char* meshFileName) const
{
  morlen::WriteKivResults(problem, FamiliesOf(problem), solution, res, meshFileName);
}

void Project::PrintTo(std::ofstream& out) const
{
  morlen::PrintTo(problem, out);
}

}  // namespace morlen
