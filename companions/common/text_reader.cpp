// The text results: sections of a title line and lines of values.

#include <algorithm>

#include "common/result_lines.h"
#include "common/result_reader.h"

namespace morlen::results {
namespace {

class TextReader
{
public:
  TextReader(const model::Model& forModel, const Positions& known,
             const std::filesystem::path& file, Results& into)
      : model(forModel), positions(known), lines(file), results(into)
  {
  }

  TextDisplacements Read();

private:
  using Values = std::array<double, 6>;

  void ReadNodes(std::vector<Vec3>& first, std::vector<Vec3>* second);
  void ReadBeam(NumberLine title);
  Values ReadComponents(NumberLine& line) const;

  const model::Model& model;
  const Positions& positions;
  ResultLines lines;
  Results& results;
  std::size_t displacementLines = 0;
  std::size_t beams = 0;
};

TextDisplacements TextReader::Read()
{
  constexpr std::string_view kElement = "Element ";
  const std::size_t nodes = model.nodes.size();
  TextDisplacements read{std::vector<Vec3>(nodes), std::vector<Vec3>(nodes)};
  std::vector<Vec3> rotations(nodes);
  while (lines.Next()) {
    const std::string_view line = lines.Line();
    if (line.starts_with("NODAL DISPLACEMENTS"))
      ReadNodes(read.displacements, &rotations);
    else if (line.starts_with(kElement))
      ReadBeam(NumberLine(line.substr(kElement.size())));
    else if (line.starts_with("REACTIONS"))
      ReadNodes(read.forces, nullptr);
    else if (!line.empty() && !line.starts_with("ELEMENT STRENGTH"))
      lines.Fail("these are no text results of this model");
  }
  if (displacementLines != nodes)
    lines.Fail("displacements of ", displacementLines, " nodes, while the model has ", nodes);
  if (beams != results.beamEnds.size())
    lines.Fail("end forces of ", beams, " beams, while the model has ", results.beamEnds.size());
  for (std::size_t i = 0; i < nodes; ++i)
    results.nodes[i].rotation = rotations[i];
  results.rotations = !model.solids;
  return read;
}

// Reads lines of a node's number and its components. `second` gets the rotations; it is given for
// the section that lists all nodes.
void TextReader::ReadNodes(std::vector<Vec3>& first, std::vector<Vec3>* second)
{
  while (IsValueLine(lines.Following())) {
    lines.Next();
    NumberLine line(lines.Line());
    int number = 0;
    if (!line.Read(number) || !positions.nodes.contains(number))
      lines.Fail("the model has no such node");
    const Values values = ReadComponents(line);
    const int node = positions.nodes.at(number);
    std::copy_n(values.begin(), 3, first[node].begin());
    if (second) {
      std::copy_n(values.begin() + 3, 3, (*second)[node].begin());
      ++displacementLines;
    }
  }
}

// The components as the six of a node in space.
TextReader::Values TextReader::ReadComponents(NumberLine& line) const
{
  Values read{};
  for (int k = 0; k < model.components; ++k) {
    if (!line.Read(read[k]))
      lines.Fail("a line of ", model.components, " values is expected here");
  }
  if (!line.AtEnd())
    lines.Fail("a line of ", model.components, " values is expected here");
  if (model.plane && !model.solids)
    std::swap(read[2], read[5]);
  return read;
}

void TextReader::ReadBeam(NumberLine title)
{
  int number = 0;
  if (!title.Read(number) || !positions.elements.contains(number))
    lines.Fail("the model has no such element");
  const model::Element& element = model.elements[positions.elements.at(number)];
  const auto nodeNumber = [&](int i) { return model.nodes[element.nodes[i]].number; };
  const std::string nodes =
      "nodes: " + std::to_string(nodeNumber(0)) + " " + std::to_string(nodeNumber(1));
  if (element.kind != model::Kind::Beam || !lines.Line().ends_with(nodes))
    lines.Fail("element ", number, " has other nodes in the model");
  BeamEnds& ends = results.beamEnds[element.firstPoint / element.points];
  for (Values& end : ends) {
    lines.Next();
    NumberLine line(lines.Line());
    end = ReadComponents(line);
  }
  ++beams;
}

}  // namespace

TextDisplacements ReadTextResults(const model::Model& model, const Positions& positions,
                                  const std::filesystem::path& file, Results& results)
{
  results.beamEnds.resize(model.beamPoints / (model.beamDivisions + 1));
  return TextReader(model, positions, file, results).Read();
}

}  // namespace morlen::results
