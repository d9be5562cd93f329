#pragma once

#include <algorithm>
#include <optional>
#include <vector>

#include "model/mesh.h"
#include "model/node.h"
#include "numeric/reavec.h"
#include "problem/problem.h"

namespace morlen {

class Constraint;
class Elem;
class ReaVecV;

/// Displacements and deviations below this part of the largest displacement count as none.
constexpr double kSmall = 1e-3;
/// A motion whose displacements are below this part of its rotations times the length only turns.
constexpr double kTurnsOnly = 1e-6;

/// The displacement u and the rotation w of a node.
struct NodeMotion
{
  const Node* node = nullptr;  ///< null where no node has the number
  ReaVec place{0.0, 0.0, 0.0};
  ReaVec u{0.0, 0.0, 0.0};
  ReaVec w{0.0, 0.0, 0.0};
};

/// A motion as a rigid body: u = t + w × (place - centre).
struct RigidMotion
{
  ReaVec At(const ReaVec& place) const
  {
    const ReaVec r = place - centre;
    return t + VectorProd(w, r);
  }

  ReaVec centre, t, w;
};

/// A motion of the structure node by node: which nodes move, how they are connected, and which
/// simple motions fit them.
class NodeMotions
{
public:
  /// motion: by equation in global axes. The problem must be prepared, and is borrowed.
  NodeMotions(const Problem& prepared, const ReaVecV& motion);
  NodeMotions(const NodeMotions&) = delete;
  NodeMotions& operator=(const NodeMotions&) = delete;

  bool IsInFile(const Node& node) const { return NumberInFile(node) <= problem.initialNumNodes; }
  int NumberInFile(const Node& node) const { return problem.meshes.front()->GiveOldNumber(&node); }

  bool AreEqual() const;
  bool AreAllParallel() const;
  /// The rigid motion of the node that moves most, if all others follow it.
  std::optional<RigidMotion> OwnRotation() const;
  /// The rigid motion that fits the displacements best, if it fits all of them.
  std::optional<RigidMotion> FittedRotation() const;
  bool IsWholePart(const RigidMotion& rigid) const;
  /// The numbers of the beams with a hinge that takes part, also of beams whose nodes only turn.
  std::vector<int> BeamsAtWork() const;
  /// The numbers of the beams that turn about their own axes while their nodes stay.
  std::vector<int> SpinningBeams() const;
  /// The supported nodes that do not turn with their part: a shell does not turn with the rotation
  /// of a node about its normal.
  std::vector<const NodeMotion*> IdleRotations(const RigidMotion& rigid) const;
  /// True when a supported node turns though its rotation is held: all beam ends there are hinged,
  /// and turn without the node.
  bool HasHingedEndsAtSupports(const RigidMotion& rigid) const;

  const Problem& problem;
  double length;  ///< of the model
  double largestU = 0.0;
  double largestW = 0.0;
  bool turnsOnly = false;
  std::vector<NodeMotion> all;             ///< by system number less 1
  std::vector<const NodeMotion*> moving;   ///< empty for a motion of 0
  std::vector<const NodeMotion*> part;     ///< all nodes that elements connect with `lead`
  std::vector<const NodeMotion*> holding;  ///< at rest, of elements with moving nodes
  std::vector<const Elem*> elements;       ///< with moving nodes
  const NodeMotion* lead = nullptr;        ///< moves most; null for a motion of 0

private:
  void FindMoving();
  void FindPart();
  void FindElements();

  bool Moves(const Node& node) const { return moves[node.number - 1]; }
  const NodeMotion& Of(const Node& node) const { return all[node.number - 1]; }
  double Amount(const NodeMotion& node) const { return (turnsOnly ? node.w : node.u).modul(); }
  template <class Test>
  bool AllMoving(Test test) const
  {
    return std::all_of(moving.begin(), moving.end(),
                       [&](const NodeMotion* node) { return test(*node); });
  }
  bool HoldsRotation(const Constraint& support) const;
  bool HoldsAllRotations(const Constraint& support) const;
  bool FitsMoving(const RigidMotion& rigid) const;
  bool IsHingeAtWork(const Elem& beam) const;

  std::vector<bool> moves;  ///< by system number less 1
};

}  // namespace morlen
