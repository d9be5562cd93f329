#pragma once

namespace morlen {

class Mesh;
struct MeshResults;
struct Problem;
struct Solution;

/// Stresses of all solids of a mesh at their Gauss points, six a point, global axes.
void CalcSolidStrengths(const Problem& problem, const Mesh& mesh, const Solution& solution,
                        MeshResults& results);

}  // namespace morlen
