#include "support/structure.h"

#include <algorithm>
#include <cmath>

#include "support/loaded_beams.h"

namespace morlen {

namespace {

std::string ElementRecords(const std::vector<std::vector<int>>& elements, int before, int material)
{
  std::string records;
  for (std::size_t i = 0; i < elements.size(); ++i) {
    records += std::to_string(before + static_cast<int>(i) + 1);
    for (const int node : elements[i])
      records += " " + std::to_string(node);
    records += " " + std::to_string(material) + "\n";
  }
  return records;
}

std::string HingeRecords(const Structure& structure)
{
  std::string records;
  for (const auto& [beam, code] : structure.hinges)
    records += std::to_string(beam) + (code < 10 ? " 0" : " ") + std::to_string(code) + "\n";
  return records;
}

std::string MaterialRecords(const Structure& s)
{
  const std::string number = std::to_string(s.sections.size() + 1);
  if (!s.tetrahedra.empty())
    return number + " E " + Digits(s.solid.E) + " nu " + Digits(s.solid.nu) + "\n";
  std::string records = SectionRecords(s);
  if (!s.triangles.empty())
    records += number + " E=" + Digits(s.shell.E) + " nu=" + Digits(s.shell.nu) +
               " G=" + Digits(s.shell.G) + " t=" + Digits(s.shell.t) + "\n";
  return records;
}

}  // namespace

std::string Structure::Text(const std::string& settings) const
{
  std::string text = std::string("problem type ") + (space ? "3d\n" : "2d\n") + settings + "\n";
  if (shell.refined)
    text += "ShellFormulation Refined\n";
  std::string coordinates = NodeRecords(*this);  // in the first mesh
  const auto addMesh = [&](const std::string& type, std::size_t nnode, const std::string& records) {
    text += std::string("mesh dimension = ") + (space ? "3" : "2") + " elemtype " + type +
            " nnode = " + std::to_string(nnode) + "\n" + Block("coordinates", coordinates) +
            Block("elements", records);
    coordinates.clear();
  };
  const int material = static_cast<int>(sections.size()) + 1;
  if (!beams.empty())
    addMesh("Linear", 2, BeamRecords(*this));
  if (!triangles.empty())
    addMesh("Triangle", triangles[0].size(),
            ElementRecords(triangles, static_cast<int>(beams.size()), material));
  if (!tetrahedra.empty())
    addMesh("Tetrahedra", tetrahedra[0].size(), ElementRecords(tetrahedra, 0, material));
  text += Block("materials", MaterialRecords(*this)) +
          Block("constraints", SupportRecords(*this, Components())) +
          Block("nodal_point_loads", LoadRecords(*this, Components()));
  return hinges.empty() ? text : text + Block("elem_rotules", HingeRecords(*this));
}

Structure& Structure::HoldNode(int node, const std::array<int, 6>& flags)
{
  supports.push_back({node, flags});
  return *this;
}

Structure& Structure::Hold(const Places& there, const std::array<int, 6>& flags)
{
  for (int i = 0; i < NodeCount(); ++i) {
    if (there(nodes[i]))
      HoldNode(i + 1, flags);
  }
  return *this;
}

Structure& Structure::Load(int node, const std::array<double, 6>& values)
{
  loads.push_back({node, values});
  return *this;
}

Structure& Structure::LoadAll(const std::array<double, 6>& values)
{
  for (int node = 1; node <= NodeCount(); ++node)
    Load(node, values);
  return *this;
}

Structure& Structure::Hinge(const Places& first, const Places& second, int code)
{
  for (std::size_t i = 0; i < beams.size(); ++i) {
    if (first(nodes[beams[i].first - 1]) && second(nodes[beams[i].second - 1]))
      hinges[static_cast<int>(i) + 1] = code;
  }
  return *this;
}

Structure& Structure::HingeAll()
{
  const Places anywhere = [](const Vector3&) { return true; };
  return Hinge(anywhere, anywhere);
}

Structure& Structure::AddBeams(const std::vector<int>& through, int section)
{
  for (std::size_t i = 1; i < through.size(); ++i)
    beams.push_back({through[i - 1], through[i], section});
  return *this;
}

Structure& Structure::Map(const std::function<Vector3(const Vector3&)>& place)
{
  for (Vector3& node : nodes)
    node = place(node);
  return *this;
}

int Structure::NodeAt(const Vector3& place) const
{
  const auto distance = [&](const Vector3& node) { return Dot(node - place, node - place); };
  const auto nearest = std::min_element(
      nodes.begin(), nodes.end(),
      [&](const Vector3& a, const Vector3& b) { return distance(a) < distance(b); });
  return static_cast<int>(nearest - nodes.begin()) + 1;
}

double Structure::MeanLength() const
{
  double sum = 0.0;
  int count = 0;
  const auto add = [&](int a, int b) {
    const Vector3 d = nodes[b - 1] - nodes[a - 1];
    sum += std::sqrt(Dot(d, d));
    ++count;
  };
  for (const Frame::Beam& beam : beams)
    add(beam.first, beam.second);
  for (const auto* elements : {&triangles, &tetrahedra}) {
    for (const std::vector<int>& element : *elements)
      add(element[0], element[1]);
  }
  return sum / count;
}

Vector3 Structure::Extent() const
{
  Vector3 low = nodes[0];
  Vector3 high = low;
  for (const Vector3& node : nodes) {
    for (int k = 0; k < 3; ++k) {
      low[k] = std::min(low[k], node[k]);
      high[k] = std::max(high[k], node[k]);
    }
  }
  return high - low;
}

Structure::Places At(int axis, double value)
{
  return [=](const Vector3& node) { return std::fabs(node[axis] - value) < 1e-9; };
}

Frame::Section Steel()
{
  return {.E = 2.1e8, .G = 8.1e7, .A = 78e-4, .Iy = 20e-6, .Iz = 57e-6, .J = 0.6e-6};
}

Structure SteelFrame(bool space)
{
  Structure frame;
  frame.space = space;
  frame.sections = {Steel()};
  return frame;
}

Structure Chain(int beams, bool space, const Vector3& direction)
{
  Structure frame = SteelFrame(space);
  for (int i = 0; i <= beams; ++i)
    frame.nodes.push_back(static_cast<double>(i) * direction);
  for (int i = 1; i <= beams; ++i)
    frame.beams.push_back({i, i + 1});
  return frame;
}

Structure Storeys(int columns, int storeys, const std::array<int, 6>& feet)
{
  Structure frame = SteelFrame(false);
  for (int j = 0; j <= storeys; ++j) {
    for (int i = 0; i < columns; ++i)
      frame.nodes.push_back({5.0 * i, 3.0 * j, 0});
  }
  const auto at = [&](int i, int j) { return 1 + i + j * columns; };
  for (int j = 0; j < storeys; ++j) {
    for (int i = 0; i < columns; ++i)
      frame.beams.push_back({at(i, j), at(i, j + 1)});
    for (int i = 0; i + 1 < columns; ++i)
      frame.beams.push_back({at(i, j + 1), at(i + 1, j + 1)});
  }
  for (int i = 0; i < columns; ++i)
    frame.HoldNode(at(i, 0), feet);
  return frame;
}

Structure Building(int baysX, int baysY, int storeys, const std::array<int, 6>& feet)
{
  Structure frame = SteelFrame(true);
  for (int k = 0; k <= storeys; ++k) {
    for (int j = 0; j <= baysY; ++j) {
      for (int i = 0; i <= baysX; ++i)
        frame.nodes.push_back({6.0 * i, 6.0 * j, 3.5 * k});
    }
  }
  const int row = baysX + 1;
  const int floor = row * (baysY + 1);
  for (int node = floor + 1; node <= frame.NodeCount(); ++node) {
    const int i = (node - 1) % row;
    const int j = (node - 1) % floor / row;
    frame.beams.push_back({node - floor, node});
    if (i < baysX)
      frame.beams.push_back({node, node + 1});
    if (j < baysY)
      frame.beams.push_back({node, node + row});
  }
  return frame.Hold(At(2, 0), feet);
}

Structure Tower(int storeys, const std::array<int, 6>& feet)
{
  Structure frame = SteelFrame(true);
  for (int j = 0; j <= storeys; ++j) {
    for (const Vector3& corner : {Vector3{0, 0, 0}, {5, 0, 0}, {5, 5, 0}, {0, 5, 0}})
      frame.nodes.push_back({corner[0], corner[1], 3.0 * j});
  }
  for (int j = 0; j < storeys; ++j) {
    for (int i = 0; i < 4; ++i) {
      const int above = 5 + 4 * j + i;
      frame.beams.push_back({above - 4, above});
      frame.beams.push_back({above, 5 + 4 * j + (i + 1) % 4});
    }
  }
  return frame.Hold(At(2, 0), feet);
}

Structure OnSkewRollers(double other, int beams)
{
  Structure frame = Chain(beams, false);
  frame.supports = {{1, kRollerInX, {}, Vector3{-0.4636476090008061, 0, 0}},
                    {beams + 1, kRollerInX, {}, Vector3{other, 0, 0}},
                    {beams / 2 + 1, {0, 0, 1}}};
  return frame;
}

Structure TrussGirder(int panels)
{
  Structure truss = SteelFrame(false);
  for (int i = 0; i <= panels; ++i) {
    truss.nodes.push_back({1.0 * i, 0, 0});
    truss.nodes.push_back({1.0 * i, 1, 0});
    const int below = 2 * i + 1;
    truss.AddBeams({below, below + 1});
    if (i > 0)
      truss.AddBeams({below, below - 2, below + 1, below - 1});
  }
  return truss.HingeAll();
}

Structure TrussMast(int panels)
{
  Structure truss = SteelFrame(true);
  for (int j = 0; j <= panels; ++j) {
    for (const Vector3& corner : {Vector3{0, 0, 0}, {1, 0, 0}, {1, 1, 0}, {0, 1, 0}})
      truss.nodes.push_back({corner[0], corner[1], 1.0 * j});
    const int first = 4 * j + 1;
    truss.AddBeams({first, first + 1, first + 2, first + 3, first, first + 2});
    for (int i = 0; i < 4 && j > 0; ++i)
      truss.AddBeams({first + i, first + i - 4, first + (i + 1) % 4});
  }
  return truss.HingeAll();
}

Structure TrussWall(int nx, int ny)
{
  Structure truss = SteelFrame(false);
  for (int j = 0; j <= ny; ++j) {
    for (int i = 0; i <= nx; ++i) {
      truss.nodes.push_back({1.0 * i, 1.0 * j, 0});
      const int node = truss.NodeCount();
      if (i > 0)
        truss.AddBeams({node - 1, node});
      if (j > 0)
        truss.AddBeams({node - nx - 1, node});
      if (i > 0 && j > 0)
        truss.AddBeams({node - nx - 2, node});
    }
  }
  return truss.HingeAll();
}

Structure ShellOf(const ShellModel& model, const Structure::Shell& shell)
{
  Structure structure;
  structure.shell = shell;
  std::map<std::array<long long, 3>, int> known;  // by place in nanometres
  std::vector<int> numbers;
  for (const Vector3& node : model.nodes) {
    const auto rounded = [](double x) { return std::llround(1e9 * x); };
    const auto [place, added] = known.try_emplace(
        {rounded(node[0]), rounded(node[1]), rounded(node[2])}, structure.NodeCount() + 1);
    if (added)
      structure.nodes.push_back(node);
    numbers.push_back(place->second);
  }
  structure.triangles = model.triangles;
  for (std::vector<int>& triangle : structure.triangles) {
    for (int& node : triangle)
      node = numbers[node - 1];
  }
  return structure;
}

Structure ShellOn(const std::function<Vector3(double, double)>& place, int nx, int ny, double t,
                  int nnode)
{
  const ShellModel grid = GridShell(nx, ny, place, Cut::BothWays);
  Structure::Shell shell;
  shell.t = t;
  return ShellOf(nnode == 3 ? grid : WithMidSideNodes(grid), shell);
}

Structure SolidOf(const SolidModel& model, const Structure::Solid& solid)
{
  Structure structure;
  structure.nodes = model.nodes;
  structure.tetrahedra = model.elements;
  structure.solid = solid;
  return structure;
}

}  // namespace morlen
