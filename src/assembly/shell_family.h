#pragma once

#include <array>

namespace morlen {

class Elem;
class ElementSink;
class InternalForces;
class Mesh;
class ReaVecV;
struct Problem;

// Flat shells of three and six nodes in the analysis, for the rows of an ElementFamily. The
// coplanarity marks of the problem must be set for stiffness, forces and iteration factor.

void AddShellStiffness(const Problem& problem, const Mesh& mesh, int applyLocalAxes,
                       ElementSink& sink);
void AddShellForces(const Problem& problem, const Mesh& mesh, InternalForces& forces);
void AddShellLoads(const Problem& problem, const Mesh& mesh, ReaVecV& loads);
double ShellIterationFactor(const Problem& problem, const Mesh& mesh);

/// Which nodes of a shell do not have all their triangles in one plane.
std::array<bool, 6> FoldedNodes(const Problem& problem, const Elem& shell);

}  // namespace morlen
