#include "assembly/element_family.h"

#include "base/errorwriter.h"
#include "model/mesh.h"

namespace morlen {

const ElementFamily* ElementFamilies::Find(const Mesh& mesh) const
{
  for (const ElementFamily& family : rows) {
    if (family.type == mesh.GiveElemType() && family.nnode == mesh.GiveNnode())
      return &family;
  }
  return nullptr;
}

const ElementFamily& ElementFamilies::Of(const Mesh& mesh) const
{
  const ElementFamily* family = Find(mesh);
  if (!family)
    Fatal("error: elemtype unknown\n");
  return *family;
}

}  // namespace morlen
