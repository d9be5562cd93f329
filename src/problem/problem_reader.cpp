// The top level of the problem file: header, keywords, and the checks at the end.

#include "problem/problem_reader.h"

#include <algorithm>
#include <span>
#include <string>

#include "base/errorwriter.h"
#include "base/large_memory.h"
#include "base/memory_limit.h"
#include "base/read_observer.h"
#include "base/record_hint.h"
#include "base/text_parts.h"
#include "base/textscan.h"
#include "model/material.h"
#include "model/mesh.h"
#include "model/node.h"
#include "numeric/plex_range.h"
#include "problem/elem_load_reader.h"
#include "problem/foreign_file.h"
#include "problem/hinges.h"
#include "problem/keyword_hint.h"
#include "problem/nodal_reader.h"
#include "problem/problem.h"
#include "problem/settings_reader.h"
#include "problem/switch_reader.h"
#include "problem/top_level_word.h"
#include "problem/units_reader.h"

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

// A read error (a faulty disk) counts as the end of the file.
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

// Notes a word that continues after the keyword `name` with anything but '=', ':' or the number
// that is its value.
void NoteGlued(std::string_view word, std::string_view name)
{
  constexpr std::string_view kEnds = "=:+-.0123456789";
  const std::string_view glued = word.substr(name.size());
  if (!glued.empty() && kEnds.find(glued[0]) == kEnds.npos)
    Note(ReadEvent::Prefix, word, name);
}

bool IsProblemType(std::string_view word)
{
  return EqualsNoCase(word, "2d") || EqualsNoCase(word, "3d") || EqualsNoCase(word, "reticulat");
}

// The word in the place of the problem's type. A word in a comment counts only when no type
// follows the comment.
std::string_view ReadTypeWord(TextScan& text)
{
  TextScan ahead = text;
  std::string_view word = ReadValue(ahead);
  const bool comment = word.starts_with('#');
  while (word.starts_with('#')) {
    ahead.SkipLine();
    word = ReadValue(ahead);
  }
  if (!comment || IsProblemType(word)) {
    text = ahead;
    return word;
  }
  const std::string_view glued = ReadValue(text).substr(1);
  const std::string_view inComment = glued.empty() ? text.ReadWord() : glued;
  Note(ReadEvent::WordInComment, inComment, "type");
  return inComment;
}

// Explains why the text has no header.
void ExplainHeader(const TextScan& text)
{
  const std::string foreign = JudgeForeignFile(text.WholeText());
  if (!foreign.empty())
    Explain(foreign);
  else
    Explain("a problem file begins with 'problem type: 2d' or 'problem type: 3d'");
}

// The word of the header that contains `word`.
std::string_view FindHeaderWord(TextScan& text, const char* word, IsValue isValue)
{
  const std::string_view found = SearchWord(text, word, isValue);
  if (!found.empty())
    return found;
  ExplainHeader(text);
  FailSearch(text, word);
}

// Explains the word `type` in the place of the type, which follows the word `found`.
void ExplainType(const TextScan& text, std::string_view found, std::string_view type)
{
  const std::string line = LinePrefix(text, found.data());
  if (!JudgeForeignFile(text.WholeText()).empty())
    ExplainHeader(text);
  else if (HasPrefix(found, "type"))
    Explain(line, "the type is '", type, "'; write 'problem type: 2d' or 'problem type: 3d'");
  else
    Explain(line, "'", found, "' is taken for the word 'type' of the header, which is missing: ",
            "'problem type: 2d' or 'problem type: 3d'");
}

