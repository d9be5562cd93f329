#include "case_file/results_of.h"

#include <algorithm>
#include <unordered_map>

#include "cases/combination.h"
#include "problem/problem.h"

namespace morlen::cases {
namespace {

/// Fills the results group by group.
class Filler
{
public:
  Filler(const Study& study_, const SolvedCases& cases_, const Combination& combination_)
      : study(study_), model(study.model), cases(cases_), combination(combination_)
  {
    for (std::size_t i = 0; i < model.nodes.size(); ++i)
      nodeAt[model.nodes[i].number] = static_cast<int>(i);
    results.nodes.resize(model.nodes.size());
    results.beamPoints.resize(model.beamPoints);
    results.shellPoints.resize(model.shellPoints);
    results.rotations = !model.solids;
    results.shellLocal = model.shellPoints > 0;
    results.derived = true;
  }

  results::Results Fill()
  {
    for (const ValueGroup& group : cases.Layout().Groups())
      FillGroup(group);
    if (study.problem->stressOutput != StressOutput::Local && results.shellLocal)
      FillMain();
    return std::move(results);
  }

private:
  void FillGroup(const ValueGroup& group)
  {
    GroupValues values(cases, group, {&combination, 1});
    const int most = values.ItemsOfBlock();
    for (int first = 0; first < group.items; first += most) {
      const int count = std::min(most, group.items - first);
      values.Compute(first, count);
      const double* at = values.Of(0).data();
      for (int item = first; item < first + count; ++item) {
        for (int point = 0; point < group.points; ++point, at += group.Width())
          Enter(group, item, point, at);
      }
    }
    if (group.kind == ValueKind::BeamForces)
      beamsBefore += group.items * group.points;
    else if (group.kind == ValueKind::BeamDisplacements)
      displacedBefore += group.items * group.points;
    else if (group.kind == ValueKind::ShellForces)
      shellsBefore += group.items * group.points;
  }

  void Enter(const ValueGroup& group, int item, int point, const double* v)
  {
    const int place = item * group.points + point;
    switch (group.kind) {
      case ValueKind::Displacements: {
        results::Node& node = NodeOf(group, item);
        Split(v, node.displacement, node.rotation);
        node.translation = v[group.linear];
        return;
      }
      case ValueKind::Reactions: {
        results::Node& node = NodeOf(group, item);
        return Split(v, node.force, node.moment);
      }
      case ValueKind::BeamForces:
        return SpreadForces(v, results.beamPoints[beamsBefore + place].forces);
      case ValueKind::BeamDisplacements: {
        Vec3& to = results.beamPoints[displacedBefore + place].displacement;
        std::copy_n(v, group.linear, to.begin());
        return;
      }
      case ValueKind::BeamEnds:
        if (point == 0)
          results.beamEnds.emplace_back();
        return SpreadForces(v, results.beamEnds.back()[point]);
      case ValueKind::ShellForces: {
        results::ShellPoint& to = results.shellPoints[shellsBefore + place];
        std::copy_n(v, 8, to.local.begin());
        std::copy_n(v + 8, 4, to.principal.begin());
        std::copy_n(v + 12, 4, to.design.begin());
        return;
      }
      case ValueKind::SolidStresses:
        return EnterStresses(v, NodeOf(group, item));
    }
  }

  results::Node& NodeOf(const ValueGroup& group, int item)
  {
    return results.nodes[nodeAt.at(cases.Layout().NumberOf(group, item))];
  }

  // The components of a node as translations and rotations; in the plane x, y and about z.
  void Split(const double* v, Vec3& first, Vec3& second) const
  {
    const int translations = model.Translations();
    std::copy_n(v, translations, first.begin());
    if (model.solids)
      return;
    if (model.plane)
      second[2] = v[2];
    else
      std::copy_n(v + 3, 3, second.begin());
  }

  // Of beams in the plane the third value is the moment about z, the last one in space.
  void SpreadForces(const double* v, std::array<double, 6>& forces) const
  {
    std::copy_n(v, model.components, forces.begin());
    if (model.plane)
      std::swap(forces[2], forces[5]);
  }

  // The results have yz before xz.
  void EnterStresses(const double* v, results::Node& node)
  {
    results.stresses = true;
    node.stress = {v[0], v[1], v[2], v[3], v[5], v[4]};
    node.vonMises = v[6];
    std::copy_n(v + 7, 3, node.principal.begin());
  }

  void FillMain()
  {
    const Solution solution = cases.Layout().SolutionOf(CombinedColumn(cases, combination));
    const bool apart = study.problem->stressOutput == StressOutput::MainAndLocal;
    auto to = results.shellPoints.begin();
    for (const MeshResults& mesh : solution.results) {
      const ReaVecV& values = apart ? mesh.mainStrengths : mesh.strengths;
      const int count = mesh.mainAngles.Size() / 6;
      for (int i = 0; i < count; ++i, ++to) {
        const double* v = values.Data() + 8 * i;
        to->main = {v[0], v[1], v[3], v[4], v[6], v[7]};
        std::copy_n(mesh.mainAngles.Data() + 6 * i, 6, to->mainAngles.begin());
      }
    }
    results.shellMain = true;
  }

  const Study& study;
  const model::Model& model;
  const SolvedCases& cases;
  const Combination& combination;
  results::Results results;
  std::unordered_map<int, int> nodeAt;                         ///< position by number
  int beamsBefore = 0, displacedBefore = 0, shellsBefore = 0;  ///< points of meshes before
};

}  // namespace

results::Results ResultsOf(const Study& study, const SolvedCases& cases,
                           const Combination& combination)
{
  return Filler(study, cases, combination).Fill();
}

}  // namespace morlen::cases
