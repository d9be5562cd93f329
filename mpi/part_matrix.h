#pragma once

#include <vector>

#include "direct/upper_matrix.h"
#include "mpi/part.h"

namespace morlen::mpi {

/// The stiffness of a part, with its supports.
///
/// The sum of the matrices of all parts is the matrix of the problem. Rows and columns of
/// prescribed equations are 0 in all parts, but for a 1 on the diagonal, which the owner of the
/// node adds; so are springs.
class PartMatrix : public ElementSink
{
public:
  /// Borrows the part.
  explicit PartMatrix(const Part& part);

  void AddElement(const ElementBlocks& element) override { matrix.AddElement(element); }

  /// Applies the supports. Returns the loads that prescribed displacements add on the equations of
  /// the part that are not prescribed; empty when all of these displacements are 0.
  std::vector<double> ApplySupports();

  /// The diagonal, by equation of the part.
  std::vector<double> Diagonal() const;

  /// The entries, by equation of the part. The matrix can then be read only through them.
  direct::Coordinates TakeEntries() { return matrix.Compress(); }

private:
  const Part& part;
  direct::UpperMatrix matrix;
};

/// Replaces the equations of the part by those of the whole problem.
void RenumberAsWhole(const Part& part, direct::Coordinates& entries);

}  // namespace morlen::mpi
