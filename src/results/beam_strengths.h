#pragma once

#include "model/hinge_code.h"

namespace morlen {

class Elem;
class Matriu;
class Mesh;
class ReaVecV;
struct MeshResults;
struct Problem;
struct Solution;

/// End forces of all beams of a mesh: those of the first end, then those of the second, in local
/// axes, without the loads between the ends.
void CalcBeamStrengths(const Problem& problem, const Mesh& mesh, const Solution& solution,
                       MeshResults& results);

/// Internal force `component` (from 1) of a beam of length L at the relative abscissa t, from its
/// end forces. 0 for a component that beams of the mesh do not have.
double GiveStrength(const MeshResults& results, int elemNumber, int component, double t, double L);

/// Displacements of the two ends of a beam in its local axes: u, v, θz in plane problems,
/// u, v, w, θx, θy, θz in space.
struct BeamEnds
{
  double first[6];
  double second[6];
};

/// displacements: by equation. T: the frame of the beam.
BeamEnds GiveBeamEnds(const Problem& problem, const ReaVecV& displacements, const Elem& beam,
                      const Matriu& T);

/// Replaces the rotations of hinged ends, which the nodes do not share, by those that
/// leave the ends without moment. components: 3 or 6 a node.
void ReleaseHingedRotations(HingeCode hingeCode, double L, int components, BeamEnds& ends);

/// Displacements of `divisions` + 1 equidistant points of a beam in global axes, three
/// for each (two in plane problems), one point after the other.
void SetDisplacementVectors(const Problem& problem, const ReaVecV& displacements, const Elem& beam,
                            const Matriu& T, int divisions, double* out);

}  // namespace morlen
