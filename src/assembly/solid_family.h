#pragma once

namespace morlen {

class ElementSink;
class InternalForces;
class Mesh;
class ReaVecV;
struct Problem;

// The analysis of solids of four and ten nodes, for their rows of ElementFamily.

void AddSolidStiffness(const Problem& problem, const Mesh& mesh, int applyLocalAxes,
                       ElementSink& sink);
void AddSolidForces(const Problem& problem, const Mesh& mesh, InternalForces& forces);
void AddSolidLoads(const Problem& problem, const Mesh& mesh, ReaVecV& loads);
double SolidIterationFactor(const Problem& problem, const Mesh& mesh);

}  // namespace morlen
