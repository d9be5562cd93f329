// Results for the post-processor: blocks of a header line, lines with the names of the
// components, and lines of values.

#include <algorithm>
#include <map>
#include <span>
#include <string>

#include "common/result_lines.h"
#include "common/result_reader.h"

namespace morlen::results {
namespace {

constexpr std::string_view kFixedFields = "4 1.0 Estatic";

/// A block by its name. Each of its lines has `width` values (0: one to three); `count` of them
/// from position `first` go to `place`, and none without a place. Blocks of other names are
/// refused.
template <class Point>
struct Block
{
  std::string_view name;
  double* (*place)(Point& point);
  int width;
  int first;
  int count;
  bool spaceOnly = false;
};

constexpr Block<Node> kNodeBlocks[] = {
    {"Displacements", [](Node& n) { return n.displacement.data(); }, 3, 0, 3},
    {"Strengths", [](Node& n) { return n.stress.data(); }, 6, 0, 6},
    {"Von Misses", [](Node& n) { return &n.vonMises; }, 1, 0, 1},
    {"Reactions", [](Node& n) { return n.force.data(); }, 0, 0, 3},
    {"M Reactions", [](Node& n) { return n.moment.data(); }, 0, 0, 3},
};

template <int component>
double* Force(BeamPoint& point)
{
  return &point.forces[component];
}

constexpr Block<BeamPoint> kBeamBlocks[] = {
    {"BDisplacements", [](BeamPoint& p) { return p.displacement.data(); }, 0, 0, 3},
    {"X'_Shear", Force<0>, 4, 3, 1},
    {"Y'_Shear", Force<1>, 4, 3, 1},
    {"Z'_Shear", Force<2>, 4, 3, 1, true},
    {"X'_Momentus", Force<3>, 4, 3, 1, true},
    {"Y'_Momentus", Force<4>, 4, 3, 1, true},
    {"Z'_Momentus", Force<5>, 4, 3, 1},
    {"Local Axes Beam", nullptr, 3, 0, 3},
};

constexpr Block<ShellPoint> kShellBlocks[] = {
    {"Axial Force", [](ShellPoint& p) { return &p.local[0]; }, 3, 0, 3},
    {"Momentus", [](ShellPoint& p) { return &p.local[3]; }, 3, 0, 3},
    {"Shear", [](ShellPoint& p) { return &p.local[6]; }, 3, 0, 2},
    {"Main Ax. Force", [](ShellPoint& p) { return &p.main[0]; }, 3, 0, 2},
    {"Main Momentus", [](ShellPoint& p) { return &p.main[2]; }, 3, 0, 2},
    {"Shear in Main", [](ShellPoint& p) { return &p.main[4]; }, 3, 0, 2},
    {"Local Axes", nullptr, 3, 0, 3},
    {"L Axes Axial", [](ShellPoint& p) { return &p.mainAngles[0]; }, 3, 0, 3},
    {"L Axes Momentus", [](ShellPoint& p) { return &p.mainAngles[3]; }, 3, 0, 3},
};

class PostReader
{
public:
  PostReader(const model::Model& forModel, const Positions& known,
             const std::filesystem::path& file, Results& into)
      : model(forModel), positions(known), lines(file), results(into)
  {
  }

  void Read();
  bool Has(std::string_view name) const { return seen.contains(name); }

private:
  void ReadPointSet();
  void ReadBlock();
  void SkipComponentNames(int kind, bool named);
  template <class Point>
  bool ReadBlockOf(std::span<const Block<Point>> blocks, std::string_view name,
                   std::vector<Point>& points);
  int ReadOwner(const Block<Node>& block, NumberLine& line, int& first) const;
  template <class Point>
  int ReadOwner(const Block<Point>& block, NumberLine& line, int& first) const;
  template <class Point>
  void ReadValues(const Block<Point>& block, NumberLine& line, Point& point) const;
  void TurnPlaneMoments();
  void CheckCompleteness() const;
  void Require(std::string_view name, int count) const;

