#pragma once

namespace morlen {

class Matriu;

/// Displacements of the two ends of a beam in its local axes: u, v, θz in plane problems,
/// u, v, w, θx, θy, θz in space.
struct BeamEnds
{
  double first[6];
  double second[6];
};

/// Replaces the rotations of hinged ends, which the nodes do not share, by those that
/// leave the ends without moment. components: 3 or 6 a node.
void ReleaseHingedRotations(int hingeCode, double L, int components, BeamEnds& ends);

}  // namespace morlen
