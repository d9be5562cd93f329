// Finds the motions that nothing in the structure resists.
//
// The judgement is that of the analysis: the factors of the stiffness, and the refinement of a
// probe load, see Refinement. Only a structure that it finds able to move is examined further:
//
//  1. Every equation whose pivot vanishes is held by a spring of the size of its diagonal entry,
//     and the factorisation goes on.
//  2. Where rounding has hidden a motion in the pivots, random loads make it large: two steps of
//     inverse iteration (G. H. Golub, C. F. Van Loan, Matrix Computations, 4th ed., Johns Hopkins
//     University Press, 2013, section 8.2) give vectors of such motions only. Gauss-Jordan
//     elimination of these vectors finds one equation for each motion, which is held too, and the
//     structure is judged again.
//  3. With the springs s at the held equations j, K' = K + Σ s·e_j·e_jᵀ is regular. The solution of
//     K'·x = s·e_j is the motion with x = 1 at j and 0 at the other held equations: for K·x = 0,
//     K'·x is s·e_j.

#include "check/mechanisms.h"

#include <algorithm>
#include <cmath>
#include <map>
#include <memory>
#include <random>
#include <unordered_map>
#include <vector>

#include "assembly/free_equations.h"
#include "assembly/free_motion.h"
#include "assembly/motion_words.h"
#include "assembly/node_motions.h"
#include "assembly/preparation.h"
#include "assembly/probe_load.h"
#include "assembly/refinement.h"
#include "assembly/six_nodes.h"
#include "assembly/solve.h"
#include "assembly/solver_choice.h"
#include "assembly/support_axes.h"
#include "base/memory_limit.h"
#include "check/added_springs.h"
#include "check/checks.h"
#include "check/recorder.h"
#include "model/node.h"
#include "numeric/plex_range.h"
#include "problem/problem.h"
#include "run/element_families.h"
#include "solvers/skymatriu.h"

namespace morlen::check {
namespace {

constexpr int kMostEquations = 200000;
/// Limit of the estimated time of one factorisation.
constexpr double kMostSeconds = 60.0;
constexpr int kMostRounds = 10;
constexpr int kTrials = 8;
/// A vector of motions that elimination leaves smaller than this holds no further motion.
constexpr double kExhausted = 1e-2;
/// A motion may deviate by this much from 1 and 0 at the held equations.
constexpr double kDeviation = 1e-5;
constexpr std::size_t kMostMotions = 200;
constexpr std::size_t kAtATime = 16;
constexpr int kMostListed = 5;

/// Finds the motions of a prepared problem. While it exists, the supports have its springs.
class MotionSearch
{
public:
  explicit MotionSearch(Problem& prepared)
      : problem(prepared),
        scale(ScaleOfComponents(problem.meshes, problem.components)),
        nodes(static_cast<std::size_t>(problem.numNodes), nullptr),
        springs(problem.components)
  {
    for (Node& node : Each<Node>(problem.GiveNodes()))
      nodes[node.number - 1] = &node;
  }

  /// The judgement of the analysis.
  bool CanMove() const;
  /// Holds one equation for each motion. Returns false when motions are left.
  bool HoldAll();
  std::size_t Held() const { return held.size(); }
  /// False when a pivot is not a number.
  bool IsFactorised() const { return factors && factors->IsFactorised(); }
  /// The motions in global axes, after HoldAll; at most kMostMotions.
  std::vector<ReaVecV> Motions() const;

private:
  std::unique_ptr<SkyMatriu> Assemble() const;
  bool ShowsMotion(const SkyMatriu& factors) const;
  void Hold(const HeldEquation& one);
  std::vector<ReaVecV> Trials(const SkyMatriu& factors, const ReaVecV& diagonal) const;
  void HoldTrials(std::vector<ReaVecV> trials, const ReaVecV& diagonal);
  int Component(int equation) const { return (equation - 1) % problem.components.count + 1; }
  double Scaled(const ReaVecV& v, int equation) const
  {
    return scale.Unit(Component(equation)) * std::fabs(v(equation));
  }
  int Largest(const ReaVecV& v) const;
  bool IsMotion(const ReaVecV& motion, std::size_t own) const;

