#include "assembly/refinement.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "assembly/free_equations.h"
#include "assembly/support_axes.h"
#include "solvers/skymatriu.h"

namespace {

constexpr int kMostSteps = 8;
/// A correction of the model that is not worth another: the next one is smaller again.
constexpr double kNegligible = 1e-10;
/// A correction of the model up to which rounding may stop the refinement.
constexpr double kGood = 1e-6;
/// The largest correction of the probe, and of the model, in a structure that stands.
constexpr double kStands = 1e-3;
/// Corrections of a structure that can move stay above this, and above half the one before.
constexpr double kMoves = 0.1;

/// Whether more steps would not help: written so that a correction that is not a number ends them.
bool IsDone(const RefinedCase& model)
{
  const std::vector<double>& c = model.corrections;
  if (!(c.back() > kNegligible))
    return true;
  return c.size() > 1 && c.back() <= kGood && c.back() > c[c.size() - 2] / 2.0;
}

bool Stands(const RefinedCase& one)
{
  return one.LastCorrection() < kStands;
}

Refinement::Verdict Judge(const std::vector<double>& corrections)
{
  const double last = corrections.back();
  if (last < kStands)
    return Refinement::Verdict::Accepted;
  const double before = corrections.size() > 1 ? corrections[corrections.size() - 2] : last;
  const bool slow = last > kMoves && last >= before / 2.0;
  return slow ? Refinement::Verdict::Moves : Refinement::Verdict::TooRough;
}

}  // namespace

bool RefinedCase::Diverges() const
{
  const double ofMotion = 1.0 / (1.0 + static_cast<double>(corrections.size()));
  return !(LastCorrection() <= 2.0 * ofMotion);
}

Refinement::Refinement(const SkyMatriu& factors_, const VoidPlex& nodes_,
                       const ComponentScale& scale_, AddForces addForces_)
    : factors(factors_), nodes(nodes_), scale(scale_), addForces(std::move(addForces_))
{
}

Refinement::Verdict Refinement::Run(RefinedCases& cases)
{
  auto& [model, probe] = cases;
  Correct({&model, &probe});
  for (int step = 2; step <= kMostSteps; ++step) {
    std::vector<RefinedCase*> open;
    if (!IsDone(model))
      open.push_back(&model);
    if (!Stands(probe))
      open.push_back(&probe);
    if (open.empty())
      break;
    Correct(open);
  }
  residual = std::move(Residuals({&model}).front());
  const Verdict verdict = Judge(probe.corrections);
  if (verdict != Verdict::Accepted || Stands(model))
    return verdict;
  return Verdict::TooRough;
}

void Refinement::Correct(const std::vector<RefinedCase*>& cases)
{
  std::vector<ReaVecV> corrections = Residuals(cases);
  std::vector<ReaVecV*> sides;
  for (ReaVecV& correction : corrections)
    sides.push_back(&correction);
  factors.Substitute(sides, nullptr);
  for (std::size_t k = 0; k < cases.size(); ++k) {
    cases[k]->u.Add(corrections[k]);
    const double size = Size(cases[k]->u.value);
    const double correction = Size(corrections[k]);
    cases[k]->corrections.push_back(correction == 0.0 ? 0.0 : correction / size);
  }
}

std::vector<ReaVecV> Refinement::Residuals(const std::vector<RefinedCase*>& cases)
{
  std::vector<SplitVector> global;
  for (const RefinedCase* one : cases) {
    global.push_back(one->u);
    ConvertLocalResultsToGlobal(nodes, global.back().value, scale.components);
    ConvertLocalResultsToGlobal(nodes, global.back().rest, scale.components);
  }
  InternalForces forces({global.begin(), global.end()}, cases.front()->u.value.Size(),
                        scale.components);
  addForces(forces);
  std::vector<ReaVecV> residuals(cases.size());
  for (std::size_t k = 0; k < cases.size(); ++k)
    TakeOutForces(*cases[k], forces.Forces(static_cast<int>(k)), residuals[k]);
  elementForces = std::move(forces.Forces(0));
  return residuals;
}

void Refinement::TakeOutForces(const RefinedCase& one, ReaVecV forces, ReaVecV& missing) const
{
  ConvertGlobalLoadToLocal(nodes, forces, scale.components);
  missing.resize(forces.Size(), 0.0);
  ForEachFree(nodes, scale.components, [&](int equation, int, double spring) {
    missing(equation) = one.loads(equation) - forces(equation);
    if (spring != 0.0)
      missing(equation) -= spring * one.u.value(equation) + spring * one.u.rest(equation);
  });
}

double Refinement::Size(const ReaVecV& u) const
{
  double largest = 0.0;
  for (int node = 0; node < u.Size(); node += scale.components) {
    double squares[2] = {};  // of translations and of rotations
    for (int k = 0; k < scale.components; ++k) {
      const double value = u.Data()[node + k];
      squares[k < scale.translations ? 0 : 1] += value * value;
    }
    // Written so that the size of a vector that is not a number is not a number.
    for (const double size : {std::sqrt(squares[0]), scale.length * std::sqrt(squares[1])})
      largest = size <= largest ? largest : size;
  }
  return largest;
}

int Refinement::LargestMotion(const RefinedCase& probe) const
{
  int found = 1;
  double largest = -1.0;
  ForEachFree(nodes, scale.components, [&](int equation, int component, double) {
    const double unit = component <= scale.translations ? 1.0 : scale.length;
    const double motion = unit * std::fabs(probe.u.value(equation));
    if (motion > largest) {
      largest = motion;
      found = equation;
    }
  });
  return found;
}
