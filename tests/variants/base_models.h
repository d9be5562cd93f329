#pragma once

#include <array>

namespace morlen::variants {

/// A problem file without faults, for which morlen-check finds nothing. It is written in the
/// plainest way: one blank between two words, no blank at the ends of a line, no empty line.
struct BaseModel
{
  const char* name;
  int components;  ///< of a node
  const char* text;
};

/// A frame in space, a frame in the plane, a shell and a solid. Together they have every block, and
/// all but the shell convert units.
const std::array<BaseModel, 4>& BaseModels();

}  // namespace morlen::variants
