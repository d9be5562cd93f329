#pragma once

#include <span>

#include "model/elem.h"

namespace morlen {

class ElementSink;
class InternalForces;
class Mesh;
class ReaVecV;
class TextOut;
struct MeshOutput;
struct MeshResults;
struct Problem;
struct Solution;

/// The functions by which every phase treats the elements of one kind. All phases reach the
/// elements of a mesh through its family only.
struct ElementFamily
{
  ElemType type;
  int nnode;
  int points;      ///< of integration, of an element; 0 for beams
  bool spaceOnly;  ///< refused in plane problems

  // --- Analysis: assembly/ ---

  /// Adds the stiffness of a mesh to the sink. applyLocalAxes: kInGlobalAxes or kInSupportAxes.
  void (*addStiffness)(const Problem&, const Mesh&, int applyLocalAxes, ElementSink&);
  /// Adds the forces of the elements for given displacements.
  void (*addForces)(const Problem&, const Mesh&, InternalForces&);
  /// Adds self-weight and element loads to a load vector, by equation in global axes.
  void (*addLoads)(const Problem&, const Mesh&, ReaVecV& loads);
  /// Iterations of the sparse solver for each element between the supports and the farthest node.
  double (*iterationFactor)(const Problem&, const Mesh&);

  // --- Results: results/ ---

  /// Fills blockSize and the values of the results; their numbers and points are known.
  void (*calcStrengths)(const Problem&, const Mesh&, const Solution&, MeshResults&);
  /// True when the values that the writers compute between the nodes are bounded; null when they
  /// compute none.
  bool (*areSpansBounded)(const MeshOutput&);
  /// Smooths the results of a mesh (from 0); null when the family has no smoothing.
  void (*smooth)(const Problem&, int mesh, Solution&);
  /// Writes the section of the text results; null when the family has none.
  void (*writeText)(const MeshOutput&, TextOut&);
  /// Writes the point set of the post-process results; null when the family has none.
  void (*writePointSet)(const Problem&, int points, TextOut&);
  /// Writes the blocks of the post-process results.
  void (*writeBlocks)(const MeshOutput&, TextOut&);
};

/// The table of the element families of a program.
class ElementFamilies
{
public:
  /// Borrows the rows.
  explicit constexpr ElementFamilies(std::span<const ElementFamily> rows_) : rows(rows_) {}

  /// The family of a mesh; null for elements that cannot be analysed.
  const ElementFamily* Find(const Mesh& mesh) const;
  /// The same. Fatal for elements that cannot be analysed.
  const ElementFamily& Of(const Mesh& mesh) const;

  std::span<const ElementFamily> Rows() const { return rows; }

private:
  std::span<const ElementFamily> rows;
};

}  // namespace morlen
