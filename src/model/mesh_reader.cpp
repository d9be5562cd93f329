#include <algorithm>
#include <cmath>
#include <string>
#include <unordered_map>

#include "base/digits.h"
#include "base/errorwriter.h"
#include "base/interruption.h"
#include "base/read_observer.h"
#include "base/record_hint.h"
#include "base/text_parts.h"
#include "base/textscan.h"
#include "model/mesh.h"
#include "model/node.h"
#include "model/units.h"
#include "numeric/plex_range.h"

namespace morlen {

namespace {

/// Records between two calls of CheckInterruption: it would cost time after each.
constexpr int kRecordsPerCheck = 4096;

bool HasDigit(std::string_view text)
{
  return std::any_of(text.begin(), text.end(), IsDigit);
}

// The first integer after a keyword; any text between the two is skipped. 0 when the digits do
// not fit into an int: every caller refuses 0. foundWord: gets the word that has the keyword.
int ReadIntAfter(TextScan& text, const char* keyword, std::string_view* foundWord = nullptr)
{
  const std::string_view found = FindThisWord(text, keyword, HasDigit);
  if (foundWord)
    *foundWord = found;
  if (!FindDigit(text)) {
    Explain("no number follows '", keyword, "' in line ", text.LineOf(found.data()));
    Fatal("end of file and no digit found\n");
  }
  const char* const digits = text.Here();
  int value = 0;
  if (!text.ReadInt(value))
    return 0;
  const std::string_view word = text.WordAround(digits);
  const char* const stop = text.Here();
  if (stop != word.data() + word.size() && *stop != ':' && *stop != '=')
    Note(ReadEvent::NumberPart, {digits, word.data() + word.size()});
  return value;
}

struct TypeWord
{
  const char* beginning;
  ElemType type;
};

constexpr TypeWord kTypeWords[] = {
    {"l", Linear}, {"h", Hexahedra}, {"q", Quadrilateral}, {"tr", Triangle}, {"te", Tetrahedra}};

// The type whose name a word begins like; null when there is none.
const TypeWord* FindTypeWord(std::string_view word)
{
  const auto* row = std::find_if(
      std::begin(kTypeWords), std::end(kTypeWords),
      [word](const TypeWord& candidate) { return HasPrefix(word, candidate.beginning); });
  return row == std::end(kTypeWords) ? nullptr : row;
}

bool IsTypeWord(std::string_view word)
{
  return FindTypeWord(word) != nullptr;
}

// The next word that is neither a delimiter nor in a comment.
std::string_view ReadWordOfHead(TextScan& text)
{
  for (;;) {
    const std::string_view word = ReadValue(text);
    if (word.empty() || word[0] != '#')
      return word;
    text.SkipLine();
  }
}

// The place at which a list without "end" ends.
std::string EndOfList(const TextScan& text)
{
  const std::string_view word = text.WordAround(text.Here());
  if (text.AtEnd())
    return "the list ends with the file";
  if (HasPrefix(word, "end"))
    return {};
  const std::string fault = FaultOfNumber(word);
  return LinePrefix({word, &text}) +
         "the list ends here: " + (fault.empty() ? Quoted(word) + " begins no record" : fault);
}

std::string MissingNode(const VoidPlex& nodes)
{
  for (int number = 1; number <= nodes.Last(); ++number) {
    if (nodes.free(number))
      return "node " + std::to_string(number) + " is missing";
  }
  return {};
}

std::string RepeatedNode(const TextScan& text, const char* first, int ndime)
{
  TextScan list(std::string_view(first, text.Here()));
  std::unordered_map<int, int> lines;
  for (int number = 0; ReadRecordNumber(list, number); list.SkipLine()) {
    const int line = text.LineOf(list.Here());
    const auto [known, added] = lines.try_emplace(number, line);
    if (!added)
      return "node " + std::to_string(number) + " is given in line " +
             std::to_string(known->second) + " and in line " + std::to_string(line);
    double coordinate = 0.0;
    for (int k = 0; k < ndime; ++k)
      list.ReadDouble(coordinate);
  }
  return {};
}

// Why the numbers of a list of nodes are not 1 to n. The list begins at `first`, and its last
// record ends at the place reached.
std::string FaultOfNodes(const VoidPlex& nodes, const TextScan& text, const char* first, int ndime)
{
  std::string fault;
  for (const std::string& part :
       {EndOfList(text), MissingNode(nodes), RepeatedNode(text, first, ndime)})
    fault += (fault.empty() || part.empty() ? "" : "; ") + part;
  return fault.empty() ? "the meshes before have " + std::to_string(nodes.Last()) +
                             " nodes: list all of them again, or none"
                       : fault;
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
  const std::string_view word = ReadWordOfHead(text);
  const TypeWord* const row = FindTypeWord(word);
  if (!row) {
    Explain(LinePrefix(text, text.Here()), "the type of element is '", word,
            "': 'elemtype Linear' makes beams, Triangle shells, Tetrahedra solids");
    Fatal("ElemType must be: Linear,Triangle,Quadrilateral, Tetrahedra or Hexahedra\n");
  }
  if (!EqualsNoCase(word, ElemTypeName(row->type)))
    Note(ReadEvent::Prefix, word, ElemTypeName(row->type));
  return row->type;
}

void Mesh::ReadHead(TextScan& text)
{
  ndime = ReadIntAfter(text, "dimension");
  if (ndime != 2 && ndime != 3) {
    Explain(LinePrefix(text, text.Here()), "the dimension is ", ndime,
            "; it is the number of coordinates of a node");
    Fatal("error: mesh dimension must be 2 or 3\n");
  }
  FindThisWord(text, "elemtype", IsTypeWord);
  elemType = FindType(text);
  std::string_view found;
  nnode = ReadIntAfter(text, "nnode", &found);
  const bool isPart = !EqualsNoCase(found, "nnode");
  CalcShapeGaussFemv(isPart ? LinePrefix(text, found.data()) + Quoted(found) +
                                  " is taken for the keyword nnode, without a value: "
                            : std::string());
}

void Mesh::ReadFromAscii(TextScan& text, const Units* units)
{
  ReadHead(text);
  text.EnterBlock(FindThisWord(text, "coordinates"));
  ReadNodes(text, units ? units->MeshLengthRatio() : 1.0);
  FindBlockEnd(text);
  text.EnterBlock(FindWordAfterBlock(text, "elements"));
  ReadElems(text, units);
  SkipBlockEnd(text);
}

void Mesh::ReadNodes(TextScan& text, double lengthFactor)
{
  const char* const first = text.Here();
  int count = 0;
  for (;; ++count) {
    SkipComments(text);
    bool more = true;
    Attempt(&text, [&] { more = ReadNode(text, lengthFactor); });
    if (!more)
      break;
    if (count % kRecordsPerCheck == 0)
      CheckInterruption();
  }
  Attempt(nullptr, [&] { RequireAllNumbers(count, text, first); });
}

void Mesh::RequireAllNumbers(int count, const TextScan& text, const char* first) const
{
  if (nodes->Last() == 0) {
    Explain(EndOfList(text));
    Fatal("error: list of nodes does not contain any node\n");
  }
  const bool gaps = nodes->Count() != nodes->Last();
  if (count != 0 && (count != nodes->Last() || gaps)) {
    Explain(FaultOfNodes(*nodes, text, first, ndime));
    Fatal("error: list of nodes does not contain all numbers\n");
  }
}

bool Mesh::ReadNode(TextScan& text, double lengthFactor)
{
  auto node = std::make_unique<Node>(ndime);
  const char* const record = text.Here();
  if (!node->ReadFromAscii(text))
    return false;
  if (node->number < 1)
    ExplainIndex(text, SkipWhite(record, text.Here()));
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
  if (Node* known = Find<Node>(*nodes, number))
    known->MoveTo(*node);
  else
    Store(*nodes, number, std::move(node));
  NoteStored(ReadItem::Node, number);
}

void Mesh::ReadElems(TextScan& text, const Units* units)
{
  for (int count = 0;; ++count) {
    SkipComments(text);
    bool more = true;
    Attempt(&text, [&] { more = ReadElem(text, units); });
    if (!more)
      return;
    if (count % kRecordsPerCheck == 0)
      CheckInterruption();
  }
}

bool Mesh::ReadElem(TextScan& text, const Units* units)
{
  auto elem = std::make_unique<Elem>(this, nullptr);
  const char* const record = text.Here();
  if (!elem->ReadFromAscii(text, nodes, units))
    return false;
  ownMaterials = ownMaterials || elem->HasOwnMaterial();
  const int number = elem->Num();
  if (number < 1)
    ExplainIndex(text, SkipWhite(record, text.Here()));
  const std::unique_ptr<Elem> replaced = Replace(*elems, number, std::move(elem));
  NoteStored(ReadItem::Element, number);
  return true;
}

}  // namespace morlen
