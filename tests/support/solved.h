#pragma once

#include <cstdio>
#include <memory>
#include <string>
#include <vector>

#include "problem/problem.h"
#include "run/project.h"

namespace morlen {

/// Reads the text of a problem file in this process.
std::unique_ptr<Problem> ReadProblemText(const std::string& text);

/// The same, as a project that can be solved.
std::unique_ptr<Project> ReadProject(const std::string& problem);

/// A problem that is read and solved in this process. Its results have full precision; nodes and
/// elements are given by their numbers in the file.
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

/// Expects equal values, within `tolerance` times the largest expected value or the scale, if that
/// is larger.
void ExpectValues(const std::vector<double>& actual, const std::vector<double>& expected,
                  double tolerance = 1e-9, double scale = 0.0);

/// Expects equilibrium of every node under end forces, load and reaction, and of the model under
/// all loads and reactions. The tolerance is relative to the largest force and moment; iterative
/// solutions need a larger one.
void ExpectEquilibrium(const Solved& solved, double tolerance = 1e-10);

}  // namespace morlen
