#pragma once

namespace morlen {

class Mesh;
struct MeshResults;
struct Problem;
struct Solution;

/// Forces and moments of all shells of a mesh at their Gauss points, eight a point: local ones,
/// principal ones or both, as the problem asks for it.
void CalcShellStrengths(const Problem& problem, const Mesh& mesh, const Solution& solution,
                        MeshResults& results);

}  // namespace morlen
