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
     .smooth = nullptr,
     .writeStrength = &Project::WriteBeamStrength,
     .writeKiv = &Project::WriteKivResultsBeams},
    {.type = Triangle,
     .nnode = 3,
     .spaceOnly = true,
     .addStiffness = &Project::AddKToGlobalMatrixTriangles,
     .addLoads = &Project::AddLoadsOnTriangles,
     .calcStrengths = &Project::CalcStrengthsTriangles,
     .smooth = &Project::SmoothTriangles,
     .writeStrength = nullptr,
     .writeKiv = &Project::WriteKivResultsTriangle},
    {.type = Triangle,
     .nnode = 6,
     .spaceOnly = true,
     .addStiffness = &Project::AddKToGlobalMatrixTriangles,
     .addLoads = &Project::AddLoadsOnTriangles,
     .calcStrengths = &Project::CalcStrengthsTriangles,
     .smooth = &Project::SmoothTriangles,
     .writeStrength = nullptr,
     .writeKiv = &Project::WriteKivResultsTriangle},
    {.type = Tetrahedra,
     .nnode = 4,
     .spaceOnly = false,
     .addStiffness = &Project::AddKToGlobalMatrixTetras,
     .addLoads = &Project::AddLoadsOnTetras,
     .calcStrengths = &Project::CalcStrengthsTetras,
     .smooth = &Project::SmoothVariableTetra,
     .writeStrength = nullptr,
     .writeKiv = &Project::WriteKivResultsTetra},
    {.type = Tetrahedra,
     .nnode = 10,
     .spaceOnly = false,
     .addStiffness = &Project::AddKToGlobalMatrixTetras,
     .addLoads = &Project::AddLoadsOnTetras,
     .calcStrengths = &Project::CalcStrengthsTetras,
     .smooth = &Project::SmoothVariableTetra,
     .writeStrength = nullptr,
     .writeKiv = &Project::WriteKivResultsTetra},
};

}  // namespace

const ElementFamily& FamilyOf(const Mesh& mesh)
{
  for (const ElementFamily& family : kFamilies) {
    if (family.type == mesh.GiveElemType() && family.nnode == mesh.GiveNnode())
      return family;
  }
  Fatal("error: elemtype unknown\n");
}
