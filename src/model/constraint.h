#pragma once

#include <array>
#include <memory>
#include <ostream>

#include "base/node_components.h"
#include "base/object_pool.h"

namespace morlen {

class Matriu;
class ReaVecV;

/// The support of one node: per component a flag, its value, and the reaction.
///
/// Components are in the support's own axes when it has Euler angles, otherwise global.
/// Reactions are always in global axes.
class Constraint : public Pooled<Constraint>
{
public:
  enum Flag : int
  {
    kFree = 0,
    kPrescribed = 1,
    kSpring = 2
  };

  /// For nodes of n components that have rotations too.
  explicit Constraint(int n) : Constraint(WithRotations(n)) {}
  explicit Constraint(const NodeComponents& components) : translations(components.translations) {}

  /// Sets the components whose given flag is not 0; the others keep flag and value. The two
  /// unit ratios convert prescribed displacements (length) and stiffnesses (force per length
  /// of translations, force times length of rotations).
  void EnterValuesAndFlags(const int* flags, const double* values, int n, double forceFactor,
                           double lengthFactor);
  void EnterEulerAngles(const double angles[3]);

  /// Fills T (n×n; its columns are the support's axes in global coordinates) and returns 0.
  /// A support in global axes returns 1 and leaves T alone. Fatal, when `check` is set, for a
  /// plane node whose z axis is tilted.
  int CalcTransfMatFromEuler(int node, Matriu& T, int n, int check) const;

  /// True when the support carries component i (from 1): all components of a support with axes,
  /// else those that are not free.
  bool Carries(int i) const { return localAxes || flags[i - 1] != kFree; }

  /// Adds to the reaction of component i (from 1), or of all n components, where the support
  /// carries them.
  void AddToReaction(int i, double r);
  void AddToReaction(const ReaVecV& r, int n);

  /// Moves the reaction to a and b, half each.
  void TransferYourReaction(int n, Constraint* a, Constraint* b);

  /// One line: flags, values and angles, if any. Not used by the analysis itself.
  void PrintTo(std::ostream& out, int n) const;

  std::array<int, kMaxComponents> flags{};
  std::array<double, kMaxComponents> values{};     ///< prescribed value or stiffness
  std::array<double, kMaxComponents> reactions{};  ///< global axes
  bool localAxes = false;
  std::array<double, 3> euler{};  ///< radians

private:
  int translations;
};

/// The support of a node halfway between two supported nodes: the flags that both share, with
/// the mean of their values. Null when they share none or have different axes; a and b may be
/// null. The last parameter has no effect.
std::unique_ptr<Constraint> MergeTwoConstraints(int n, const Constraint* a, const Constraint* b,
                                                double);

}  // namespace morlen
