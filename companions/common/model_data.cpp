#include "common/model_data.h"

#include <fstream>
#include <map>
#include <unordered_map>

#include "base/errorwriter.h"
#include "common/utf8.h"
#include "model/constraint.h"
#include "model/elem.h"
#include "model/material.h"
#include "model/mesh.h"
#include "model/nodal_load.h"
#include "model/node.h"
#include "model/shape_functions.h"
#include "numeric/matriu.h"
#include "numeric/plex_range.h"
#include "problem/elem_loads.h"
#include "problem/problem.h"
#include "problem/problem_reader.h"

namespace morlen::model {
namespace {

/// Builds the lists of a model and knows their positions.
class Builder
{
public:
  explicit Builder(const Problem& source) : problem(source) {}

  Model Build()
  {
    AddSettings();
    AddNodes();
    for (const morlen::Material& material : Each<morlen::Material>(problem.materials))
      AddMaterial(material);
    for (int mesh = 0; mesh < result.meshes; ++mesh)
      AddElements(mesh);
    AddElementLoads();
    return std::move(result);
  }

private:
  void AddSettings();
  void AddNodes();
  void AddMaterial(const morlen::Material& material);
  void AddElements(int mesh);
  void AddElement(const Elem& elem, Kind kind, int mesh);
  void AddElementLoads();
  int PointsOf(Kind kind, int nodeCount) const;
  std::array<Vec3, 3> AxesOf(const Elem& elem, Kind kind);

