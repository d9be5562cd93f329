#pragma once

#include <cstddef>

#include "assembly/solution.h"
#include "model/elem.h"
#include "problem/problem.h"

/// Models and results as arrays of numbers, which the caller allocates. Rows of nodes and elements
/// are in the order of their numbers in the problem file, elements mesh by mesh.
namespace morlen::python {

constexpr int kBeamForces = 6;   ///< N, Vy, Vz, T, My, Mz
constexpr int kShellForces = 8;  ///< Nx, Ny, Nxy, Mx, My, Mxy, Qx, Qy
constexpr int kSolidStress = 6;  ///< Sx, Sy, Sz, Txy, Tyz, Txz

/// The nodes of the problem file.
std::size_t CountNodes(const Problem& problem);
/// numbers: one for each node; places: three, 0 for a coordinate that the file does not have.
void FillNodes(const Problem& problem, int* numbers, double* places);

std::size_t CountElements(const Problem& problem, ElemType type);
/// The most nodes that an element of this type has in the file; 0 without elements.
int MostNodes(const Problem& problem, ElemType type);
/// nodes: `width` numbers for each element, 0 beyond its own; materials: their numbers, 0 without.
void FillElements(const Problem& problem, ElemType type, int width, int* numbers, int* nodes,
                  int* materials);

/// values: by equation. rows: components.count for each node.
void FillNodal(const Problem& problem, const ReaVecV& values, double* rows);

/// Internal forces at `points` equidistant points of each beam, its ends included; one point is
/// the middle.
void FillBeamForces(const Problem& problem, const Solution& solution, int points, double* rows);
/// Translations in global axes at `points` points, 2 or more: two or three for each.
void FillBeamDisplacements(const Problem& problem, const Solution& solution, int points,
                           double* rows);

/// The most points that a shell has; 0 without shells.
int ShellPoints(const Problem& problem, const Solution& solution);
/// Values at the Gauss points; not a number at points that a shell of three nodes lacks.
/// main: the principal values in place of the local ones.
void FillShellForces(const Problem& problem, const Solution& solution, bool main, double* rows);

/// Stresses at the nodes of solids.
void FillSolidStress(const Problem& problem, const Solution& solution, double* rows);

}  // namespace morlen::python
