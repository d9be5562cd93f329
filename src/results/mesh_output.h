#pragma once

namespace morlen {

class Mesh;
struct MeshResults;
struct Problem;
struct Solution;

/// A mesh with its results, for the writers. All is borrowed.
struct MeshOutput
{
  const Problem& problem;
  const Solution& solution;
  const Mesh& mesh;
  const MeshResults& results;
};

}  // namespace morlen
