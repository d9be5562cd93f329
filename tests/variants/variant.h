#pragma once

#include <string>
#include <vector>

#include "variants/layout.h"

namespace morlen::variants {

/// The way in which a variant differs from its base model, as engineers write problem files.
enum class Kind : unsigned
{
  // Other white space:
  Tab,
  DoubleBlank,
  TrailingBlank,
  CarriageReturn,
  BlankLine,
  // Other signs between a key and its value:
  GluedEquals,
  SpacedEquals,
  Colon,
  NoSign,
  SwitchValue,  ///< a setting without a value gets one
                // Comments:
  Comment,
  OtherComment,  ///< by the signs of other programs
                 // Lines that are not as they should be:
  MissingEnd,
  MisspeltWord,
  UnitsLate,  ///< a unit line after the data
              // Numbers that are not as they should be:
  DecimalComma,
  FortranExponent,
  CountWithExponent,
  NodeList,     ///< commas or hyphens between the nodes of an element
  FaceLeftOut,  ///< the first value is read as the face
  FreeValue,    ///< a value at a component whose flag is free
  NoValue,      ///< a key without its value
  kCount
};

/// The place of a change in its line, or of a new line among the others.
enum class Place : unsigned
{
  Before,       ///< before the first word
  Inside,       ///< before a word that the line needs
  Items,        ///< before a key, or a word that may be left out
  BeforeValue,  ///< between a key and its value
  After,        ///< after the last word
  Line,         ///< the line as a whole
  NewInList,    ///< a new line above a record
  NewAtEnd,     ///< a new line above the end of a block
  NewInHead,    ///< a new line in the head of a mesh, or between its lists
  NewAtTop,     ///< a new line between blocks
  kCount
};

/// A place of a base model and a change there.
struct Site
{
  const BaseModel* model;
  const Layout* layout;
  std::size_t line;   ///< from 0; for a new line that below it
  std::size_t token;  ///< the word changed, or that to the right of a changed gap
  Place place;
  Kind kind;
  std::string form;  ///< the characters that make the change

  const Line& OwnLine() const { return (*layout)[line]; }
  /// The word changed, or that to the right of the gap; null after the last one.
  const Token* Right() const;
  /// The first word of the line.
  const std::string& FirstWord() const { return OwnLine().tokens[0].text; }
  Block OwnBlock() const;
};

struct Variant
{
  Site site;
  std::string text;
};

const char* NameOf(Kind kind);

/// "frame, line 12, constraints, before word 3: '\t'".
std::string Describe(const Site& site);

/// All variants of the kind in a block of the base models.
std::vector<Variant> VariantsOf(Block block, Kind kind);

/// The base model without the words of the site's line from the site on.
std::string WithoutRest(const Site& site);

}  // namespace morlen::variants
