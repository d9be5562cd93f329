#include "assembly/model_checks.h"

#include "assembly/element_family.h"
#include "base/errorwriter.h"
#include "base/read_observer.h"
#include "model/constraint.h"
#include "model/elem.h"
#include "model/mesh.h"
#include "model/node.h"
#include "numeric/matriu.h"
#include "numeric/plex_range.h"

namespace morlen {

namespace {

void RequireNodes(const Elem& elem, int lastNode)
{
  for (int i = 0; i < elem.Nnode(); ++i) {
    if (elem(i))
      continue;
    Explain("node ", i + 1, " of the element's ", elem.Nnode(),
            " does not exist: the nodes have the numbers 1 to ", lastNode);
    Fatal("error: element ", elem.Num(), " has an unknown node\n");
  }
}

void RequireFamily(const Mesh& mesh, const ElementFamilies& families, PROBLEMTYPE type)
{
  if (families.Of(mesh).spaceOnly && type == kPlane)
    Fatal("error: elements of type ", ElemTypeName(mesh.GiveElemType()), " need a 3d problem\n");
}

void RequireLength(const Elem& beam)
{
  if (!(dist2(beam(0), beam(1)) > 0.0))
    Fatal("error: element ", beam.Num(), " has no length\n");
}

void CheckLengths(const Mesh& beams)
{
  for (const Elem& elem : Each<Elem>(*beams.GiveElemPlex()))
    AttemptOn(ReadItem::Element, elem.Num(), [&] { RequireLength(elem); });
}

void CheckSupportAxes(const VoidPlex& nodes, int components)
{
  Matriu T;
  for (const auto [number, node] : EachNumbered<const Node>(nodes)) {
    if (node.constraint)
      AttemptOn(ReadItem::Support, number, [&, &support = *node.constraint, number = number] {
        support.CalcTransfMatFromEuler(number, T, components, 1);
      });
  }
}

}  // namespace

void CheckReferences(const Meshes& meshes, const VoidPlex& materials,
                     const ElementFamilies& families)
{
  const int lastNode = meshes.empty() ? 0 : meshes.front()->GiveNodePlex()->Last();
  for (const auto& mesh : meshes) {
    const bool analysed = families.Find(*mesh) != nullptr;
    for (const Elem& elem : Each<Elem>(*mesh->GiveElemPlex())) {
      AttemptOn(ReadItem::Element, elem.Num(), [&] { RequireNodes(elem, lastNode); });
      if (analysed)
        AttemptOn(ReadItem::Element, elem.Num(), [&] { RequireMaterial(elem, materials); });
    }
  }
}

void CheckModel(const Meshes& meshes, PROBLEMTYPE type, const NodeComponents& components,
                const ElementFamilies& families)
{
  for (const auto& mesh : meshes) {
    Attempt(nullptr, [&] { RequireFamily(*mesh, families, type); });
    if (mesh->GiveElemType() == Linear)
      CheckLengths(*mesh);
  }
  CheckSupportAxes(*meshes.front()->GiveNodePlex(), components.count);
}

void CheckDoubleSolver(const Meshes& meshes)
{
  for (const auto& mesh : meshes) {
    if (mesh->GiveElemType() == Triangle && mesh->GiveNnode() != 3)
      Fatal("error: Solver DOUBLE needs a shell mesh of 3-noded triangles\n");
    if (mesh->GiveElemType() == Tetrahedra)
      Fatal("error: Double solver not implemented for tetrahedras\n");
  }
}

}  // namespace morlen
