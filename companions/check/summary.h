#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <vector>

#include "check/checks.h"

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
  std::string force, length;  ///< names of the units of the results; as read, or "N" and "m"
  Point load{};               ///< sum of all loads, weight included
  Point weight{};             ///< sum of the weight
  int equations = 0;
  std::string solver;        ///< as in the problem file, never "Automatic"
  std::int64_t entries = 0;  ///< stored numbers of the matrix; 0 where triangles get more nodes
};

/// The loads are summed by the program's own functions: their errors go to the observer. The
/// model must be free of errors up to here. Renumbers the nodes of the project, so it comes last.
Summary Summarise(Project& project, const Subject& subject);

/// Lines of text.
std::string TextOf(const Summary& summary);

}  // namespace check
