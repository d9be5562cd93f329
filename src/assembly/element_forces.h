#pragma once

#include <cstddef>
#include <vector>

#include "numeric/reavecv.h"
#include "solvers/element_blocks.h"

/// The forces that the nodes exert on the elements when they are displaced: K·u, element by
/// element, without the matrix K.
class ElementForces : public ElementSink
{
public:
  /// For some vectors of displacements by equation; borrowed.
  explicit ElementForces(std::vector<const ReaVecV*> displacements);

  void AddElement(const ElementBlocks& element) override;

  /// Those of the vector of this index, from 0, by equation.
  ReaVecV& Forces(std::size_t index) { return forces[index]; }

private:
  std::vector<const ReaVecV*> displacements;
  std::vector<ReaVecV> forces;
};
