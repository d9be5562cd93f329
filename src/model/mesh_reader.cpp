#include <cmath>

#include "base/errorwriter.h"
#include "base/read_observer.h"
#include "base/textscan.h"
#include "model/mesh.h"
#include "model/node.h"
#include "model/units.h"
#include "numeric/plex_range.h"

namespace morlen {

namespace {

// The first integer after a keyword; any text between the two is skipped. 0 when the digits do
// not fit into an int: every caller refuses 0.
int ReadIntAfter(TextScan& text, const char* keyword)
{
  FindThisWord(text, keyword);
  const char* const from = text.Here();
  if (!text.FindDigit())
    Fatal("end of file and no digit found\n");
  Note(ReadEvent::SkippedToNumber, {from, text.Here()});
  int value = 0;
  return text.ReadInt(value) ? value : 0;
}

// The ratio of the length units may make a coordinate infinite.
void RequireFinite(const Node& node)
{
  for (const double coordinate : node) {
    if (!std::isfinite(coordinate))
      Fatal("error: node ", node.number, " has a coordinate that is not finite\n");
  }
}

}  // namespace

ElemType FindType(TextScan& text)
{
  static const struct
  {
    const char* beginning;
    ElemType type;
  } words[] = {
      {"l", Linear}, {"h", Hexahedra}, {"q", Quadrilateral}, {"tr", Triangle}, {"te", Tetrahedra}};
  const std::string_view word = text.ReadWord();
  for (const auto& candidate : words) {
    if (!HasPrefix(word, candidate.beginning))
      continue;
    if (!EqualsNoCase(word, ElemTypeName(candidate.type)))
      Note(ReadEvent::Prefix, word, ElemTypeName(candidate.type));
    return candidate.type;
  }
  Fatal("ElemType must be: Linear,Triangle,Quadrilateral, Tetrahedra or Hexahedra\n");
}

void Mesh::ReadFromAscii(TextScan& text, const Units* units)
{
  ndime = ReadIntAfter(text, "dimension");
  if (ndime != 2 && ndime != 3)
    Fatal("error: mesh dimension must be 2 or 3\n");
  FindThisWord(text, "elemtype");
  elemType = FindType(text);
  nnode = ReadIntAfter(text, "nnode");
  CalcShapeGaussFemv();
  FindThisWord(text, "coordinates");
  ReadNodes(text, units ? units->MeshLengthRatio() : 1.0);
  FindBlockEnd(text);
  FindWordAfterBlock(text, "elements");
  ReadElems(text, units);
  SkipBlockEnd(text);
}

void Mesh::ReadNodes(TextScan& text, double lengthFactor)
{
  int count = 0;
  for (;; ++count) {
    SkipComments(text);
    bool more = true;
    Attempt(&text, [&] { more = ReadNode(text, lengthFactor); });
    if (!more)
      break;
  }
  Attempt(nullptr, [&] { RequireAllNumbers(count); });
}

void Mesh::RequireAllNumbers(int count) const
{
  if (nodes->Last() == 0)
    Fatal("error: list of nodes does not contain any node\n");
  const bool gaps = nodes->Count() != nodes->Last();
  if (count != 0 && (count != nodes->Last() || gaps))
    Fatal("error: list of nodes does not contain all numbers\n");
}

bool Mesh::ReadNode(TextScan& text, double lengthFactor)
{
  auto node = std::make_unique<Node>(ndime);
  if (!node->ReadFromAscii(text))
    return false;
  *node *= lengthFactor;
  RequireFinite(*node);
  StoreNode(std::move(node));
  return true;
}

// A node that is listed again, in this mesh or in one before, gets new coordinates and stays the
// same object, so that elements, supports and loads keep pointing at it.
void Mesh::StoreNode(std::unique_ptr<Node> node)
{
  const int number = node->number;
  NoteStored(ReadItem::Node, number);
  if (Node* known = Find<Node>(*nodes, number))
    known->MoveTo(*node);
  else
    Store(*nodes, number, std::move(node));
}

void Mesh::ReadElems(TextScan& text, const Units* units)
{
  for (;;) {
    SkipComments(text);
    bool more = true;
    Attempt(&text, [&] { more = ReadElem(text, units); });
    if (!more)
      return;
  }
}

bool Mesh::ReadElem(TextScan& text, const Units* units)
{
  auto elem = std::make_unique<Elem>(this, nullptr);
  if (!elem->ReadFromAscii(text, nodes, units))
    return false;
  ownMaterials = ownMaterials || elem->HasOwnMaterial();
  const int number = elem->Num();
  const std::unique_ptr<Elem> replaced = Replace(*elems, number, std::move(elem));
  NoteStored(ReadItem::Element, number);
  return true;
}

}  // namespace morlen
