#include "problem/references.h"

#include "base/errorwriter.h"
#include "model/elem.h"
#include "model/mesh.h"
#include "numeric/plex_range.h"
#include "problem/element_family.h"
#include "problem/project.h"

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
      RequireNodes(elem);
      if (analysed)
        project.RequireMaterial(elem);
    }
  }
}
