// Fits simple motions to the displacements of nodes.
//
// In a motion without energy every element moves as a rigid body, and so do elements that are
// connected rigidly. A rotation is that of the node that moves most, or, for nodes without
// rotations or with hinges, the one that fits the displacements best. A hinge takes part when the
// end of its beam turns against the chord of the beam.

#include "assembly/node_motions.h"

#include <cmath>

#include "assembly/free_equations.h"
#include "assembly/solve.h"
#include "base/disjoint_sets.h"
#include "model/constraint.h"
#include "model/elem.h"
#include "numeric/plex_range.h"
#include "numeric/reavecv.h"

namespace morlen {

namespace {

ReaVec InSpace(const Node& node)
{
  return {node(1), node(2), node.Size() == 3 ? node(3) : 0.0};
}

bool AreParallel(const ReaVec& a, const ReaVec& b)
{
  return VectorProd(a, b).modul() <= kSmall * a.modul() * b.modul();
}

}  // namespace

NodeMotions::NodeMotions(const Problem& prepared, const ReaVecV& motion)
    : problem(prepared),
      length(ScaleOfComponents(prepared.meshes, prepared.components).length),
      all(static_cast<std::size_t>(prepared.numNodes)),
      moves(all.size(), false)
{
  const NodeComponents& components = problem.components;
  for (const Node& node : Each<Node>(problem.GiveNodes())) {
    NodeMotion& own = all[node.number - 1];
    own.node = &node;
    own.place = InSpace(node);
    for (int k = 1; k <= components.count; ++k) {
      const double value = motion(problem.Equation(node, k));
      if (k <= components.translations)
        own.u(k) = value;
      else
        own.w(components.Rotations() == 1 ? 3 : k - components.translations) = value;
    }
    largestU = std::max(largestU, own.u.modul());
    largestW = std::max(largestW, own.w.modul());
  }
  turnsOnly = largestU <= kTurnsOnly * length * largestW;
  FindMoving();
  if (!lead)
    return;
  FindPart();
  FindElements();
}

void NodeMotions::FindMoving()
{
  const double limit = kSmall * (turnsOnly ? largestW : largestU);
  for (const NodeMotion& one : all) {
    if (!one.node || !(Amount(one) > limit))
      continue;
    moving.push_back(&one);
    moves[one.node->number - 1] = true;
  }
  // Of equal motions, the one with the lowest number in the file: rounding must not decide.
  for (const NodeMotion* one : moving) {
    const double more = lead ? Amount(*one) - Amount(*lead) : 1.0;
    const bool equal = lead && std::fabs(more) <= kTurnsOnly * Amount(*lead);
    if (equal ? NumberInFile(*one->node) < NumberInFile(*lead->node) : more > 0.0)
      lead = one;
  }
}

void NodeMotions::FindPart()
{
  DisjointSets sets(all.size());
  const auto place = [](const Node& node) { return static_cast<std::size_t>(node.number) - 1; };
  for (const auto& mesh : problem.meshes) {
    for (const Elem& elem : Each<Elem>(*mesh->GiveElemPlex())) {
      for (int i = 1; i < elem.Nnode(); ++i)
        sets.Join(place(*elem(0)), place(*elem(i)));
    }
  }
  const std::size_t root = sets.Find(place(*lead->node));
  for (const NodeMotion& one : all) {
    if (one.node && sets.Find(place(*one.node)) == root)
      part.push_back(&one);
  }
}

// A node at rest holds the moving elements when it has a support or belongs to an element at rest.
void NodeMotions::FindElements()
{
  std::vector<bool> holds(all.size(), false);
  for (const auto& mesh : problem.meshes) {
    for (const Elem& elem : Each<Elem>(*mesh->GiveElemPlex())) {
      bool atRest = true;
      for (int i = 0; i < elem.Nnode(); ++i)
        atRest = atRest && !Moves(*elem(i));
      if (!atRest)
        elements.push_back(&elem);
      for (int i = 0; i < elem.Nnode() && atRest; ++i)
        holds[elem(i)->number - 1] = true;
    }
  }
  std::vector<bool> known(all.size(), false);
  for (const Elem* elem : elements) {
    for (int i = 0; i < elem->Nnode(); ++i) {
      const Node& node = *(*elem)(i);
      const std::size_t place = static_cast<std::size_t>(node.number) - 1;
      if (!Moves(node) && !known[place] && (node.constraint || holds[place]))
        holding.push_back(&all[place]);
      known[place] = true;
    }
  }
}

bool NodeMotions::AreEqual() const
{
  return AllMoving(
      [&](const NodeMotion& node) { return (node.u - lead->u).modul() <= kSmall * largestU; });
}

bool NodeMotions::AreAllParallel() const
{
  return AllMoving([&](const NodeMotion& node) {
    return turnsOnly ? AreParallel(node.w, lead->w) : AreParallel(node.u, lead->u);
  });
}

bool NodeMotions::FitsMoving(const RigidMotion& rigid) const
{
  return AllMoving([&](const NodeMotion& node) {
    return (node.u - rigid.At(node.place)).modul() <= kSmall * largestU;
  });
}

std::optional<RigidMotion> NodeMotions::OwnRotation() const
{
  const RigidMotion rigid{.centre = lead->place, .t = lead->u, .w = lead->w};
  if (rigid.w.modul() * length <= kSmall * largestU || !FitsMoving(rigid))
    return std::nullopt;
  return rigid;
}

// The least squares of u - t - w × r about the mean place: t is the mean of u, and w solves
// Σ (r²·1 - r·rᵀ) w = Σ r × u. Nodes on a line say nothing about the rotation about it, which a
// small addition to the matrix makes 0.
std::optional<RigidMotion> NodeMotions::FittedRotation() const
{
  RigidMotion rigid{.centre = {0.0, 0.0, 0.0}, .t = {0.0, 0.0, 0.0}, .w = {0.0, 0.0, 0.0}};
  const double count = static_cast<double>(moving.size());
  for (const NodeMotion* one : moving) {
    rigid.centre += one->place / count;
    rigid.t += one->u / count;
  }
  double inertia[3][3] = {};
  ReaVec moment(0.0, 0.0, 0.0);
  for (const NodeMotion* one : moving) {
    const ReaVec r = one->place - rigid.centre;
    moment += VectorProd(r, one->u);
    for (int i = 0; i < 3; ++i) {
      inertia[i][i] += r * r;
      for (int j = 0; j < 3; ++j)
        inertia[i][j] -= r(i + 1) * r(j + 1);
    }
  }
  const double size = inertia[0][0] + inertia[1][1] + inertia[2][2];
  if (!(size > 0.0))
    return std::nullopt;
  constexpr double kRegular = 1e-9;
  for (int i = 0; i < 3; ++i)
    inertia[i][i] += kRegular * size;
  const ReaVec rows[3] = {{inertia[0][0], inertia[0][1], inertia[0][2]},
                          {inertia[1][0], inertia[1][1], inertia[1][2]},
                          {inertia[2][0], inertia[2][1], inertia[2][2]}};
  const double determinant = rows[0] * VectorProd(rows[1], rows[2]);
  for (int k = 0; k < 3; ++k)  // the matrix is symmetric: its rows are its columns
    rigid.w(k + 1) = moment * VectorProd(rows[(k + 1) % 3], rows[(k + 2) % 3]) / determinant;
  return FitsMoving(rigid) ? std::optional(rigid) : std::nullopt;
}

bool NodeMotions::IsWholePart(const RigidMotion& rigid) const
{
  return std::all_of(part.begin(), part.end(), [&](const NodeMotion* node) {
    return (node->u - rigid.At(node->place)).modul() <= kSmall * largestU;
  });
}

bool NodeMotions::IsHingeAtWork(const Elem& beam) const
{
  const HingeCode code = problem.GiveHingeCode(beam.Num());
  const NodeMotion& first = Of(*beam(0));
  const NodeMotion& second = Of(*beam(1));
  const ReaVec d = second.place - first.place;
  const double squares = d * d;
  const ReaVec relative = second.u - first.u;
  const ReaVec turn = VectorProd(d, relative) / squares;
  const auto works = [&](bool hinged, const NodeMotion& end) {
    if (!hinged)
      return false;
    const ReaVec against = end.w - turn;
    const ReaVec bending = against - d * (against * d / squares);
    return bending.modul() * std::sqrt(squares) > kSmall * std::max(largestU, length * largestW);
  };
  return works(code.FirstHinged(), first) || works(code.SecondHinged(), second);
}

std::vector<int> NodeMotions::BeamsAtWork() const
{
  std::vector<int> numbers;
  for (const auto& mesh : problem.meshes) {
    if (mesh->GiveElemType() != Linear)
      continue;
    for (const Elem& elem : Each<Elem>(*mesh->GiveElemPlex())) {
      if (IsHingeAtWork(elem))
        numbers.push_back(elem.Num());
    }
  }
  return numbers;
}

std::vector<int> NodeMotions::SpinningBeams() const
{
  std::vector<int> numbers;
  for (const Elem* elem : elements) {
    if (elem->ElemType() != Linear || !Moves(*(*elem)(0)) || !Moves(*(*elem)(1)))
      continue;
    const ReaVec d = Of(*(*elem)(1)).place - Of(*(*elem)(0)).place;
    if (AreParallel(d, Of(*(*elem)(0)).w) && AreParallel(d, Of(*(*elem)(1)).w))
      numbers.push_back(elem->Num());
  }
  return numbers;
}

bool NodeMotions::HoldsRotation(const Constraint& support) const
{
  const auto rotations = support.flags.begin() + problem.components.translations;
  return std::any_of(rotations, rotations + problem.components.Rotations(),
                     [](int flag) { return flag == Constraint::kPrescribed; });
}

bool NodeMotions::HoldsAllRotations(const Constraint& support) const
{
  const auto rotations = support.flags.begin() + problem.components.translations;
  return std::all_of(rotations, rotations + problem.components.Rotations(),
                     [](int flag) { return flag == Constraint::kPrescribed; });
}

std::vector<const NodeMotion*> NodeMotions::IdleRotations(const RigidMotion& rigid) const
{
  std::vector<const NodeMotion*> idle;
  for (const NodeMotion* one : part) {
    if (one->node->constraint && HoldsRotation(*one->node->constraint) &&
        one->w.modul() < 0.5 * rigid.w.modul())
      idle.push_back(one);
  }
  return idle;
}

// The preparation holds the rotations of such nodes also where the file has no support.
bool NodeMotions::HasHingedEndsAtSupports(const RigidMotion& rigid) const
{
  if (rigid.w.modul() == 0.0)
    return false;
  return std::any_of(part.begin(), part.end(), [&](const NodeMotion* one) {
    const Constraint* support = one->node->constraint.get();
    const auto isHeld = [](int flag) { return flag != Constraint::kFree; };
    return support && HoldsAllRotations(*support) && one->w.modul() >= 0.5 * rigid.w.modul() &&
           std::any_of(support->flags.begin(),
                       support->flags.begin() + problem.components.translations, isHeld);
  });
}

}  // namespace morlen
