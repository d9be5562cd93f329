#pragma once

#include <vector>

#include "support/frame.h"
#include "support/solved.h"

namespace morlen {

// Results of beams in full precision, including the effect of loads between the ends.

/// The end forces of the text results: first end, then second.
std::vector<double> LoadedEndForces(const Solved& solved, int elem);

/// The internal force `component` (from 1) at the relative abscissa t.
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

/// Expects that the diagrams of a beam begin and end with its end forces, and that they change
/// along the beam by its load. q: the local components of the load (space: three forces and a
/// torque, plane: two forces).
void ExpectDiagrams(const Solved& solved, int elem, const std::vector<double>& q);

/// A block of records with its end line.
inline std::string Block(const std::string& keyword, const std::string& records)
{
  return keyword + "\n" + records + "\nend " + keyword + "\n";
}

/// A number with all its digits.
std::string Digits(double value);

}  // namespace morlen
