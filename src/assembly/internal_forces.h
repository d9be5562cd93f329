#pragma once

#include <vector>

#include "model/elem.h"
#include "model/mesh.h"
#include "numeric/plex_range.h"
#include "numeric/split_vector.h"

namespace morlen {

class ElementFamilies;
struct Problem;

/// The forces K·u that displaced nodes exert on the elements, by equation in global axes.
///
/// They are summed element by element, without the assembled matrix, for several vectors u at once.
/// Every element works with its relative displacements (relative_motion.h), so that the forces are
/// as accurate as the displacements allow, however large its rigid motion is.
class InternalForces
{
public:
  /// The elements that are included.
  enum class Elements
  {
    All,
    AtSupports  ///< those with a supported node: only the forces of supported nodes are complete
  };

  /// For vectors of `equations` displacements in global axes, with `components` at each node.
  InternalForces(std::vector<SplitView> displacements, int equations, int components,
                 Elements elements = Elements::All);

  int Count() const { return static_cast<int>(displacements.size()); }
  const SplitView& Displacements(int index) const { return displacements[index]; }

  /// Calls visit(elem) for the included elements of a mesh.
  template <class Visit>
  void ForEachWanted(const Mesh& mesh, Visit visit) const
  {
    for (const Elem& elem : Each<Elem>(*mesh.GiveElemPlex())) {
      if (Wants(elem))
        visit(elem);
    }
  }

  /// Adds the forces on the nodes of an element for the vector of this index. forces: all
  /// components of the first node, then those of the second, and so on.
  void Add(const Elem& elem, int index, const double* forces);

  /// The forces for the vector of this index (from 0).
  ReaVecV& Forces(int index) { return sums[index]; }

private:
  bool Wants(const Elem& elem) const;

  std::vector<SplitView> displacements;
  std::vector<ReaVecV> sums;
  int components;
  Elements which;
};

/// Adds the forces of all elements of a problem.
void AddForces(const Problem& problem, const ElementFamilies& families, InternalForces& forces);

}  // namespace morlen
