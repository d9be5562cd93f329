#pragma once

#include <vector>

#include "model/elem.h"
#include "model/mesh.h"
#include "numeric/plex_range.h"
#include "numeric/split_vector.h"

namespace morlen {

class ElementFamilies;
struct Problem;

/// The forces that the nodes exert on the elements when they are displaced: K·u by equation in
/// global axes, element by element, without the matrix K and for several u at once.
///
/// Every element works with its relative displacements (relative_motion.h), so that the forces
/// are as accurate as the displacements allow, however large its rigid motion is.
class InternalForces
{
public:
  /// Which elements count.
  enum class Elements
  {
    All,
    AtSupports  ///< the forces of supported nodes are complete, those of others are not
  };

  /// For vectors of `equations` displacements, global axes, `components` a node.
  InternalForces(std::vector<SplitView> displacements, int equations, int components,
                 Elements elements = Elements::All);

  int Count() const { return static_cast<int>(displacements.size()); }
  const SplitView& Displacements(int index) const { return displacements[index]; }

  /// Calls visit(elem) for the elements of a mesh that count.
  template <class Visit>
  void ForEachWanted(const Mesh& mesh, Visit visit) const
  {
    for (const Elem& elem : Each<Elem>(*mesh.GiveElemPlex())) {
      if (Wants(elem))
        visit(elem);
    }
  }

  /// Adds the forces of an element's nodes, all components of a node after those of another, to
  /// those of the vector of this index.
  void Add(const Elem& elem, int index, const double* forces);

  /// Those of the vector of this index, from 0.
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
