#pragma once

#include <vector>

#include "assembly/mid_side_offsets.h"
#include "assembly/refined_triangle.h"
#include "model/elem.h"
#include "numeric/matriu.h"
#include "numeric/split_vector.h"

namespace morlen {

class Material;

/// Computes refined shell elements of a model, one after the other. Shell: ThreeNodeShell or
/// SixNodeShell. Materials must not change as long as it is used.
template <class Shell>
class RefinedShellEvaluator
{
public:
  static constexpr int kNodes = Shell::kNodes;

  /// nodeShares: by system number - 1, see shell_shares.h; borrowed.
  explicit RefinedShellEvaluator(const std::vector<double>& nodeShares);

  /// Computes frame and rows of an element, to which all other functions refer. Fatal on a
  /// degenerate element and on unsuitable values of the material.
  void Evaluate(const Elem& elem, const Material& material);

  const Matriu& Frame() const { return T; }
  const Shell& Element() const { return shell; }
  /// Of an element of six nodes. Element() has the rows without them.
  const MidSideOffsets& Offsets() const { return offsets; }
  double Area() const { return shell.Area(); }  ///< of the triangle of the corners

  /// The displacements of the nodes in local axes, six each, without the rigid motion (see
  /// relative_motion.h) at the ends of the links of offset nodes. u: by equation, global axes.
  void CalcRelative(const Elem& elem, const SplitView& u, double* local) const;

private:
  void SetSection(const Elem& elem, const Material& material);

  const std::vector<double>& nodeShares;
  Shell shell;
  MidSideOffsets offsets;
  double x[kNodes], y[kNodes], shares[kNodes];
  const Material* materialOfSection = nullptr;
  Matriu T, Tbig, Dm, Db, Ds;
};

}  // namespace morlen
