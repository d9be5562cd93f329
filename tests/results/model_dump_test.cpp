#include <gtest/gtest.h>

#include <fstream>
#include <memory>
#include <string>

#include "model/node.h"
#include "run/project.h"
#include "support/run.h"
#include "support/solved.h"

namespace morlen {

namespace {

const std::string kTwoMeshes =
    "problem type 2d\n"
    "mesh dimension 2 elemtype Linear nnode 2\n"
    "coordinates\n1 0 0\n2 4 0\n3 2 0\nend coordinates\n"
    "elements\n1 1 3 1\nend elements\n"
    "mesh dimension 2 elemtype Linear nnode 2\n"
    "coordinates\nend coordinates\n"
    "elements\n2 3 2 1\nend elements\n"
    "materials\n1 E=1 A=2 Iz=3\nend materials\n"
    "constraints\n1 111 0 0 0\n2 210 5 0 0 Euler1=0.5\nend constraints\n"
    "nodal_point_loads\n3 1 -2 0.5\nend nodal_point_loads\n";

std::string Dumped(const Project& project)
{
  const TemporaryFolder folder;
  const std::string name = folder.Path() / "dump.txt";
  std::ofstream out(name);
  project.PrintTo(out);
  out.close();
  return ReadFile(name);
}

}  // namespace

TEST(ModelDump, ListsTheWholeModel)
{
  EXPECT_EQ(Dumped(*ReadProject(kTwoMeshes)),
            "\nProblemType=0\nFreeDegrees=3\nNumNodes=3\n"
            "MESH    dimension = 2 ElemType Linear  Nnode = 2\n"
            "Coordinates\n"
            "    1              0              0\n"
            "    2              4              0\n"
            "    3              2              0\n"
            "end coordinates\n\nElements\n"
            "    1       1    3  Mat: 1\n"
            "end elements\n"
            "MESH    dimension = 2 ElemType Linear  Nnode = 2\n"
            "Coordinates\n"
            "    1              0              0\n"
            "    2              4              0\n"
            "    3              2              0\n"
            "end coordinates\n\nElements\n"
            "    2       3    2  Mat: 1\n"
            "end elements\n"
            "1 E1=1 E2=1 nuXY=0 nuYX=0 Iy=0 Iz=3 Gxy=0 Gxz=0 Gyz=0 J=0 A=2 Weight=0 t=0\n"
            "1 flags=111 values=0 0 0\n"
            "2 flags=210 values=5 0 0 Euler1=0.5 Euler2=0 Euler3=0\n"
            "3 values=1 -2 0.5\n");
}

TEST(ModelDump, EveryMeshKeepsTheNumbersOfTheFileWhenRenumbered)
{
  const std::string asRead = Dumped(*ReadProject(kTwoMeshes));
  const std::unique_ptr<Project> project = ReadProject(kTwoMeshes);
  project->Calc(1, nullptr);
  ASSERT_NE(project->FindNode(2)->number, 2);  // it has been renumbered
  EXPECT_EQ(Dumped(*project), asRead);
}

TEST(ModelDump, ListsHinges)
{
  const std::string dump =
      Dumped(*ReadProject(kTwoMeshes + "rotules\n3 x\nend\nelem_rotules\n2 01\nend\n"));
  EXPECT_TRUE(dump.ends_with("nodes with rotule:\n3\nelements rotule:\nelm 2 code=1\n")) << dump;
}

TEST(ModelDump, ListsTheCoplanarityVector)
{
  const std::unique_ptr<Project> project = ReadProject(kTwoMeshes);
  project->problem.coplanarity = {1, 0, 1};
  const std::string dump = Dumped(*project);
  EXPECT_TRUE(dump.ends_with("Coplanarity vector:\n1 1\n2 0\n3 1\n")) << dump;
}

}  // namespace morlen
