#include "problem/element_family.h"

#include "base/errorwriter.h"
#include "model/mesh.h"
#include "problem/project.h"

namespace morlen {

namespace {

constexpr ElementFamily kBeams = {.type = Linear,
                                  .nnode = 2,
                                  .spaceOnly = false,
                                  .addStiffness = &Project::AddKToGlobalMatrixBeams,
                                  .addForces = &Project::AddForcesOfBeams,
                                  .addLoads = &Project::AddLoadsOnBeams,
                                  .calcStrengths = &Project::CalcStrengthsBeams,
                                  .smooth = nullptr,
                                  .writeStrength = &Project::WriteBeamStrength,
                                  .writeKiv = &Project::WriteKivResultsBeams};

constexpr ElementFamily Shells(int nnode)
{
  return {.type = Triangle,
          .nnode = nnode,
          .spaceOnly = true,
          .addStiffness = &Project::AddKToGlobalMatrixTriangles,
          .addForces = &Project::AddForcesOfTriangles,
          .addLoads = &Project::AddLoadsOnTriangles,
          .calcStrengths = &Project::CalcStrengthsTriangles,
          .smooth = &Project::SmoothTriangles,
          .writeStrength = nullptr,
          .writeKiv = &Project::WriteKivResultsTriangle};
}

constexpr ElementFamily Solids(int nnode)
{
  return {.type = Tetrahedra,
          .nnode = nnode,
          .spaceOnly = false,
          .addStiffness = &Project::AddKToGlobalMatrixTetras,
          .addForces = &Project::AddForcesOfTetras,
          .addLoads = &Project::AddLoadsOnTetras,
          .calcStrengths = &Project::CalcStrengthsTetras,
          .smooth = &Project::SmoothVariableTetra,
          .writeStrength = nullptr,
          .writeKiv = &Project::WriteKivResultsTetra};
}

constexpr ElementFamily kFamilies[] = {kBeams, Shells(3), Shells(6), Solids(4), Solids(10)};

}  // namespace

const ElementFamily* FindFamily(const Mesh& mesh)
{
  for (const ElementFamily& family : kFamilies) {
    if (family.type == mesh.GiveElemType() && family.nnode == mesh.GiveNnode())
      return &family;
  }
  return nullptr;
}

const ElementFamily& FamilyOf(const Mesh& mesh)
{
  const ElementFamily* family = FindFamily(mesh);
  if (!family)
    Fatal("error: elemtype unknown\n");
  return *family;
}

}  // namespace morlen
