// Which nodes of shells are coplanar.
//
// The triangles of a mesh are visited once, in their order. Each node keeps a chain of the
// different planes around it: a triangle joins the plane whose normal it shares, or adds a plane. A
// node with a second plane is folded. Between meshes only the first plane of each node is compared.

#include "assembly/coplanarity.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "assembly/shell_shares.h"
#include "base/constants.h"
#include "base/errorwriter.h"
#include "model/elem.h"
#include "model/mesh.h"
#include "model/node.h"
#include "numeric/plane_angle.h"
#include "numeric/plex_range.h"
#include "problem/problem.h"

namespace morlen {

namespace {

constexpr int kMostElementsAround = 25;

ReaVec UnitNormal(const Elem& elem)
{
  const ReaVec first = *elem(1) - *elem(0);
  const ReaVec second = *elem(2) - *elem(0);
  const ReaVec normal = VectorProd(first, second);
  const double length = normal.modul();
  if (!ExceedsRounding(length, first.modul() * second.modul()))
    Fatal("error: element ", elem.Num(), " is not correct\n");
  return normal / length;
}

/// A plane around a node.
struct PlaneAtNode
{
  const Elem* elem;  ///< the first triangle in it
  ReaVec normal;
  int next;  ///< index of the next plane of the node; -1 at the end
};

/// The different planes of a mesh around each node, in the order of the elements.
class PlanesAround
{
public:
  explicit PlanesAround(std::size_t nodes) : first(nodes, -1) {}

  int First(int node) const { return first[node]; }
  const PlaneAtNode& operator()(int i) const { return planes[i]; }

  void Add(int node, const Elem& elem, const ReaVec& normal)
  {
    int* place = &first[node];
    while (*place != -1)
      place = &planes[*place].next;
    *place = static_cast<int>(planes.size());
    planes.push_back({&elem, normal, -1});
  }

private:
  std::vector<int> first;
  std::vector<PlaneAtNode> planes;
};

/// The largest slight fold of a model: more than the coplanarity angle, but not meant as a fold.
struct SlightFold
{
  double angle = 0.0;  ///< radians; 0 for none
  int node = 0;        ///< by the numbers of the file
};

/// Finds the largest slight fold among the triangles around each node.
class SlightFolds
{
public:
  explicit SlightFolds(const Problem& problem_)
      : problem(problem_), normalsAt(static_cast<std::size_t>(problem.numNodes))
  {
  }

  void Add(const Mesh& mesh)
  {
    for (const Elem& elem : Each<Elem>(*mesh.GiveElemPlex())) {
      const ReaVec normal = UnitNormal(elem);
      for (int i = 0; i < elem.Nnode(); ++i)
        Compare(*elem(i), normal);
    }
  }

  SlightFold Largest() const { return largest; }

private:
  void Compare(const Node& node, const ReaVec& normal)
  {
    constexpr double kLargestSlight = 0.02;
    std::vector<ReaVec>& known = normalsAt[node.number - 1];
    for (const ReaVec& other : known) {
      const double angle = AngleOfPlanes(normal.Data(), other.Data());
      if (angle > std::max(problem.coplanarityAngle, largest.angle) && angle < kLargestSlight)
        largest = {angle, problem.meshes.front()->GiveOldNumber(&node)};
    }
    known.push_back(normal);
  }

