#pragma once

namespace morlen {

class ElementSink;
class InternalForces;
class Mesh;
class ReaVecV;
struct Problem;

// Solids of four and ten nodes in the analysis, for the rows of an ElementFamily.

void AddSolidStiffness(const Problem& problem, const Mesh& mesh, int applyLocalAxes,
                       ElementSink& sink);
void AddSolidForces(const Problem& problem, const Mesh& mesh, InternalForces& forces);
void AddSolidLoads(const Problem& problem, const Mesh& mesh, ReaVecV& loads);
double SolidIterationFactor(const Problem& problem, const Mesh& mesh);

}  // namespace morlen
