#include "problem/references.h"

#include "base/errorwriter.h"
#include "base/read_observer.h"
#include "model/elem.h"
#include "model/mesh.h"
#include "numeric/plex_range.h"
#include "problem/element_family.h"
#include "problem/project.h"

namespace morlen {

namespace {

void RequireNodes(const Elem& elem)
{
  for (int i = 0; i < elem.Nnode(); ++i) {
    if (!elem(i))
      Fatal("error: element ", elem.Num(), " has an unknown node\n");
  }
}

}  // namespace

void CheckReferences(const Project& project)
{
  for (const auto& mesh : project.meshes) {
    const bool analysed = FindFamily(*mesh) != nullptr;
    for (const Elem& elem : Each<Elem>(*mesh->GiveElemPlex())) {
      AttemptOn(ReadItem::Element, elem.Num(), [&] { RequireNodes(elem); });
      if (analysed)
        AttemptOn(ReadItem::Element, elem.Num(), [&] { project.RequireMaterial(elem); });
    }
  }
}

}  // namespace morlen
