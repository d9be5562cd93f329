#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "variants/base_models.h"

namespace morlen::variants {

/// The part of a problem file that a line belongs to. The keyword and the end of a block belong to
/// the block.
enum class Block : unsigned
{
  Title,  ///< comments and the header
  UnitsNames,
  UnitLines,
  MeshHead,
  Coordinates,
  Elements,
  Materials,
  Constraints,
  NodalLoads,
  Rotules,
  ElemRotules,
  LocalPressure,
  GlobalPressure,
  ProjectedPressure,
  FaceLoads,
  Temperature,
  Settings,
  kCount
};

enum class Role
{
  Comment,
  Line,  ///< the header, the head of a mesh, a unit line or a setting
  Keyword,
  Record,
  End
};

/// The meaning of a word.
enum class Field : unsigned
{
  Word,      ///< a keyword, or "end" with the name of its block
  Key,       ///< a word whose value follows
  Name,      ///< the name of a unit or of a type
  Number,    ///< the first number of a record
  Node,      ///< a node of an element
  Material,  ///< the number of an element's material
  Count,     ///< another whole number
  Face,
  Flags,
  Code,  ///< of hinges
  Real,
  Remark,  ///< the word after a hinged node
  kCount
};

struct Token
{
  Field field;
  std::string glue;  ///< the characters before the text; empty for the first token
  std::string text;
  bool optional = false;  ///< the record is complete without it
};

struct Line
{
  Block block;
  Role role;
  std::vector<Token> tokens;  ///< the text of a comment is one token
};

using Layout = std::vector<Line>;

const char* NameOf(Block block);

/// True for a value that '=' or ':' joins to its key.
bool HasSign(const Token& token);

/// The lines of a base model.
Layout LayoutOf(const BaseModel& model);

std::string TextOf(const Line& line);
/// The lines with their newlines.
std::string TextOf(const Layout& layout);

}  // namespace morlen::variants