  Problem& problem;
  ComponentScale scale;
  std::vector<Node*> nodes;  ///< by system number less 1
  AddedSprings springs;
  std::vector<HeldEquation> held;
  std::unique_ptr<SkyMatriu> factors;  ///< with all held equations, after HoldAll
};

std::unique_ptr<SkyMatriu> MotionSearch::Assemble() const
{
  auto matrix = std::make_unique<SkyMatriu>(problem.Equations());
  CreateMatrix(problem.meshes, problem.components, *matrix);
  AddStiffness({problem, FamiliesOf(problem), nullptr}, *matrix);
  std::vector<ReaVecV> noLoads;
  ApplySupports(problem.GiveNodes(), problem.components, *matrix, noLoads);
  return matrix;
}

bool MotionSearch::ShowsMotion(const SkyMatriu& matrix) const
{
  const VoidPlex& plex = problem.GiveNodes();
  using Norm = RefinedCase::Norm;
  const ReaVecV loads = ProbeLoad(plex, scale, matrix.GiveSize());
  ReaVecV u = loads;
  matrix.Substitute({&u}, nullptr);
  RefinedCases cases;
  cases.probe = RefinedCase(loads, Norm::Largest, SizeOnFree(Norm::Largest, plex, scale, loads),
                            std::move(u));
  const Refinement refinement(matrix, plex, scale, [this](InternalForces& forces) {
    AddForces(problem, FamiliesOf(problem), forces);
  });
  return refinement.Run(cases) == Refinement::Verdict::Moves && !cases.probe.Diverges();
}

// A pivot may also be lost in a model that is too rough. The analysis then factorises again and
// accepts such pivots, to see which it is.
bool MotionSearch::CanMove() const
{
  std::unique_ptr<SkyMatriu> matrix = Assemble();
  if (matrix->Txolesky(nullptr) == 0)
    return ShowsMotion(*matrix);
  matrix.reset();
  matrix = Assemble();
  matrix->AcceptLostPivots();
  return matrix->Txolesky(nullptr) != 0 || ShowsMotion(*matrix);
}

// A spring of the support keeps the equation in the assembly, the judgement and the residuals.
void MotionSearch::Hold(const HeldEquation& one)
{
  springs.Add(*nodes[(one.equation - 1) / problem.components.count], Component(one.equation) - 1,
              one.stiffness);
  held.push_back(one);
}

bool MotionSearch::HoldAll()
{
  for (int round = 0; round < kMostRounds; ++round) {
    factors.reset();
    factors = Assemble();
    ReaVecV diagonal(factors->GiveSize());
    for (int i = 1; i <= factors->GiveSize(); ++i)
      diagonal(i) = factors->val(i, i);
    factors->HoldRefusedPivots();
    if (factors->Txolesky(nullptr) != 0)
      return false;
    for (const HeldEquation& one : factors->HeldEquations()) {
      Hold(one);
      diagonal(one.equation) += one.stiffness;
    }
    if (!ShowsMotion(*factors))
      return true;
    HoldTrials(Trials(*factors, diagonal), diagonal);
  }
  return false;
}

int MotionSearch::Largest(const ReaVecV& v) const
{
  int found = 1;
  for (int i = 2; i <= v.Size(); ++i) {
    if (Scaled(v, i) > Scaled(v, found))
      found = i;
  }
  return found;
}

// Vectors of the motions without resistance, each with the largest component 1.
std::vector<ReaVecV> MotionSearch::Trials(const SkyMatriu& matrix, const ReaVecV& diagonal) const
{
  std::vector<ReaVecV> trials(kTrials);
  SkyMatriu::RightHandSides sides;
  std::minstd_rand random;
  for (ReaVecV& trial : trials) {
    trial.resize(matrix.GiveSize(), 0.0);
    ForEachFree(problem.GiveNodes(), scale.components, [&](int equation, int component, double) {
      trial(equation) =
          (static_cast<double>(random()) / std::minstd_rand::max() - 0.5) / scale.Unit(component);
    });
    sides.push_back(&trial);
  }
  for (int step = 0; step < 2; ++step) {
    for (ReaVecV& trial : trials) {
      for (int i = 1; i <= trial.Size(); ++i)
        trial(i) *= diagonal(i);
    }
    matrix.Substitute(sides, nullptr);
    for (ReaVecV& trial : trials)
      trial /= Scaled(trial, Largest(trial));
  }
  return trials;
}

void MotionSearch::HoldTrials(std::vector<ReaVecV> trials, const ReaVecV& diagonal)
{
  while (!trials.empty()) {
    const auto size = [this](const ReaVecV& trial) { return Scaled(trial, Largest(trial)); };
    const auto largest =
        std::max_element(trials.begin(), trials.end(),
                         [&](const ReaVecV& a, const ReaVecV& b) { return size(a) < size(b); });
    if (!(size(*largest) > kExhausted))
      return;
    const ReaVecV pivot = std::move(*largest);
    trials.erase(largest);
    const int equation = Largest(pivot);
    for (ReaVecV& trial : trials) {
      const double factor = trial(equation) / pivot(equation);
      for (int i = 1; i <= trial.Size(); ++i)
        trial(i) -= factor * pivot(i);
    }
    Hold({equation, diagonal(equation)});
  }
}

bool MotionSearch::IsMotion(const ReaVecV& motion, std::size_t own) const
{
  if (!AllFinite(motion) || std::fabs(motion(held[own].equation) - 1.0) > kDeviation)
    return false;
  const double limit = kDeviation * Scaled(motion, Largest(motion));
  for (std::size_t i = 0; i < held.size(); ++i) {
    if (i != own && Scaled(motion, held[i].equation) > limit)
      return false;
  }
  return true;
}

std::vector<ReaVecV> MotionSearch::Motions() const
{
  std::vector<ReaVecV> motions;
  const std::size_t count = std::min(held.size(), kMostMotions);
  for (std::size_t first = 0; first < count; first += kAtATime) {
    std::vector<ReaVecV> sides(std::min(kAtATime, count - first));
    SkyMatriu::RightHandSides pointers;
    for (std::size_t i = 0; i < sides.size(); ++i) {
      sides[i].resize(factors->GiveSize(), 0.0);
      sides[i](held[first + i].equation) = held[first + i].stiffness;
      pointers.push_back(&sides[i]);
    }
    factors->Substitute(pointers, nullptr);
    for (std::size_t i = 0; i < sides.size(); ++i) {
      if (!IsMotion(sides[i], first + i))
        continue;
      ConvertLocalResultsToGlobal(problem.GiveNodes(), sides[i], problem.components.count);
      if (IsFreeMotion(problem, FamiliesOf(problem), sides[i]))
        motions.push_back(std::move(sides[i]));
    }
  }
  return motions;
}

/// The part of each node, by position in Subject::parts.
std::unordered_map<const Node*, std::size_t> PartsOf(const Subject& subject)
{
  std::unordered_map<const Node*, std::size_t> partOf;
  for (std::size_t part = 0; part < subject.parts.size(); ++part) {
    for (const Node* node : subject.parts[part].nodes)
      partOf[node] = part;
  }
  return partOf;
}

/// The motions that were found, and the number of those that were not determined.
struct FreeMotions
{
  std::vector<ReaVecV> motions;
  std::size_t others = 0;
};

FreeMotions FindMotions(Problem& problem)
{
  MotionSearch search(problem);
  if (!search.CanMove())
    return {};
  const bool all = search.HoldAll();
  FreeMotions found;
  if (search.IsFactorised())
    found.motions = search.Motions();
  found.others = search.Held() - std::min(search.Held(), kMostMotions);
  if (!all)
    ++found.others;
  // Where no motion passes the tests, the model is too rough to tell.
  return found.motions.empty() ? FreeMotions() : std::move(found);
}

Motion MotionOf(const Problem& problem, const ReaVecV& vector)
{
  const NodeMotions motions(problem, vector);
  Motion motion{.turns = motions.turnsOnly};
  for (const NodeMotion& one : motions.all) {
    if (!one.node || !motions.IsInFile(*one.node))
      continue;
    const ReaVec& shown = motion.turns ? one.w : one.u;
    motion.nodes.push_back(motions.NumberInFile(*one.node));
    motion.vectors.push_back({shown(1), shown(2), shown(3)});
  }
  return motion;
}

void Report(const Problem& problem, const Subject& subject, const std::vector<std::size_t>& loose,
            const FreeMotions& found, Recorder& recorder)
{
  const std::unordered_map<const Node*, std::size_t> partOf = PartsOf(subject);
  std::map<std::size_t, int> listed;
  std::size_t unlisted = found.others;
  for (const ReaVecV& motion : found.motions) {
    const MotionInWords words = DescribeMotion(problem, motion);
    const auto entry = partOf.find(problem.FindNode(words.node));
    const std::size_t part = entry == partOf.end() ? subject.parts.size() : entry->second;
    if (std::binary_search(loose.begin(), loose.end(), part))
      continue;
    if (++listed[part] > kMostListed) {
      ++unlisted;
      continue;
    }
    recorder.Error(Code::Mechanism, recorder.PlaceOf(ReadItem::Node, words.node), words.text);
    recorder.AddMotion(MotionOf(problem, motion));
  }
  if (unlisted > 0)
    recorder.Error(Code::Mechanism, kWholeFile, "the structure can move in ", unlisted,
                   " more ways");
}

// The reason why a model is too large to be factorised here; empty for none.
std::string TooLarge(const Problem& problem)
{
  const long long equations = static_cast<long long>(problem.numNodes) * problem.components.count;
  if (equations > kMostEquations)
    return Joined(equations, " equations are more than ", kMostEquations);
  const SolverWork work = EstimateWork(problem, FamiliesOf(problem));
  if (work.SkylineBytes() > UsableMemory(AvailableMemory()))
    return Joined("the matrix needs ", static_cast<long long>(work.SkylineBytes() >> 20),
                  " MiB of memory");
  if (work.SkylineSeconds() > kMostSeconds)
    return "the factorisation would take too long";
  return "";
}

}  // namespace

std::string CheckMechanisms(Problem& problem, const Subject& subject,
                            const std::vector<std::size_t>& loose, Recorder& recorder)
{
  std::string untested;
  recorder.AttemptAt(Code::ModelRefused, kWholeFile, [&] {
    PrepareModel(problem, FamiliesOf(problem));
    if (problem.convertTo6Nodes || problem.solverSettings.type == SolverType::Double)
      ConvertTriangles(problem);
    PrepareForSkyline(problem, true);
    untested = TooLarge(problem);
    if (!untested.empty())
      return;
    Report(problem, subject, loose, FindMotions(problem), recorder);
  });
  return untested;
}

}  // namespace morlen::check
