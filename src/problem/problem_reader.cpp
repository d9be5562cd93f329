// The top level of the problem file: header, keywords, and the checks at the end.

#include "problem/problem_reader.h"

#include <algorithm>
#include <cmath>
#include <string>

#include "base/errorwriter.h"
#include "base/large_memory.h"
#include "base/memory_limit.h"
#include "base/read_observer.h"
#include "base/textscan.h"
#include "model/material.h"
#include "model/mesh.h"
#include "model/node.h"
#include "numeric/plex_range.h"
#include "problem/elem_load_reader.h"
#include "problem/hinges.h"
#include "problem/nodal_reader.h"
#include "problem/problem.h"
#include "problem/settings_reader.h"

namespace morlen {

namespace {

struct Content
{
  LargeBlock block;
  std::size_t size = 0;
};

// The bytes from the current position to the end; 0 when the stream cannot tell.
std::size_t BytesAhead(std::streambuf& in)
{
  const std::streamoff here = in.pubseekoff(0, std::ios::cur, std::ios::in);
  const std::streamoff end = in.pubseekoff(0, std::ios::end, std::ios::in);
  if (here < 0 || end < here)
    return 0;
  in.pubseekpos(here, std::ios::in);
  return static_cast<std::size_t>(end - here);
}

// A read error (a folder, a faulty disk) counts as the end of the file.
Content ReadWholeStream(std::ifstream& in)
{
  Content content;
  std::size_t capacity = std::size_t{1} << 16;
  content.block = AllocateLarge(capacity);
  for (;;) {
    in.read(content.block.get() + content.size,
            static_cast<std::streamsize>(capacity - content.size));
    content.size += static_cast<std::size_t>(in.gcount());
    if (!in)
      return content;
    capacity = content.size + std::max(content.size, BytesAhead(*in.rdbuf()) + 1);
    RequireMemory(capacity);
    LargeBlock larger = AllocateLarge(capacity);
    std::copy_n(content.block.get(), content.size, larger.get());
    content.block = std::move(larger);
  }
}

[[noreturn]] void RefuseHeight(int node)
{
  Fatal("error: node ", node, " has a z coordinate in a 2d problem\n");
}

// The value of a keyword: the rest `glued` of the keyword's word, or else the next word that has
// more than the characters ' ', '=' and ':'.
std::string ReadValue(TextScan& text, std::string_view glued)
{
  constexpr const char* kSkipped = " =:";
  for (std::string_view rest = glued;; rest = text.ReadWord()) {
    const std::size_t start = rest.find_first_not_of(kSkipped);
    if (start != std::string_view::npos)
      return std::string(rest.substr(start));
    if (text.AtEnd())
      return {};
  }
}

// Notes a word that continues after the keyword `name` with anything but '=', ':' or the number
// that is its value.
void NoteGlued(std::string_view word, std::string_view name, bool takesValue)
{
  const std::string_view glued = word.substr(name.size());
  constexpr std::string_view kEnds = "=:+-.0123456789";
  if (!glued.empty() && kEnds.substr(0, takesValue ? kEnds.size() : 2).find(glued[0]) == kEnds.npos)
    Note(ReadEvent::Prefix, word, name);
}

PROBLEMTYPE ReadHeader(TextScan& text)
{
  FindThisWord(text, "problem");
  FindThisWord(text, "type");
  text.TakeOutSpaces();
  std::string_view word = text.ReadWord();
  if (EqualsNoCase(word, "reticulat"))
    word = text.ReadWord();
  if (EqualsNoCase(word, "2d"))
    return kPlane;
  if (EqualsNoCase(word, "3d"))
    return kSpace;
  Fatal("Type of problem unknown. Only 2d and 3d\n");
}

void ReadMesh(TextScan& text, Problem& problem)
{
  Meshes& meshes = problem.meshes;
  if (static_cast<int>(meshes.size()) == Problem::kMaxMeshes)
    Fatal("error: maximum number of meshes is: ", Problem::kMaxMeshes, "\n");
  constexpr int kChunk = 100;
  constexpr ElemType kUnknown{};
  if (meshes.empty())
    meshes.push_back(std::make_unique<Mesh>(kChunk, kChunk, 0, kUnknown, 0));
  else
    meshes.push_back(std::make_unique<Mesh>(&problem.GiveNodes(), kChunk, 0, kUnknown, 0));
  meshes.back()->ShareNumbering(*meshes.front());
  meshes.back()->ReadFromAscii(text, &problem.units);
  problem.initialNumNodes = problem.numNodes = problem.GiveNodes().Last();
  if (meshes.back()->GiveElemType() == Tetrahedra)
    problem.components = kSolidComponents;
}

struct Keyword
{
  const char* name;
  void (*readBlock)(TextScan&, Problem&) = nullptr;  ///< the whole word must match
  /// Reads a keyword with a value, which may be glued to the word.
  void (*readValue)(TextScan&, const std::string&, Problem&) = nullptr;
  void (*set)(Problem&) = nullptr;  ///< for a keyword without a value
  ReadTopic topic = ReadTopic::Other;
};

constexpr Keyword kKeywords[] = {
    {.name = "mesh", .readBlock = ReadMesh, .topic = ReadTopic::Mesh},
    {.name = "units_mesh", .readValue = ReadUnitsMesh},
    {.name = "units_mat_and_load", .readValue = ReadUnitsMatAndLoad},
    {.name = "units_res", .readValue = ReadUnitsRes},
    {.name = "ConvertTo6Nodes", .set = [](Problem& p) { p.convertTo6Nodes = true; }},
    {.name = "MainStresses", .set = [](Problem& p) { p.stressOutput = StressOutput::Main; }},
    {.name = "MainAndLocalStresses",
     .set = [](Problem& p) { p.stressOutput = StressOutput::MainAndLocal; }},
    {.name = "NumOfDivisions", .readValue = ReadNumOfDivisions},
    {.name = "DoSmoothing", .readValue = ReadDoSmoothing},
    {.name = "CoplanarityAngle", .readValue = ReadCoplanarityAngle},
    {.name = "Solver", .readValue = ReadSolver, .topic = ReadTopic::Solver},
    {.name = "GravityDirection", .readValue = ReadGravityDirection, .topic = ReadTopic::Gravity},
    {.name = "units_names", .readBlock = ReadUnitsNames, .topic = ReadTopic::UnitSystems},
    {.name = "materials", .readBlock = ReadMaterials},
    {.name = "constraints", .readBlock = ReadConstraints, .topic = ReadTopic::Supports},
    {.name = "nodal_point_loads", .readBlock = ReadNodalLoads},
    {.name = "rotules", .readBlock = ReadNodeHinges},
    {.name = "elem_rotules", .readBlock = ReadElementHinges},
};

bool ReadKeyword(TextScan& text, std::string_view word, Problem& problem)
{
  for (const Keyword& keyword : kKeywords) {
    const std::string_view name = keyword.name;
    if (keyword.readBlock ? !EqualsNoCase(word, name) : !HasPrefix(word, name))
      continue;
    NoteTopic(keyword.topic);
    NoteGlued(word, name, keyword.set == nullptr);
    if (keyword.readBlock)
      keyword.readBlock(text, problem);
    else if (keyword.readValue)
      keyword.readValue(text, ReadValue(text, word.substr(name.size())), problem);
    else
      keyword.set(problem);
    return true;
  }
  return false;
}

void ReadWord(TextScan& text, Problem& problem)
{
  const std::string_view place = text.ReadWord();
  if (place.empty())
    return;
  if (place[0] == '#')
    return text.SkipLine();
  const std::string word(place);
  Note(ReadEvent::Keyword, place);
  if (!ReadKeyword(text, word, problem) && !ReadElemLoad(text, word, problem)) {
    Note(ReadEvent::UnknownKeyword, place);
    Fatal("Unknown key name=", word, "\n");
  }
}

[[noreturn]] void RefuseRepetition(int element)
{
  Fatal("error: All elements must have different number. Check elm num: ", element, "\n");
}

void ComposeMaterials(const Meshes& meshes, const VoidPlex& materials)
{
  for (const auto& mesh : meshes) {
    if (!mesh->HasOwnMaterials())
      continue;  // saves a pass over all elements
    for (Elem& elem : Each<Elem>(*mesh->GiveElemPlex()))
      elem.ComposeYourMaterial(&materials);
  }
}

// In space a node with two coordinates gets z = 0. In a plane frame z must be 0.
void SetNodeDimensions(const Meshes& meshes, bool space)
{
  const auto fits = [space](const auto& mesh) { return mesh->GiveNdime() == (space ? 3 : 2); };
  if (std::all_of(meshes.begin(), meshes.end(), fits))
    return;  // saves a pass over all nodes
  for (auto [number, node] : EachNumbered<Node>(*meshes.front()->GiveNodePlex())) {
    if (node.Size() < 3) {
      if (space)
        node.resize(3, 0.0);
    } else if (!space && node(3) != 0.0) {
      AttemptOn(ReadItem::Node, number, [number = number] { RefuseHeight(number); });
    }
  }
}

void FinishReading(Problem& problem)
{
  if (problem.meshes.empty())
    Fatal("error: it is necessary at least one mesh\n");
  if (const int element = problem.CheckElementsNumbers())
    Attempt(nullptr, [&] { RefuseRepetition(element); });
  bool solids = false;
  bool others = false;
  for (const auto& mesh : problem.meshes)
    (mesh->GiveElemType() == Tetrahedra ? solids : others) = true;
  if (solids && others)
    Fatal("error: Element tetrahedra cannot be mixed with any other element type");
  if (solids) {
    problem.smoothing.on = true;
    problem.components = kSolidComponents;
  }
  ComposeMaterials(problem.meshes, problem.materials);
  SetNodeDimensions(problem.meshes, problem.problemType == kSpace || solids);
}

}  // namespace

void ReadProblem(std::ifstream& in, Problem& problem)
{
  const Content content = ReadWholeStream(in);
  TextScan text(std::string_view(content.block.get(), content.size));
  ReadProblem(text, problem);
}

void ReadProblem(TextScan& text, Problem& problem)
{
  if (!Attempt(&text, [&] { problem.problemType = ReadHeader(text); }))
    return;
  problem.components = ComponentsOf(problem.problemType);
  while (!text.AtEnd()) {
    const bool read = Attempt(&text, [&] { ReadWord(text, problem); });
    if (!read && !problem.meshes.empty() && problem.meshes.back()->GiveFvType() == 0)
      return;  // the lists of a mesh whose head is unreadable have no meaning
  }
  Attempt(nullptr, [&] { FinishReading(problem); });
}

}  // namespace morlen
