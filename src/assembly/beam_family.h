#pragma once

namespace morlen {

class ElementSink;
class InternalForces;
class Mesh;
class ReaVecV;
struct Problem;

// The analysis of beams, for their row of ElementFamily.

void AddBeamStiffness(const Problem& problem, const Mesh& mesh, int applyLocalAxes,
                      ElementSink& sink);
void AddBeamForces(const Problem& problem, const Mesh& mesh, InternalForces& forces);
void AddBeamLoads(const Problem& problem, const Mesh& mesh, ReaVecV& loads);
double BeamIterationFactor(const Problem& problem, const Mesh& mesh);

}  // namespace morlen
