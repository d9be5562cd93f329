#pragma once

namespace morlen {

class ElementSink;
class InternalForces;
class Mesh;
class ReaVecV;
struct Problem;

// The analysis of refined shells of three and six nodes, for the rows of ElementFamily. The shares
// of the problem (shell_shares.h) must be set.

void AddRefinedShellStiffness(const Problem& problem, const Mesh& mesh, int applyLocalAxes,
                              ElementSink& sink);
void AddRefinedShellForces(const Problem& problem, const Mesh& mesh, InternalForces& forces);
/// Loads on an edge of a three-node element also give moments about the normal at its ends.
void AddRefinedShellLoads(const Problem& problem, const Mesh& mesh, ReaVecV& loads);

}  // namespace morlen
