#pragma once

#include <vector>

#include "support/frame.h"
#include "support/solved.h"

namespace morlen {

// Results of beams in full precision, with what their loads do between their ends.

/// The end forces as the text results have them, first end, then second.
std::vector<double> LoadedEndForces(const Solved& solved, int elem);

/// Internal force `component` (from 1) at the relative abscissa t.
double LoadedStrength(const Solved& solved, int elem, int component, double t);

/// The displacements of the division points, end nodes included, in global axes.
std::vector<std::vector<double>> LoadedDisplacements(const Solved& solved, int elem, int divisions);

/// A force and a moment per length, uniform along a beam, in global axes.
struct LineLoad
{
  int elem = 1;
  Vector3 force = {};
  Vector3 moment = {};
};

/// Expects equilibrium of every node, of every beam, and of all loads and reactions.
void ExpectLoadedEquilibrium(const Solved& solved, const std::vector<LineLoad>& lineLoads);

/// Expects that the diagrams of a beam begin and end with its end forces, and change along it
/// as its load asks for; q are the load's local components (space: three forces and a torque,
/// plane: two forces).
void ExpectDiagrams(const Solved& solved, int elem, const std::vector<double>& q);

/// A block of records, closed.
inline std::string Block(const std::string& keyword, const std::string& records)
{
  return keyword + "\n" + records + "\nend " + keyword + "\n";
}

/// A number with all its digits.
std::string Digits(double value);

}  // namespace morlen
