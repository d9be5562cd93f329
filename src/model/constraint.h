#pragma once

#include <array>
#include <memory>
#include <ostream>

#include "base/object_pool.h"

namespace morlen {

class Matriu;
class ReaVecV;

/// The most components that a node has.
constexpr int kMaxComponents = 6;

/// Number of components of a node with n that are translations, where it has rotations
/// as well: 2 of 3 in plane problems, 3 of 6 in space.
constexpr int TranslationsOf(int n)
{
  return (n - 1) / 2 + 1;
}

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

  explicit Constraint(int n) : Constraint(n, TranslationsOf(n)) {}
  /// For nodes whose first `translations` components are displacements.
  Constraint(int n, int translations);

  /// Takes the components whose given flag is not 0 and converts their values: lengths,
  /// or stiffnesses (force per length, force times length), by the two unit ratios.
  void EnterValuesAndFlags(const int* flags, const double* values, int n, double forceFactor,
                           double lengthFactor);
  void EnterEulerAngles(const double angles[3]);

  /// Fills T (n×n, its columns the support's axes). Returns 1, T untouched, without axes.
  /// With check, fatal for a plane node whose z axis is tilted.
  int CalcTransfMatFromEuler(int node, Matriu& T, int n, int check) const;

  /// Adds to the reaction of component i (from 1), or of all n components; without axes
  /// of its own a support only takes flagged components.
  void AddToReaction(int i, double r);
  void AddToReaction(const ReaVecV& r, int n);

  /// Hands the reaction over to a and b, half each.
  void TransferYourReaction(int n, Constraint* a, Constraint* b);

  /// One line: flags, values and angles, if any.
  void PrintTo(std::ostream& out, int n) const;

  std::array<int, kMaxComponents> flags{};
  std::array<double, kMaxComponents> values{};     ///< prescribed value or stiffness
  std::array<double, kMaxComponents> reactions{};  ///< global axes
  bool localAxes = false;
  std::array<double, 3> euler{};  ///< radians

private:
  bool Takes(int i) const { return localAxes || flags[i] != kFree; }

  int translations;
};

/// The support of a node halfway between two supported nodes: the flags that both
/// share, with mean values. Null when there is none, or when their axes differ.
std::unique_ptr<Constraint> MergeTwoConstraints(int n, const Constraint* a, const Constraint* b,
                                                double);

}  // namespace morlen
