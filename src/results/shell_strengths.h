#pragma once

namespace morlen {

class Mesh;
struct MeshResults;
struct Problem;
struct Solution;

// Forces and moments of all shells of a mesh at their Gauss points, eight a point. The stress
// output of the problem decides whether they are local, principal or both.

/// Of standard shells.
void CalcShellStrengths(const Problem& problem, const Mesh& mesh, const Solution& solution,
                        MeshResults& results);
/// Of refined shells.
void CalcRefinedShellStrengths(const Problem& problem, const Mesh& mesh, const Solution& solution,
                               MeshResults& results);

/// Replaces the local values of a mesh of shells, which are known, by those that the stress output
/// of the problem asks for, or adds these.
void ConvertShellStrengths(const Problem& problem, const Mesh& mesh, MeshResults& results);

}  // namespace morlen
