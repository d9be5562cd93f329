#pragma once

#include <array>
#include <vector>

namespace morlen {

class Elem;
class ElementSink;
class InternalForces;
class Mesh;
class ReaVecV;
struct Problem;

// The analysis of flat shells of three and six nodes, for the rows of ElementFamily. The
// coplanarity marks of the problem must be set for stiffness, forces and iteration factor.

void AddShellStiffness(const Problem& problem, const Mesh& mesh, int applyLocalAxes,
                       ElementSink& sink);
void AddShellForces(const Problem& problem, const Mesh& mesh, InternalForces& forces);
void AddShellLoads(const Problem& problem, const Mesh& mesh, ReaVecV& loads);
double ShellIterationFactor(const Problem& problem, const Mesh& mesh);

/// For each node of a shell, true when its triangles do not all lie in one plane. coplanarity: the
/// marks of Problem::coplanarity.
std::array<bool, 6> FoldedNodes(const std::vector<int>& coplanarity, const Elem& shell);

}  // namespace morlen
