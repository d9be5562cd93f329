#pragma once

#include <cstdio>
#include <memory>
#include <string>
#include <vector>

#include "run/project.h"

namespace morlen {

/// The project that a problem file describes, read in this process.
std::unique_ptr<Project> ReadProject(const std::string& problem);

/// A problem read and solved in this process, its results in full precision by the numbers
/// of the file.
class Solved
{
public:
  explicit Solved(const std::string& problem, bool renumber = true, std::FILE* info = nullptr);

  std::vector<double> Displacement(int node) const;
  /// Fails the test, and is empty, for a node without a support.
  std::vector<double> Reaction(int node) const;
  /// The stored end forces, first end, then second.
  std::vector<double> EndForces(int elem) const;
  /// The first translations of the points of a beam, end nodes included.
  std::vector<std::vector<double>> SpanDisplacements(int elem, int divisions) const;
  /// Internal force `component` (from 1) at the relative abscissa t.
  double Strength(int elem, int component, double t) const;

  const Problem& Model() const { return project->problem; }
  const Solution& Result() const { return project->solution; }

private:
  int MeshOf(int elem) const;

  std::unique_ptr<Project> project;
};

/// Expects equal values, to `tolerance` times the largest expected one (or the scale, where
/// that is larger).
void ExpectValues(const std::vector<double>& actual, const std::vector<double>& expected,
                  double tolerance = 1e-9, double scale = 0.0);

/// Expects that the end forces of the beams carry the loads and reactions of every node,
/// and that all loads and reactions together have neither a resultant nor a moment. What may
/// remain is relative to the largest force and moment; iterative solutions need more.
void ExpectEquilibrium(const Solved& solved, double tolerance = 1e-10);

}  // namespace morlen