  const Problem& problem;
  std::vector<std::vector<ReaVec>> normalsAt;  ///< by system number - 1
  SlightFold largest;
};

SlightFold LargestSlightFold(const Problem& problem)
{
  SlightFolds folds(problem);
  for (const auto& mesh : problem.meshes) {
    if (mesh->GiveElemType() == Triangle)
      folds.Add(*mesh);
  }
  return folds.Largest();
}

/// Two triangles with opposite normals, at the node of the lowest number.
struct OppositePair
{
  int node = std::numeric_limits<int>::max();
  const Elem* first = nullptr;
  const Elem* second = nullptr;
};

}  // namespace

std::vector<int> CountElementsAround(const Mesh& mesh, int nodes, const Mesh& fileNumbers)
{
  std::vector<int> counts(static_cast<std::size_t>(nodes), 0);
  for (const Elem& elem : Each<Elem>(*mesh.GiveElemPlex())) {
    for (int i = 0; i < elem.Nnode(); ++i) {
      if (++counts[elem(i)->number - 1] > kMostElementsAround)
        Fatal("error: Node ", fileNumbers.GiveOldNumber(elem(i)),
              " has too many elements around (more than ", kMostElementsAround, ")\n");
    }
  }
  return counts;
}

CoplanarityTest::CoplanarityTest(int nodes, double angle)
    : cosine(std::cos(angle)),
      planes(static_cast<std::size_t>(nodes)),
      folded(static_cast<std::size_t>(nodes), 0)
{
}

void CoplanarityTest::Add(const Mesh& mesh, const Mesh& fileNumbers)
{
  std::vector<ReaVec> normals;
  for (const Elem& elem : Each<Elem>(*mesh.GiveElemPlex()))
    normals.push_back(UnitNormal(elem));
  CountElementsAround(mesh, static_cast<int>(planes.size()), fileNumbers);
  PlanesAround around(planes.size());
  OppositePair opposite;
  auto normal = normals.cbegin();
  for (const Elem& elem : Each<Elem>(*mesh.GiveElemPlex())) {
    for (int i = 0; i < elem.Nnode(); ++i) {
      const int node = elem(i)->number - 1;
      bool known = false;
      for (int k = around.First(node); k != -1; k = around(k).next) {
        const double d = around(k).normal * *normal;
        if (-d >= cosine && node < opposite.node)
          opposite = {node, around(k).elem, &elem};
        known = known || d >= cosine;
      }
      if (known)
        continue;
      if (around.First(node) == -1)
        Compare(node, *normal);
      else
        folded[node] = 1;
      around.Add(node, elem, *normal);
    }
    ++normal;
  }
  if (opposite.first)
    Fatal("error: Elements ", opposite.first->Num(), " and ", opposite.second->Num(),
          " have normals in opposite directions. It is necessary to swap normals\n");
}

// Compares with the first plane that another mesh has at the node. Opposite normals are the same
// plane here.
void CoplanarityTest::Compare(int node, const ReaVec& normal)
{
  if (planes[node].Size() == 0)
    planes[node] = normal;
  else if (!(std::fabs(planes[node] * normal) >= cosine))
    folded[node] = 1;
}

std::vector<int> CoplanarityTest::Marks() const
{
  std::vector<int> marks(planes.size());
  for (std::size_t i = 0; i < marks.size(); ++i)
    marks[i] = planes[i].Size() != 0 && !folded[i];
  return marks;
}

void ExplainSlightFolds(const Problem& problem)
{
  if (problem.shellFormulation == ShellFormulation::Refined)
    return;
  const SlightFold fold = LargestSlightFold(problem);
  if (fold.angle > 0.0)
    Explain("shell triangles are folded by ", fold.angle, " at node ", fold.node,
            ", more than the coplanarity angle of ", problem.coplanarityAngle,
            ": slight folds hold the rotations only weakly. Are the coordinates rounded? Give "
            "them more decimals: morlen-check says how many, and where 'CoplanarityAngle' mends "
            "it");
}

void MarkCoplanarNodes(Problem& problem)
{
  const auto isShell = [](const auto& mesh) { return mesh->GiveElemType() == Triangle; };
  if (std::none_of(problem.meshes.begin(), problem.meshes.end(), isShell))
    return;
  CoplanarityTest test(problem.numNodes, problem.coplanarityAngle);
  for (const auto& mesh : problem.meshes) {
    if (isShell(mesh))
      test.Add(*mesh, *problem.meshes.front());
  }
  problem.coplanarity = test.Marks();
  if (problem.shellFormulation == ShellFormulation::Refined)
    problem.shellShares = CalcShellShares(problem);
}

}  // namespace morlen
