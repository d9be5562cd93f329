// Finds the motion of a part as a rigid body that its supports leave free.
//
// Each held component of a support is a row of six numbers, see RowSpace. A node whose beam ends
// are all hinged is loose: its rotations are held by the preparation, or by its support, and do not
// hold the part. Torsion of the beams at loose nodes may hold it nevertheless, so that a motion
// counts only when no element resists it.

#include "assembly/rigid_motion.h"

#include <algorithm>
#include <vector>

#include "assembly/free_motion.h"
#include "assembly/node_motions.h"
#include "assembly/row_space.h"
#include "model/constraint.h"
#include "model/elem.h"
#include "numeric/matriu.h"
#include "numeric/plex_range.h"
#include "numeric/reavecv.h"

namespace morlen {

namespace {

bool Holds(const Constraint& support, int k)
{
  return support.flags[k] == Constraint::kPrescribed ||
         (support.flags[k] == Constraint::kSpring && support.values[k] > 0.0);
}

// By system number less 1.
std::vector<bool> LooseNodes(const Problem& problem)
{
  std::vector<bool> loose(static_cast<std::size_t>(problem.numNodes), true);
  for (const auto& mesh : problem.meshes) {
    for (const Elem& elem : Each<Elem>(*mesh->GiveElemPlex())) {
      const HingeCode code =
          elem.ElemType() == Linear ? problem.GiveHingeCode(elem.Num()) : HingeCode();
      for (int i = 0; i < elem.Nnode(); ++i) {
        if (!(i == 0 ? code.FirstHinged() : code.SecondHinged()))
          loose[elem(i)->number - 1] = false;
      }
    }
  }
  return loose;
}

/// The part that moves most in a motion.
class LoosePart
{
public:
  explicit LoosePart(const NodeMotions& motions_)
      : motions(motions_),
        components(motions_.problem.components),
        loose(LooseNodes(motions_.problem)),
        centre(motions_.lead->place)
  {
  }

  /// A basis of the motions that the supports leave free.
  std::vector<RigidMotion> FreeMotions() const
  {
    RowSpace rows;
    for (const NodeMotion* node : motions.part) {
      if (node->node->constraint)
        AddSupport(*node, rows);
    }
    const std::vector<int> columns =
        components.translations == 2 ? std::vector{0, 1, 5} : std::vector{0, 1, 2, 3, 4, 5};
    std::vector<RigidMotion> free;
    for (const SixNumbers& m : rows.FreeMotions(columns))
      free.push_back({.centre = centre,
                      .t = {m[0], m[1], m[2]},
                      .w = ReaVec(m[3], m[4], m[5]) / motions.length});
    return free;
  }

  /// By equation, for all nodes of the part. turnsLoose: whether loose nodes turn with it.
  ReaVecV ByEquation(const RigidMotion& rigid, bool turnsLoose) const
  {
    ReaVecV values(motions.problem.Equations());
    values = 0.0;
    for (const NodeMotion* one : motions.part) {
      const ReaVec u = rigid.At(one->place);
      for (int k = 1; k <= components.count; ++k) {
        if (k <= components.translations)
          values(motions.problem.Equation(*one->node, k)) = u(k);
        else if (turnsLoose || !IsLoose(*one))
          values(motions.problem.Equation(*one->node, k)) = rigid.w(Axis(k));
      }
    }
    return values;
  }

private:
  bool IsLoose(const NodeMotion& one) const { return loose[one.node->number - 1]; }

  // The axis of rotation of component k, both from 1.
  int Axis(int k) const { return components.Rotations() == 1 ? 3 : k - components.translations; }

  void AddSupport(const NodeMotion& one, RowSpace& rows) const
  {
    const Constraint& support = *one.node->constraint;
    Matriu T;
    const bool turned =
        support.CalcTransfMatFromEuler(one.node->number, T, components.count, 0) == 0;
    const int count = IsLoose(one) ? components.translations : components.count;
    for (int k = 1; k <= count; ++k) {
      if (!Holds(support, k - 1))
        continue;
      ReaVec u(0.0, 0.0, 0.0);
      ReaVec w(0.0, 0.0, 0.0);
      for (int i = 1; i <= components.count; ++i) {
        const double value = turned ? T(i, k) : (i == k ? 1.0 : 0.0);
        (i <= components.translations ? u(i) : w(Axis(i))) = value;
      }
      const ReaVec r = one.place - centre;
      const ReaVec moment = (VectorProd(r, u) + w) / motions.length;
      rows.Add({u(1), u(2), u(3), moment(1), moment(2), moment(3)});
    }
  }

  const NodeMotions& motions;
  const NodeComponents& components;
  std::vector<bool> loose;
  ReaVec centre;
};

}  // namespace

std::optional<ReaVecV> FreeRigidMotion(const Problem& problem, const ElementFamilies& families,
                                       const ReaVecV& motion)
{
  const NodeMotions motions(problem, motion);
  if (!motions.lead || motions.BeamsAtWork().empty())
    return std::nullopt;
  const LoosePart part(motions);
  for (const RigidMotion& rigid : part.FreeMotions()) {
    if (IsFreeMotion(problem, families, part.ByEquation(rigid, false)))
      return part.ByEquation(rigid, true);
  }
  return std::nullopt;
}

std::optional<ReaVecV> FreeMotionOfAPart(const Problem& problem, const ElementFamilies& families,
                                         ReaVecV motion)
{
  constexpr int kMostParts = 8;  // each costs a pass over all elements
  for (int count = 0; count < kMostParts; ++count) {
    const NodeMotions motions(problem, motion);
    if (!motions.lead)
      break;
    const LoosePart part(motions);
    for (const RigidMotion& rigid : part.FreeMotions()) {
      if (IsFreeMotion(problem, families, part.ByEquation(rigid, false)))
        return part.ByEquation(rigid, true);
    }
    for (const NodeMotion* node : motions.part) {
      for (int k = 1; k <= problem.components.count; ++k)
        motion(problem.Equation(*node->node, k)) = 0.0;
    }
  }
  return std::nullopt;
}

}  // namespace morlen
