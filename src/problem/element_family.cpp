#include "problem/element_family.h"

#include "base/errorwriter.h"
#include "model/mesh.h"
#include "problem/project.h"

namespace {

constexpr ElementFamily kFamilies[] = {
    {.type = Linear,
     .nnode = 2,
     .spaceOnly = false,
     .addStiffness = &Project::AddKToGlobalMatrixBeams,
     .addLoads = &Project::AddLoadsOnBeams,
     .calcStrengths = &Project::CalcStrengthsBeams,
     .writeStrength = &Project::WriteBeamStrength,
     .writeKiv = &Project::WriteKivResultsBeams},
};

}  // namespace

const ElementFamily& FamilyOf(const Mesh& mesh)
{
  for (const ElementFamily& family : kFamilies) {
    if (family.type == mesh.GiveElemType() && family.nnode == mesh.GiveNnode())
      return family;
  }
  if (mesh.GiveElemType() == Triangle || mesh.GiveElemType() == Tetrahedra)
    Fatal("error: elements of type ", ElemTypeName(mesh.GiveElemType()),
          " are not available yet\n");
  Fatal("error: elemtype unknown\n");
}
