// The top level of the problem file: its header, its keywords, and the checks at its end.

#include <algorithm>
#include <cmath>
#include <string>

#include "base/errorwriter.h"
#include "base/large_memory.h"
#include "base/memory_limit.h"
#include "base/read_observer.h"
#include "model/material.h"
#include "model/mesh.h"
#include "model/node.h"
#include "numeric/plex_range.h"
#include "problem/project.h"

namespace morlen {

namespace {

struct Content
{
  LargeBlock block;
  std::size_t size = 0;
};

// Bytes from the place reached to the end; 0 where that is not known.
std::size_t BytesAhead(std::streambuf& in)
{
  const std::streamoff here = in.pubseekoff(0, std::ios::cur, std::ios::in);
  const std::streamoff end = in.pubseekoff(0, std::ios::end, std::ios::in);
  if (here < 0 || end < here)
    return 0;
  in.pubseekpos(here, std::ios::in);
  return static_cast<std::size_t>(end - here);
}

// What cannot be read (a folder, a faulty disk) counts as the end.
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

// What is left of a word behind its keyword, or else the next word with something in it.
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

// A keyword ends at a blank, '=' or ':', or at the number that is its value.
void NoteGlued(std::string_view word, std::string_view name, bool takesValue)
{
  const std::string_view glued = word.substr(name.size());
  constexpr std::string_view kEnds = "=:+-.0123456789";
  if (!glued.empty() && kEnds.substr(0, takesValue ? kEnds.size() : 2).find(glued[0]) == kEnds.npos)
    Note(ReadEvent::Prefix, word, name);
}

}  // namespace

void Project::ReadFromAscii(std::ifstream& in)
{
  const Content content = ReadWholeStream(in);
  TextScan text(std::string_view(content.block.get(), content.size));
  ReadFromAscii(text);
}

void Project::ReadFromAscii(TextScan& text)
{
  if (!Attempt(&text, [&] { ReadHeader(text); }))
    return;
  while (!text.AtEnd()) {
    const bool read = Attempt(&text, [&] { ReadWord(text); });
    if (!read && !meshes.empty() && meshes.back()->GiveFvType() == 0)
      return;  // without the head of a mesh its lists have no meaning
  }
  Attempt(nullptr, [&] { FinishReading(); });
}

void Project::ReadWord(TextScan& text)
{
  const std::string_view place = text.ReadWord();
  if (place.empty())
    return;
  if (place[0] == '#')
    return text.SkipLine();
  const std::string word(place);
  Note(ReadEvent::Keyword, place);
  if (!ReadKeyword(text, word) && ReadElemLoad(text, word) == -1)
    Fatal("Unknown key name=", word, "\n");
}

void Project::ReadHeader(TextScan& text)
{
  FindThisWord(text, "problem");
  FindThisWord(text, "type");
  text.TakeOutSpaces();
  std::string_view word = text.ReadWord();
  if (EqualsNoCase(word, "reticulat"))
    word = text.ReadWord();
  if (EqualsNoCase(word, "2d"))
    problemType = kPlane;
  else if (EqualsNoCase(word, "3d"))
    problemType = kSpace;
  else
    Fatal("Type of problem unknown. Only 2d and 3d\n");
  freeDegrees = problemType == kPlane ? 3 : 6;
  translations = problemType == kPlane ? 2 : 3;
}

bool Project::ReadKeyword(TextScan& text, std::string_view word)
{
  struct Keyword
  {
    const char* name;
    void (Project::*readBlock)(TextScan&) = nullptr;  // the whole word must match
    // A value may be glued to it.
    void (Project::*readValue)(TextScan&, const std::string&) = nullptr;
    void (*set)(Project&) = nullptr;  // no value
  };
  static constexpr Keyword kKeywords[] = {
      {.name = "mesh", .readBlock = &Project::ReadMesh},
      {.name = "units_mesh", .readValue = &Project::ReadUnitsMesh},
      {.name = "units_mat_and_load", .readValue = &Project::ReadUnitsMatAndLoad},
      {.name = "units_res", .readValue = &Project::ReadUnitsRes},
      {.name = "ConvertTo6Nodes", .set = [](Project& p) { p.convertTo6Nodes = true; }},
      {.name = "MainStresses", .set = [](Project& p) { p.stressOutput = StressOutput::Main; }},
      {.name = "MainAndLocalStresses",
       .set = [](Project& p) { p.stressOutput = StressOutput::MainAndLocal; }},
      {.name = "NumOfDivisions", .readValue = &Project::ReadNumOfDivisions},
      {.name = "DoSmoothing", .readValue = &Project::ReadDoSmoothing},
      {.name = "CoplanarityAngle", .readValue = &Project::ReadCoplanarityAngle},
      {.name = "Solver", .readValue = &Project::ReadSolver},
      {.name = "GravityDirection", .readValue = &Project::ReadGravityDirection},
      {.name = "units_names", .readBlock = &Project::ReadFAUnitsNames},
      {.name = "materials", .readBlock = &Project::ReadFAMaterials},
      {.name = "constraints", .readBlock = &Project::ReadFAConstraints},
      {.name = "nodal_point_loads", .readBlock = &Project::ReadFALoads},
      {.name = "rotules", .readBlock = &Project::ReadFARotules},
      {.name = "elem_rotules", .readBlock = &Project::ReadFARotulesElems},
  };
  for (const Keyword& keyword : kKeywords) {
    const std::string_view name = keyword.name;
    if (keyword.readBlock ? !EqualsNoCase(word, name) : !HasPrefix(word, name))
      continue;
    NoteGlued(word, name, keyword.set == nullptr);
    if (keyword.readBlock)
      (this->*keyword.readBlock)(text);
    else if (keyword.readValue)
      (this->*keyword.readValue)(text, ReadValue(text, word.substr(name.size())));
    else
      keyword.set(*this);
    return true;
  }
  return false;
}

void Project::ReadMesh(TextScan& text)
{
  if (static_cast<int>(meshes.size()) == kMaxMeshes)
    Fatal("error: maximum number of meshes is: ", kMaxMeshes, "\n");
  constexpr int kChunk = 100;
  if (meshes.empty())
    meshes.push_back(std::make_unique<Mesh>(kChunk, kChunk, 0, morlen::ElemType(0), 0));
  else
    meshes.push_back(std::make_unique<Mesh>(&GiveNodes(), kChunk, 0, morlen::ElemType(0), 0));
  meshes.back()->TakeOldNumbersOf(*meshes.front());
  meshes.back()->ReadFromAscii(text, this);
  initialNumNodes = numNodes = GiveNodes().Last();
  if (meshes.back()->GiveElemType() == Tetrahedra)
    freeDegrees = translations = 3;
}

int Project::CheckElementsNumbers() const
{
  for (std::size_t later = 1; later < meshes.size(); ++later) {
    for (const auto [number, elem] : EachNumbered<Elem>(*meshes[later]->GiveElemPlex())) {
      for (std::size_t earlier = 0; earlier < later; ++earlier) {
        if (!meshes[earlier]->GiveElemPlex()->free(number))
          return number;
      }
    }
  }
  return 0;
}

void Project::FinishReading()
{
  if (meshes.empty())
    Fatal("error: it is necessary at least one mesh\n");
  Attempt(nullptr, [this] { RequireDifferentNumbers(); });
  bool solids = false;
  bool others = false;
  for (const auto& mesh : meshes)
    (mesh->GiveElemType() == Tetrahedra ? solids : others) = true;
  if (solids && others)
    Fatal("error: Element tetrahedra cannot be mixed with any other element type");
  if (solids) {
    smoothing.on = true;
    freeDegrees = translations = 3;
  }
  ComposeMaterials();
  SetNodeDimensions(solids);
}

void Project::ComposeMaterials()
{
  for (const auto& mesh : meshes) {
    if (!mesh->HasOwnMaterials())
      continue;  // saves a pass over all elements
    for (Elem& elem : Each<Elem>(*mesh->GiveElemPlex()))
      elem.ComposeYourMaterial(&materials);
  }
}

void Project::RequireDifferentNumbers() const
{
  if (const int number = CheckElementsNumbers())
    Fatal("error: All elements must have different number. Check elm num: ", number, "\n");
}

// Nodes given with two coordinates stand at z = 0 in space; a plane frame has no z.
void Project::SetNodeDimensions(bool solids)
{
  const bool space = problemType == kSpace || solids;
  const auto fits = [space](const auto& mesh) { return mesh->GiveNdime() == (space ? 3 : 2); };
  if (std::all_of(meshes.begin(), meshes.end(), fits))
    return;  // saves a pass over all nodes
  for (auto [number, node] : EachNumbered<Node>(GiveNodes())) {
    if (node.Size() < 3) {
      if (space)
        node.resize(3, 0.0);
    } else if (!space && node(3) != 0.0) {
      AttemptOn(ReadItem::Node, number, [number = number] { RefuseHeight(number); });
    }
  }
}

}  // namespace morlen