  const model::Model& model;
  const Positions& positions;
  ResultLines lines;
  Results& results;
  std::map<std::string_view, std::vector<bool>> seen;  ///< by block: the points with values
};

void PostReader::Read()
{
  while (lines.Next()) {
    if (lines.Line().starts_with("GaussPoints"))
      ReadPointSet();
    else if (lines.Line().find(kFixedFields) != std::string_view::npos)
      ReadBlock();
    else if (!lines.Line().starts_with("gausspoints"))
      lines.Fail("a line that belongs to no result");
  }
  CheckCompleteness();
  if (model.plane)
    TurnPlaneMoments();
}

void PostReader::ReadPointSet()
{
  while (lines.Next()) {
    if (lines.Line().starts_with("End gausspoints"))
      return;
  }
  lines.Fail("the file ends in the middle of a point set");
}

void PostReader::ReadBlock()
{
  const std::size_t fields = lines.Line().find(kFixedFields);
  std::string_view name = lines.Line().substr(0, fields);
  name.remove_suffix(name.size() - (name.find_last_not_of(' ') + 1));
  NumberLine rest(lines.Line().substr(fields + kFixedFields.size()));
  int kind = 0;
  int location = 0;
  int named = 0;
  if (!rest.Read(kind) || !rest.Read(location) || !rest.Read(named))
    lines.Fail("the header of a result is damaged");
  SkipComponentNames(kind, named == 1);
  if (!ReadBlockOf<Node>(kNodeBlocks, name, results.nodes) &&
      !ReadBlockOf<BeamPoint>(kBeamBlocks, name, results.beamPoints) &&
      !ReadBlockOf<ShellPoint>(kShellBlocks, name, results.shellPoints))
    lines.Fail("unknown result '", name, "'");
}

void PostReader::SkipComponentNames(int kind, bool named)
{
  const int names = !named ? 0 : kind == 1 ? 1 : kind == 2 ? 3 : 6;
  for (int i = 0; i < names; ++i)
    lines.Next();
}

template <class Point>
bool PostReader::ReadBlockOf(std::span<const Block<Point>> blocks, std::string_view name,
                             std::vector<Point>& points)
{
  const auto block = std::find_if(blocks.begin(), blocks.end(),
                                  [&](const Block<Point>& b) { return b.name == name; });
  if (block == blocks.end())
    return false;
  std::vector<bool>& filled = seen[block->name];
  filled.resize(points.size());
  while (IsValueLine(lines.Following())) {
    lines.Next();
    NumberLine line(lines.Line());
    int first = 0;
    const int count = ReadOwner(*block, line, first);
    for (int i = 0; i < count; ++i) {
      if (i > 0) {
        if (!lines.Next() || !lines.Line().starts_with(' '))
          lines.Fail("the element has fewer points than in the model");
        line = NumberLine(lines.Line());
      }
      ReadValues(*block, line, points[first + i]);
      filled[first + i] = true;
    }
    if (lines.Following().starts_with(' '))
      lines.Fail("the element has more points than in the model");
  }
  return true;
}

// Reads the number of the node or element that a line begins with. Returns the count of its points
// and sets `first` to the position of the first.
int PostReader::ReadOwner(const Block<Node>&, NumberLine& line, int& first) const
{
  int number = 0;
  if (!line.Read(number) || !positions.nodes.contains(number))
    lines.Fail("the model has no such node");
  first = positions.nodes.at(number);
  return 1;
}

template <class Point>
int PostReader::ReadOwner(const Block<Point>&, NumberLine& line, int& first) const
{
  constexpr model::Kind kKind =
      std::is_same_v<Point, BeamPoint> ? model::Kind::Beam : model::Kind::Shell;
  int number = 0;
  if (!line.Read(number) || !positions.elements.contains(number))
    lines.Fail("the model has no such element");
  const model::Element& element = model.elements[positions.elements.at(number)];
  if (element.kind != kKind)
    lines.Fail("element ", number, " is no ", model::KindName(kKind), " in the model");
  first = element.firstPoint;
  return element.points;
}

template <class Point>
void PostReader::ReadValues(const Block<Point>& block, NumberLine& line, Point& point) const
{
  constexpr int kMost = 6;
  double values[kMost] = {};
  int count = 0;
  while (count < kMost && line.Read(values[count]))
    ++count;
  const bool fits = block.width > 0 ? count == block.width : count >= 1 && count <= 3;
  if (!line.AtEnd() || !fits)
    lines.Fail("the values do not fit the result");
  if (block.place)
    std::copy_n(values + block.first, block.count, block.place(point));
}

// The file has the third component of a plane reaction as the first moment: it is the moment about
// z, or with solids the third force.
void PostReader::TurnPlaneMoments()
{
  for (Node& node : results.nodes) {
    (model.solids ? node.force : node.moment)[2] = node.moment[0];
    node.moment[0] = 0.0;
  }
}

void PostReader::CheckCompleteness() const
{
  for (const auto& [name, filled] : seen) {
    if (std::find(filled.begin(), filled.end(), false) != filled.end())
      lines.Fail("the model has nodes or elements without '", name, "'");
  }
  Require("Reactions", static_cast<int>(model.nodes.size()));
  for (const Block<BeamPoint>& block : kBeamBlocks) {
    if (!block.spaceOnly || !model.plane)
      Require(block.name, model.beamPoints);
  }
  if (!Has("Main Ax. Force"))
    Require("Axial Force", model.shellPoints);
  if (model.shellPoints > 0 || model.solids)
    Require("Displacements", static_cast<int>(model.nodes.size()));
}

// Refuses a file without a result that the model has values of.
void PostReader::Require(std::string_view name, int count) const
{
  if (count > 0 && !Has(name))
    lines.Fail("the result '", name, "' is missing");
}

}  // namespace

bool ReadPostResults(const model::Model& model, const Positions& positions,
                     const std::filesystem::path& file, Results& results)
{
  results.nodes.resize(model.nodes.size());
  results.beamPoints.resize(model.beamPoints);
  results.shellPoints.resize(model.shellPoints);
  PostReader reader(model, positions, file, results);
  reader.Read();
  results.shellLocal = reader.Has("Axial Force");
  results.shellMain = reader.Has("Main Ax. Force");
  results.stresses = reader.Has("Strengths");
  return reader.Has("Displacements");
}

}  // namespace morlen::results