  const Problem& problem;
  Model result;
  std::unordered_map<int, int> nodeAt;     ///< position by number
  std::unordered_map<int, int> elementAt;  ///< position by number
  std::map<const morlen::Material*, int> materialAt;
  Matriu T, bigT;
};

void Builder::AddSettings()
{
  result.plane = problem.problemType == kPlane;
  result.components = problem.components.count;
  result.solids = problem.meshes.front()->GiveElemType() == Tetrahedra;
  result.beamDivisions = problem.numOfDivisions;
  result.meshes = static_cast<int>(problem.meshes.size());
  result.units = UnitsOf(problem.units);
}

void Builder::AddNodes()
{
  for (const auto [number, node] : EachNumbered<const morlen::Node>(problem.GiveNodes())) {
    const int position = static_cast<int>(result.nodes.size());
    nodeAt[number] = position;
    Node& added = result.nodes.emplace_back(Node{number, {}});
    for (int k = 1; k <= node.Size(); ++k)
      added.x[k - 1] = node(k);
    if (const Constraint* c = node.constraint.get())
      result.supports.push_back({position, c->flags, c->values, c->localAxes, c->euler});
    if (node.load)
      result.nodalLoads.push_back({position, node.load->values});
  }
}

void Builder::AddMaterial(const morlen::Material& m)
{
  materialAt[&m] = static_cast<int>(result.materials.size());
  result.materials.push_back({m.number, m.E1, m.E2, m.nuXY, m.nuYX, m.Gxy, m.Gxz, m.Gyz, m.A, m.Iy,
                              m.Iz, m.J, m.t, m.Weight});
}

void Builder::AddElements(int mesh)
{
  const Mesh& source = *problem.meshes[mesh];
  const ElemType type = source.GiveElemType();
  if (type != Linear && type != Triangle && type != Tetrahedra)
    Fatal("error: elemtype unknown\n");
  const Kind kind = type == Linear ? Kind::Beam : type == Triangle ? Kind::Shell : Kind::Solid;
  for (const Elem& elem : Each<Elem>(*source.GiveElemPlex()))
    AddElement(elem, kind, mesh);
}

void Builder::AddElement(const Elem& elem, Kind kind, int mesh)
{
  const morlen::Material* material = elem.GiveMaterial(&problem.materials);
  if (material && !materialAt.contains(material))
    AddMaterial(*material);
  Element added{};
  added.number = elem.Num();
  added.mesh = mesh;
  added.kind = kind;
  added.material = material ? materialAt[material] : -1;
  added.hingeCode = problem.GiveHingeCode(elem.Num()).Value();
  added.nodeCount = elem.Nnode();
  for (int i = 0; i < elem.Nnode(); ++i)
    added.nodes[i] = nodeAt.at(elem(i)->number);
  added.axes = AxesOf(elem, kind);
  added.points = PointsOf(kind, elem.Nnode());
  int& count = kind == Kind::Beam ? result.beamPoints : result.shellPoints;
  added.firstPoint = count;
  count += added.points;
  elementAt[added.number] = static_cast<int>(result.elements.size());
  result.elements.push_back(added);
}

int Builder::PointsOf(Kind kind, int nodeCount) const
{
  if (kind == Kind::Solid)
    return 0;  // their results are at the nodes
  if (kind == Kind::Beam)
    return problem.numOfDivisions + 1;
  const bool converts =
      problem.convertTo6Nodes || problem.solverSettings.type == SolverType::Double;
  return GaussPointCount(Triangle, converts ? 6 : nodeCount);
}

std::array<Vec3, 3> Builder::AxesOf(const Elem& elem, Kind kind)
{
  std::array<Vec3, 3> axes{{{1.0, 0.0, 0.0}, {0.0, 1.0, 0.0}, {0.0, 0.0, 1.0}}};
  const morlen::Material* material = elem.GiveMaterial(&problem.materials);
  if (kind == Kind::Beam)
    elem.CalcTransfMatrixBeam(T, material, problem.problemType);
  else if (kind == Kind::Shell)
    elem.CalcTransfMatrixTriangle(T, bigT, material);
  else
    return axes;
  for (int axis = 0; axis < 3; ++axis) {
    for (int k = 0; k < 3; ++k)
      axes[axis][k] = T(k + 1, axis + 1);
  }
  return axes;
}

void Builder::AddElementLoads()
{
  for (const auto [number, chain] : EachNumbered<const BaseElemLoads>(problem.elemLoads)) {
    for (const BaseElemLoads* load = &chain; load; load = load->Next()) {
      const ElemLoadRecord record = load->Describe();
      result.elementLoads.push_back(
          {elementAt.at(number), record.keyword, record.pressure, record.values, record.face});
    }
  }
}

}  // namespace

void ReadProblemFile(const std::filesystem::path& file, Problem& problem)
{
  std::ifstream in(file);
  if (!in)
    Fatal("can't open file ", file.string(), "\n");
  ReadProblem(in, problem);
}

Model ReadModel(const std::filesystem::path& file)
{
  Problem problem(100);
  ReadProblemFile(file, problem);
  return ModelOf(problem);
}

Units UnitsOf(const morlen::Units& units)
{
  Units found;
  for (const UnitsBase& base : units.bases) {
    if (base.facN != units.resForce || base.facM != units.resLength)
      continue;
    const bool exact = base.nameN == units.resForceName && base.nameM == units.resLengthName &&
                       base.namePa == units.resPressureName;
    if (exact || found.force.empty())
      found = {ToUtf8(base.nameN), ToUtf8(base.nameM), ToUtf8(base.namePa)};
    if (exact)
      break;
  }
  return found;
}

Model ModelOf(const Problem& problem)
{
  return Builder(problem).Build();
}

Vec3 PointOfBeam(const Model& model, const Element& beam, int point)
{
  const double t = static_cast<double>(point) / (beam.points - 1);
  const Vec3& a = model.nodes[beam.nodes[0]].x;
  const Vec3& b = model.nodes[beam.nodes[1]].x;
  return {a[0] + t * (b[0] - a[0]), a[1] + t * (b[1] - a[1]), a[2] + t * (b[2] - a[2])};
}

const char* KindName(Kind kind)
{
  return kind == Kind::Beam ? "beam" : kind == Kind::Shell ? "shell" : "solid";
}

}  // namespace morlen::model