PROBLEMTYPE ReadHeader(TextScan& text)
{
  text.GoTo(WithoutByteOrderMark(text.TextAhead()).data());
  FindHeaderWord(text, "problem", [](std::string_view glued) { return HasPrefix(glued, "type"); });
  const std::string_view found = FindHeaderWord(text, "type", IsProblemType);
  std::string_view word = ReadTypeWord(text);
  if (EqualsNoCase(word, "reticulat"))
    word = ReadTypeWord(text);
  if (EqualsNoCase(word, "2d"))
    return kPlane;
  if (EqualsNoCase(word, "3d"))
    return kSpace;
  ExplainType(text, found, word);
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

// Off restores the default only when this output is on.
template <StressOutput output>
void SetStressOutput(Problem& problem, bool on)
{
  if (on)
    problem.stressOutput = output;
  else if (problem.stressOutput == output)
    problem.stressOutput = StressOutput::Local;
}

struct Keyword
{
  const char* name;
  void (*readBlock)(TextScan&, Problem&) = nullptr;  ///< the whole word must match
  /// Reads a keyword with a value, which may be glued to the word.
  void (*readValue)(TextScan&, const std::string&, Problem&) = nullptr;
  void (*set)(Problem&, bool on) = nullptr;  ///< for a switch
  ReadTopic topic = ReadTopic::Other;
};

constexpr Keyword kKeywords[] = {
    {.name = "mesh", .readBlock = ReadMesh, .topic = ReadTopic::Mesh},
    {.name = "units_mesh", .readValue = ReadUnitsMesh, .topic = ReadTopic::UnitsOfMesh},
    {.name = "units_mat_and_load",
     .readValue = ReadUnitsMatAndLoad,
     .topic = ReadTopic::UnitsOfMaterials},
    {.name = "units_res", .readValue = ReadUnitsRes, .topic = ReadTopic::UnitsOfResults},
    {.name = "ConvertTo6Nodes", .set = [](Problem& p, bool on) { p.convertTo6Nodes = on; }},
    {.name = "MainStresses", .set = SetStressOutput<StressOutput::Main>},
    {.name = "MainAndLocalStresses", .set = SetStressOutput<StressOutput::MainAndLocal>},
    {.name = "NumOfDivisions", .readValue = ReadNumOfDivisions},
    {.name = "DoSmoothing", .readValue = ReadDoSmoothing},
    {.name = "CoplanarityAngle", .readValue = ReadCoplanarityAngle},
    {.name = "Solver", .readValue = ReadSolver, .topic = ReadTopic::Solver},
    {.name = "ShellFormulation", .readValue = ReadShellFormulation},
    {.name = "GravityDirection", .readValue = ReadGravityDirection, .topic = ReadTopic::Gravity},
    {.name = "units_names", .readBlock = ReadUnitsNames, .topic = ReadTopic::UnitSystems},
    {.name = "materials", .readBlock = ReadMaterials},
    {.name = "constraints", .readBlock = ReadConstraints, .topic = ReadTopic::Supports},
    {.name = "nodal_point_loads", .readBlock = ReadNodalLoads},
    {.name = "rotules", .readBlock = ReadNodeHinges},
    {.name = "elem_rotules", .readBlock = ReadElementHinges},
};

void Read(TextScan& text, std::string_view word, const Keyword& keyword, Problem& problem)
{
  const std::string_view name = keyword.name;
  if (keyword.set)
    return keyword.set(problem, ReadSwitch(text, word, name));
  NoteGlued(word, name);
  if (keyword.readBlock)
    return keyword.readBlock(text, problem);
  const std::string value(ReadValue(text, word.substr(name.size())));
  keyword.readValue(text, value, problem);
}

bool ReadKeyword(TextScan& text, std::string_view word, Problem& problem)
{
  const auto* keyword =
      std::find_if(std::begin(kKeywords), std::end(kKeywords), [word](const Keyword& candidate) {
        return candidate.readBlock ? EqualsNoCase(word, candidate.name)
                                   : HasPrefix(word, candidate.name);
      });
  if (keyword == std::end(kKeywords))
    return false;
  NoteTopic(keyword->topic);
  Read(text, word, *keyword, problem);
  return true;
}

// The switch that the word before `word` on its line is; null without one.
const Keyword* SwitchBefore(const TextScan& text, std::string_view word)
{
  const std::string_view whole = text.WholeText();
  const std::string_view passed(whole.data(), word.data());
  std::string_view line = passed.substr(passed.find_last_of('\n') + 1);
  std::string_view last;
  for (std::string_view next = ConsumeWord(line); !next.empty(); next = ConsumeWord(line))
    last = next;
  const auto* found = std::find_if(
      std::begin(kKeywords), std::end(kKeywords),
      [last](const Keyword& keyword) { return keyword.set && HasPrefix(last, keyword.name); });
  return found == std::end(kKeywords) ? nullptr : found;
}

[[noreturn]] void RefuseKey(TextScan& text, std::string_view word, const TextScan::Block& before)
{
  const Keyword* const onOff = SwitchBefore(text, word);
  if (onOff && !BeginsForeignComment(word))
    Explain(LinePrefix(text, word.data()), "'", onOff->name,
            "' takes 0, no, false or off, or 1, yes, true or on");
  else
    ExplainUnknownKey(text, word, before, Keywords());
  Note(ReadEvent::UnknownKeyword, word);
  Fatal("Unknown key name=", word, "\n");
}

void ReadNext(TextScan& text, Problem& problem)
{
  const auto [word, before] = ReadTopLevelWord(text);
  if (word.empty())
    return;
  if (!ReadKeyword(text, word, problem) && !ReadElemLoad(text, word, problem))
    RefuseKey(text, word, before);
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
  if (problem.meshes.empty()) {
    Explain("the file has no block 'mesh'");
    Fatal("error: it is necessary at least one mesh\n");
  }
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
  RequirePositiveFactors(problem);
}

}  // namespace

std::vector<std::string_view> Keywords()
{
  const std::span<const std::string_view> blocks = BlockKeywords();
  std::vector<std::string_view> keywords(blocks.begin(), blocks.end());
  for (const Keyword& keyword : kKeywords)
    keywords.push_back(keyword.name);
  return keywords;
}

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
    const bool read = Attempt(&text, [&] { ReadNext(text, problem); });
    if (!read && !problem.meshes.empty() && problem.meshes.back()->GiveFvType() == 0)
      return;  // the lists of a mesh whose head is unreadable have no meaning
  }
  Attempt(nullptr, [&] { FinishReading(problem); });
}

}  // namespace morlen
