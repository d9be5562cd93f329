#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <vector>

#include "check/checks.h"
#include "common/model_data.h"

namespace morlen {

class Project;

namespace check {

/// What a model is made of and what its run would take, in the units of the results.
struct Summary
{
  bool plane = false;
  int nodes = 0;
  int beams = 0, shells = 0, solids = 0;
  int parts = 0;
  Point low{}, high{};  ///< bounding box of all nodes
  std::vector<int> materials, unusedMaterials;
  model::Units units;  ///< of the results
  Point load{};        ///< sum of all loads, weight included
  Point weight{};      ///< sum of the weight
  int equations = 0;
  std::string solver;        ///< as SolverTaken has it
  std::int64_t entries = 0;  ///< stored numbers of the matrix; 0 where triangles get more nodes,
                             ///< and where the run chooses the solver by the work
};

/// The solver that a run takes, as in the problem file; "Automatic" for a large model, whose run
/// chooses by the work.
struct SolverTaken
{
  std::string name;
  int addedNodes = 0;  ///< in the middle of the edges of triangles, before the solution
};

/// Settles what the project leaves open.
SolverTaken SolverOf(Project& project, const Subject& subject);

/// The loads are summed by the program's own functions: their errors go to the observer. The
/// model must be free of errors up to here. Renumbers the nodes of the project, so it comes last.
Summary Summarise(Project& project, const Subject& subject);

/// Lines of text.
std::string TextOf(const Summary& summary);

}  // namespace check

}  // namespace morlen
