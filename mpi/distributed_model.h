#pragma once

#include <vector>

#include "mpi/part.h"
#include "mpi/team.h"
#include "numeric/reavecv.h"

namespace morlen {

class InternalForces;
struct Solution;

namespace mpi {

/// The sums over all ranks of an assembly.
struct Assembled
{
  std::vector<std::int64_t> values;  ///< matrix values of each rank
  ReaVecV loads;      ///< from prescribed displacements, by equation in the axes of the supports
  ReaVecV diagonal;   ///< of the matrix
  int notFinite = 0;  ///< an equation with an entry that is not a number; 0 for none
};

/// A problem whose elements are divided between the ranks. Only the first rank has one.
class DistributedModel
{
public:
  /// Borrows the team.
  explicit DistributedModel(Team& team_) : team(team_) {}

  /// Sends each rank its part of a prepared problem. partOfNode: see PartsOfNodes.
  void Divide(const Problem& problem, const std::vector<int>& partOfNode);

  /// Lets every rank assemble its part, with its supports.
  Assembled Assemble(const Problem& problem);

  /// As morlen::AddForces.
  void AddForces(const Problem& problem, InternalForces& forces);

  /// As the function calcStrengths of the mesh's family (from 0).
  void FillStrengths(const Problem& problem, int mesh, Solution& solution);

  Team& GiveTeam() { return team; }

  /// Adds values by equation of a rank's part to those of the whole problem.
  void Scatter(const NodeComponents& components, int rank, const std::vector<double>& own,
               double* whole) const;
  /// The values of a rank's part from those by equation of the whole problem.
  std::vector<double> Gather(const NodeComponents& components, int rank, const double* whole) const;

  /// For each rank and each node of its part the number, from 0, of the node's first free equation:
  /// the equations of the nodes that the first rank owns come first, and so on.
  std::vector<std::vector<int>> FirstFreeEquations(const Problem& problem) const;

private:
  Team& team;
  std::vector<ElementsOfPart> elements;  ///< of each rank
  std::vector<NodesOfPart> nodes;        ///< of each rank
};

}  // namespace mpi
}  // namespace morlen
