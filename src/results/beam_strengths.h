#pragma once

#include "model/hinge_code.h"

namespace morlen {

class Elem;
class Matriu;
class Mesh;
class ReaVecV;
struct BeamSpan;
struct MeshResults;
struct NodeComponents;
struct Problem;
struct Solution;

/// End forces of all beams of a mesh, from the displacements of their nodes alone: the fixed-end
/// forces of loads on the span are not included. The forces of the first end come first; local
/// axes.
void CalcBeamStrengths(const Problem& problem, const Mesh& mesh, const Solution& solution,
                       MeshResults& results);

/// Internal force `component` (from 1) of a beam of length L at the relative abscissa t in 0..1,
/// from its end forces. 0 for a component that beams of the mesh do not have.
double GiveStrength(const MeshResults& results, int elemNumber, int component, double t, double L);

/// The same from the n end forces of the first end, which those of the second end follow.
/// component: 1 to n.
double StrengthFromEnds(const double* ends, int n, int component, double t, double L);

/// Displacements of the two ends of a beam in its local axes: u, v, θz in plane problems,
/// u, v, w, θx, θy, θz in space.
struct BeamEnds
{
  double first[6];
  double second[6];
};

/// displacements: by equation, global axes. T: the frame of the beam.
BeamEnds GiveBeamEnds(const NodeComponents& components, const ReaVecV& displacements,
                      const Elem& beam, const Matriu& T);

/// Replaces the rotations of hinged ends by those that give no moment at these ends. A hinged end
/// does not rotate with its node. L: length of the beam. components: 3 or 6 a node.
void ReleaseHingedRotations(HingeCode hingeCode, double L, int components, BeamEnds& ends);

/// Displacements of `divisions` + 1 equidistant points of a beam without loads on its span, in
/// global axes: three for each point (two in plane problems), point by point. displacements: by
/// equation, global axes. T: the frame of the beam.
void SetDisplacementVectors(const NodeComponents& components, const ReaVecV& displacements,
                            const Elem& beam, HingeCode hingeCode, const Matriu& T, int divisions,
                            double* out);

/// The same from the components of both ends in global axes.
void SetDisplacementVectors(const BeamSpan& beam, const double* first, const double* second,
                            int divisions, double* out);

}  // namespace morlen
