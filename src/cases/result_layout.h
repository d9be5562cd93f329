#pragma once

#include <cstddef>
#include <span>
#include <vector>

#include "assembly/solution.h"
#include "model/elem.h"
#include "numeric/matriu.h"
#include "problem/beam_span.h"
#include "problem/load_set.h"

namespace morlen {

class ElementFamilies;
struct Problem;

/// The subject of a group of values.
enum class ValueKind : int
{
  Displacements,  ///< of nodes: the components of a node; derived: the length of the translation
  Reactions,      ///< of nodes with supports: the components of a node
  BeamForces,     ///< at the division points of beams: N, Vy, Mz; in space N, Vy, Vz, T, My, Mz
  BeamDisplacements,  ///< translations at the same points
  BeamEnds,           ///< end forces, at two points: the components of a node, in local axes
  ShellForces,        ///< at Gauss points: eight local values; derived: N1, N2, M1, M2 and the four
                      ///< DesignMoments
  SolidStresses  ///< at nodes: x, y, z, xy, xz, yz; derived: von Mises, then the principal ones
};

/// Values of one kind at all its points. An item is a node or an element and has the same number
/// of points. A point has its linear values, then the derived ones.
struct ValueGroup
{
  ValueKind kind;
  int mesh;  ///< from 0; -1 for values of nodes
  int items;
  int points;
  int linear;
  int derived;

  int Width() const { return linear + derived; }
  int ValuesOfItem() const { return points * Width(); }
};

/// The order of the results of a load case in one array, its column. Everything in a column is
/// linear in the loads, so that columns can be combined.
///
/// A column has the displacements of the nodes of the file, the reactions, for each mesh the end
/// forces of beams with the loads along them or the forces of shells, and the stresses of nodes of
/// solids.
class ResultLayout
{
public:
  /// Of a prepared problem, which is borrowed.
  ResultLayout(const Problem& problem, const ElementFamilies& families);

  std::size_t Size() const { return size; }
  const std::vector<ValueGroup>& Groups() const { return groups; }
  /// The number of an item in the file.
  int NumberOf(const ValueGroup& group, int item) const;

  /// The column of a solution with its strengths and reactions, whose loads are in the problem. The
  /// shells have local values; smooths them and the stresses of solids.
  std::vector<double> ColumnOf(Solution& solution) const;

  /// The solution that a column describes, for the writers of results: its values are those that
  /// the problem asks for. The loads along beams are apart.
  Solution SolutionOf(std::span<const double> column) const;
  LoadSet SpanLoadsOf(std::span<const double> column) const;

  /// Computes the linear values of the items from `first` on, each point at a distance of Width().
  void LinearValues(const ValueGroup& group, std::span<const double> column, int first, int count,
                    double* values) const;
  /// Computes the derived values of points from the linear ones.
  void Derive(const ValueGroup& group, int points, double* values) const;

private:
  struct MeshPart
  {
    ElemType type{};
    std::size_t place = 0;  ///< in the column
    std::size_t rough = 0;  ///< of shells: the values before smoothing; 0 when not stored
    int blockSize = 0;      ///< values of an element in the column
    std::vector<int> numbers;
    std::vector<BeamSpan> beams;
  };

  void AddNodes();
  void AddMesh(int mesh);
  void AddGroups();
  void StoreBeams(int mesh, const Solution& solution, double* column) const;
  void StoreShells(const Solution& solution, std::size_t MeshPart::*place,
                   std::vector<double>& column) const;
  MeshResults ResultsOf(int mesh, std::span<const double> column) const;
  void BeamValues(const ValueGroup& group, std::span<const double> column, const BeamSpan& beam,
                  const double* stored, double* values) const;
  void BeamTranslations(const ValueGroup& group, std::span<const double> column,
                        const BeamSpan& beam, const SpanLoad& load, double* values) const;

  const Problem& problem;
  const ElementFamilies& families;
  std::size_t size = 0;
  std::size_t reactions = 0, stresses = 0;  ///< places in the column
  std::vector<int> nodeNumbers, supportNumbers;
  std::vector<int> nodeEquations, supportEquations;  ///< the first one of each
  std::vector<int> placeOfNode;                      ///< in nodeNumbers, by system number
  bool hasStresses = false;
  std::vector<MeshPart> meshes;
  std::vector<Matriu> frames;  ///< of beams, which borrow them
  std::vector<ValueGroup> groups;
};

}  // namespace morlen
