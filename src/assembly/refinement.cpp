#include "assembly/refinement.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "assembly/free_equations.h"
#include "assembly/support_axes.h"
#include "solvers/direct_solver.h"

namespace morlen {

namespace {

constexpr int kMostSteps = 8;
/// The refinement of a model ends below this correction: the next one would be still smaller.
constexpr double kNegligible = 1e-10;
/// The refinement of a model ends below this residual. The residual has a limit besides that of the
/// correction, because forces of stiff parts may be wrong although no displacement changes any
/// more.
constexpr double kNegligibleResidual = 1e-9;
/// A model whose corrections no longer fall is good enough below this correction.
constexpr double kGood = 1e-6;
/// A case with a larger last correction is refused.
constexpr double kLargestCorrection = 1e-3;
/// A case with a larger last residual is refused.
constexpr double kLargestResidual = 1e-3;
/// A structure can move when the last correction of the probe is above this, and is at least half
/// the one before.
constexpr double kMoves = 0.1;

/// True when the last value is negligible, more than half of the one before, or NaN.
bool IsSettled(const std::vector<double>& values, double negligible)
{
  const double last = values.back();
  return !(last > negligible) || (values.size() > 1 && !(last <= values[values.size() - 2] / 2.0));
}

/// True when more steps would not help.
bool IsDone(const RefinedCase& model)
{
  return !model.corrections.empty() && !(model.LastCorrection() > kGood) &&
         IsSettled(model.corrections, kNegligible) &&
         IsSettled(model.residuals, kNegligibleResidual);
}

/// True when the case has been corrected, and its correction and its residual are small enough.
bool IsAccepted(const RefinedCase& one)
{
  return !one.corrections.empty() && one.LastCorrection() < kLargestCorrection &&
         one.LastResidual() < kLargestResidual;
}

/// True when the corrections of the probe are those of a structure that can move.
bool Moves(const RefinedCase& probe)
{
  const std::vector<double>& c = probe.corrections;
  return c.back() > kMoves && (c.size() == 1 || c.back() >= c[c.size() - 2] / 2.0);
}

}  // namespace

RefinedCase::RefinedCase(ReaVecV loads_, Norm norm_, double size, ReaVecV u_)
    : loads(std::move(loads_)), norm(norm_), loadSize(size), u(std::move(u_))
{
}

double SizeOnFree(RefinedCase::Norm norm, const VoidPlex& nodes, const ComponentScale& scale,
                  const ReaVecV& loads)
{
  return norm == RefinedCase::Norm::Largest ? LargestOnFree(nodes, scale, loads)
                                            : NormOnFree(nodes, scale, loads);
}

bool RefinedCase::Diverges() const
{
  const double ofMotion = 1.0 / (1.0 + static_cast<double>(corrections.size()));
  return !(LastCorrection() <= 2.0 * ofMotion);
}

Refinement::Refinement(const DirectSolver& factors_, const VoidPlex& nodes_,
                       const ComponentScale& scale_, AddForces addForces_)
    : factors(factors_), nodes(nodes_), scale(scale_), addForces(std::move(addForces_))
{
}

Refinement::Verdict Refinement::Run(RefinedCases& cases) const
{
  auto& [models, probe] = cases;
  std::vector<RefinedCase*> all;
  all.reserve(models.size() + 1);
  for (RefinedCase& model : models)
    all.push_back(&model);
  if (!IsAccepted(probe))
    all.push_back(&probe);
  FindResiduals(all);
  for (int step = 1; step <= kMostSteps; ++step) {
    std::vector<RefinedCase*> open;
    open.reserve(models.size() + 1);
    for (RefinedCase& model : models) {
      if (!IsDone(model))
        open.push_back(&model);
    }
    if (!IsAccepted(probe))
      open.push_back(&probe);
    if (open.empty())
      break;
    Correct(open);
    if (IsAccepted(probe))
      std::erase(open, &probe);
    FindResiduals(open);
  }
  if (IsAccepted(probe) && std::all_of(models.begin(), models.end(), IsAccepted))
    return Verdict::Accepted;
  return Moves(probe) ? Verdict::Moves : Verdict::TooRough;
}

void Refinement::Correct(const std::vector<RefinedCase*>& cases) const
{
  std::vector<ReaVecV*> sides;
  sides.reserve(cases.size());
  for (RefinedCase* one : cases)
    sides.push_back(&one->residual);
  factors.Substitute(sides, nullptr);
  for (RefinedCase* one : cases) {
    const ReaVecV& correction = one->residual;
    one->u.Add(correction);
    const double size = Size(correction);
    one->corrections.push_back(size == 0.0 ? 0.0 : size / Size(one->u.value));
  }
}

void Refinement::FindResiduals(const std::vector<RefinedCase*>& cases) const
{
  if (cases.empty())
    return;
  std::vector<SplitVector> global;
  global.reserve(cases.size());
  for (const RefinedCase* one : cases) {
    global.push_back(one->u);
    ConvertLocalResultsToGlobal(nodes, global.back().value, scale.components.count);
    ConvertLocalResultsToGlobal(nodes, global.back().rest, scale.components.count);
  }
  InternalForces forces({global.begin(), global.end()}, cases.front()->loads.Size(),
                        scale.components.count);
  addForces(forces);
  for (std::size_t k = 0; k < cases.size(); ++k) {
    cases[k]->elementForces = std::move(forces.Forces(static_cast<int>(k)));
    FindResidual(*cases[k]);
  }
}

void Refinement::FindResidual(RefinedCase& one) const
{
  ReaVecV forces = one.elementForces;
  ConvertGlobalLoadToLocal(nodes, forces, scale.components.count);
  one.residual.resize(forces.Size(), 0.0);
  one.residual = 0.0;
  ForEachFree(nodes, scale.components, [&](int equation, int, double spring) {
    double& missing = one.residual(equation);
    missing = one.loads(equation) - forces(equation);
    if (spring != 0.0)
      missing -= spring * one.u.value(equation) + spring * one.u.rest(equation);
  });
  const double size = SizeOnFree(one.norm, nodes, scale, one.residual);
  one.residuals.push_back(one.loadSize > 0.0 ? size / one.loadSize : size);
}

double Refinement::Size(const ReaVecV& u) const
{
  const int n = scale.components.count;
  double largest = 0.0;
  for (int node = 0; node < u.Size(); node += n) {
    double sizes[2] = {};  // of translations and of rotations
    for (int k = 0; k < n; ++k) {
      double& size = sizes[k < scale.components.translations ? 0 : 1];
      size = std::hypot(size, u.Data()[node + k]);
    }
    // `size <= largest` is false for NaN, so that a NaN stays.
    for (const double size : {sizes[0], scale.length * sizes[1]})
      largest = size <= largest ? largest : size;
  }
  return largest;
}

ReaVecV Refinement::Motion(const RefinedCase& probe) const
{
  ReaVecV motion = probe.residual;
  factors.Substitute({&motion}, nullptr);
  return motion;
}

int Refinement::LargestMotion(const ReaVecV& u) const
{
  int found = 1;
  double largest = -1.0;
  ForEachFree(nodes, scale.components, [&](int equation, int component, double) {
    const double motion = scale.Unit(component) * std::fabs(u(equation));
    if (motion > largest) {
      largest = motion;
      found = equation;
    }
  });
  return found;
}

}  // namespace morlen
