#include "report/applied_loads.h"

#include "assembly/model_checks.h"
#include "assembly/shell_shares.h"
#include "model/elem.h"
#include "model/mesh.h"
#include "model/node.h"
#include "numeric/matriu.h"
#include "numeric/plex_range.h"
#include "numeric/reavecv.h"
#include "problem/loads_on_element.h"
#include "problem/problem.h"
#include "run/element_families.h"

namespace morlen {

namespace {

// Adds components of a node: translations first; a single rotation is that about z.
void AddComponents(const model::Model& model, const std::array<double, 6>& values, Wrench& sum)
{
  const int translations = model.Translations();
  for (int k = 0; k < translations; ++k)
    sum.force[k] += values[k];
  const int rotations = model.components - translations;
  for (int k = 0; k < rotations; ++k)
    sum.moment[3 - rotations + k] += values[translations + k];
}

// The equivalent nodal loads of the meshes of beams (`beams`), or of all other meshes.
std::vector<Wrench> LoadsOfMeshes(const Problem& problem, const model::Model& model, bool beams)
{
  ReaVecV byEquation;
  byEquation.resize(problem.Equations(), 0.0);
  for (const auto& mesh : problem.meshes) {
    if ((mesh->GiveElemType() == Linear) == beams)
      FamiliesOf(problem).Of(*mesh).addLoads(problem, *mesh, byEquation);
  }
  std::vector<Wrench> loads(model.nodes.size());
  std::size_t position = 0;
  for (const Node& node : Each<Node>(problem.GiveNodes())) {
    std::array<double, 6> values{};
    for (int k = 0; k < problem.components.count; ++k)
      values[k] = byEquation(problem.Equation(node, k + 1));
    AddComponents(model, values, loads[position++]);
  }
  return loads;
}

std::vector<LineLoad> LoadsOnBeams(const Problem& problem, const model::Model& model)
{
  std::vector<LineLoad> loads;
  Matriu T;
  for (std::size_t i = 0; i < model.elements.size(); ++i) {
    const model::Element& element = model.elements[i];
    if (element.kind != model::Kind::Beam)
      continue;
    const SpanLoad load = LoadOn(problem, MakeSpan(problem, *problem.GiveElem(element.number), T));
    LineLoad added{static_cast<int>(i), {}};
    for (int axis = 0; axis < 3; ++axis) {
      for (int k = 0; k < 3; ++k)
        added.q[k] += load.q[axis] * element.axes[axis][k];
    }
    if (added.q != Vec3{})
      loads.push_back(added);
  }
  return loads;
}

}  // namespace

void PrepareLoads(Problem& problem)
{
  CheckReferences(problem.meshes, problem.materials, FamiliesOf(problem));
  if (problem.shellFormulation == ShellFormulation::Refined)
    problem.shellShares = CalcShellShares(problem);
}

AppliedLoads AppliedLoadsOf(const Problem& problem, const model::Model& model)
{
  AppliedLoads loads;
  loads.nodes = LoadsOfMeshes(problem, model, true);
  const std::vector<Wrench> others = LoadsOfMeshes(problem, model, false);
  for (std::size_t i = 0; i < others.size(); ++i) {
    loads.onSurfaces.push_back(others[i].force);
    for (int k = 0; k < 3; ++k) {
      loads.nodes[i].force[k] += others[i].force[k];
      loads.nodes[i].moment[k] += others[i].moment[k];
    }
  }
  for (const model::NodalLoad& load : model.nodalLoads)
    AddComponents(model, load.values, loads.nodes[load.node]);
  loads.onBeams = LoadsOnBeams(problem, model);
  return loads;
}

}  // namespace morlen
