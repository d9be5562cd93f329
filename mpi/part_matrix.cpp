#include "mpi/part_matrix.h"

#include <span>

#include "direct/problem_pattern.h"
#include "model/constraint.h"
#include "model/node.h"
#include "numeric/plex_range.h"

namespace morlen::mpi {

PartMatrix::PartMatrix(const Part& part_)
    : part(part_), matrix(direct::PatternOf(part.problem), part.problem.components.count)
{
}

std::vector<double> PartMatrix::ApplySupports()
{
  const int n = part.problem.components.count;
  ReaVecV loads;
  loads.resize(matrix.Equations(), 0.0);
  ReaVecV* const side = &loads;
  bool hasLoads = false;
  for (const Node& node : Each<Node>(part.problem.GiveNodes())) {
    if (!node.constraint)
      continue;
    const bool owned = part.owned[node.number - 1] != 0;
    for (int k = 1; k <= n; ++k) {
      const int equation = part.problem.Equation(node, k);
      const double value = node.constraint->values[k - 1];
      if (node.constraint->flags[k - 1] == Constraint::kPrescribed) {
        matrix.Constrain(equation, {&value, 1}, {&side, 1});
        *matrix.Find(equation, equation) = owned ? 1.0 : 0.0;
        hasLoads = hasLoads || value != 0.0;
      } else if (node.constraint->flags[k - 1] == Constraint::kSpring && owned) {
        *matrix.Find(equation, equation) += value;
      }
    }
  }
  if (!hasLoads)
    return {};
  for (const Node& node : Each<Node>(part.problem.GiveNodes())) {
    for (int k = 1; node.constraint && k <= n; ++k) {
      if (node.constraint->flags[k - 1] == Constraint::kPrescribed)
        loads(part.problem.Equation(node, k)) = 0.0;
    }
  }
  return {loads.Data(), loads.Data() + loads.Size()};
}

std::vector<double> PartMatrix::Diagonal() const
{
  std::vector<double> diagonal;
  diagonal.reserve(static_cast<std::size_t>(matrix.Equations()));
  for (int i = 1; i <= matrix.Equations(); ++i)
    diagonal.push_back(*matrix.Find(i, i));
  return diagonal;
}

void RenumberAsWhole(const Part& part, direct::Coordinates& entries)
{
  const NodeComponents& numbering = part.problem.components;
  for (std::vector<int>* list : {&entries.rows, &entries.columns}) {
    for (int& equation : *list) {
      const int node = (equation - 1) / numbering.count;
      equation = numbering.Equation(part.nodes[node], (equation - 1) % numbering.count + 1);
    }
  }
}

}  // namespace morlen::mpi
