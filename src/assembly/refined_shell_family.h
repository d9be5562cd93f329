#pragma once

namespace morlen {

class ElementSink;
class InternalForces;
class Mesh;
class ReaVecV;
struct Problem;

// The analysis of refined shells of three and six nodes, for the table of element families. The
// shares of the problem (shell_shares.h) must be set.

void AddRefinedShellStiffness(const Problem& problem, const Mesh& mesh, int applyLocalAxes,
                              ElementSink& sink);
void AddRefinedShellForces(const Problem& problem, const Mesh& mesh, InternalForces& forces);
/// Loads on an edge of a three-node element also give moments about the normal at its ends.
void AddRefinedShellLoads(const Problem& problem, const Mesh& mesh, ReaVecV& loads);
/// See ElementFamily. It grows with the ratio of length to thickness, to a limit for three nodes
/// and without limit for six.
double RefinedShellIterationFactor(const Problem& problem, const Mesh& mesh);

}  // namespace morlen
