// The files that a run on solids writes, to the letter.

#include <gtest/gtest.h>

#include <fstream>
#include <string>
#include <vector>

#include "support/result_files.h"
#include "support/run.h"
#include "support/solid_model.h"
#include "support/solved.h"

namespace morlen {

namespace {

// Strains 0.01, -0.02, 0.03, 0.004, 0.005, 0.006 of a material with λ = G = 400: the stresses
// 16, -8, 32, 1.6, 2, 2.4.
SolidModel Strained(const std::string& header, int nnode)
{
  constexpr std::array<double, 9> kGradient = {0.01, 0.004, 0.005, 0, -0.02, 0.006, 0, 0, 0.03};
  SolidModel model = UnitSolid(nnode);
  model.header = header;
  return model.Prescribe(model.OuterNodes(),
                         [&](const Vector3& x) { return GradientTimes(kGradient, x); });
}

struct Written
{
  std::string text;
  std::string kiv;
  std::string mesh;
};

Written RunFiles(const SolidModel& model)
{
  const TemporaryFolder folder;
  folder.Write("model.dat", model.Text());
  const RunResult run = RunProgram(folder, {"-p", "model.dat", "out.txt"});
  EXPECT_EQ(run.status, 0) << run.err;
  return {folder.Read("out.txt"), folder.Read("model.morlen.res"), folder.Read("model.morlen.bon")};
}

// The von Mises stress is sqrt(1252.96): differences 24, 40, 16, and the shear stresses.
const char* const kFourNodes =
    "Displacements   4 1.0 Estatic 2 1 1\nX\nY\nZ\n"
    "1 0 0 0\n2 0.01 0 0\n3 0.004 -0.02 0\n4 0.005 0.006 0.03\n"
    "Strengths      4 1.0 Estatic 3 1 1\nSx\nSy\nSz\nTxy\nTyz\nTxz\n"
    "1  16 -8 32 1.6 2.4 2\n2  16 -8 32 1.6 2.4 2\n3  16 -8 32 1.6 2.4 2\n"
    "4  16 -8 32 1.6 2.4 2\n"
    "Von Misses     4 1.0 Estatic 1 1 1\nVon_Misses\n"
    "1 35.3972\n2 35.3972\n3 35.3972\n4 35.3972\n"
    "Reactions       4 1.0 Estatic 2 1 1\nPx\nPy\nPz\n";

}  // namespace

// The forces at the corners are the stress tensor times the gradients of the corners, over six.
TEST(KivSolids, FileOfA3dHeader)
{
  EXPECT_EQ(RunFiles(Strained("3d", 4)).kiv, std::string(kFourNodes) +
                                                 "1 -3.26667 0.666667 -6.06667 \n"
                                                 "2 2.66667 0.266667 0.333333 \n"
                                                 "3 0.266667 -1.33333 0.4 \n"
                                                 "4 0.333333 0.4 5.33333 \n");
}

// The header decides about the blocks of reactions: two components, then the third alone.
TEST(KivSolids, FileOfA2dHeader)
{
  EXPECT_EQ(RunFiles(Strained("2d", 4)).kiv, std::string(kFourNodes) +
                                                 "1 -3.26667 0.666667 \n"
                                                 "2 2.66667 0.266667 \n"
                                                 "3 0.266667 -1.33333 \n"
                                                 "4 0.333333 0.4 \n"
                                                 "M Reactions     4 1.0 Estatic 1 1 1\nM\n"
                                                 "1 -6.06667 \n2 0.333333 \n3 0.4 \n4 5.33333 \n");
}

TEST(KivSolids, FreeNodesHaveNoReactions)
{
  SolidModel model = Strained("2d", 4);
  model.supports.erase(4);
  const std::string kiv = RunFiles(model).kiv;
  EXPECT_NE(kiv.find("\n4 0 0 0\nM Reactions"), std::string::npos);
  EXPECT_TRUE(kiv.ends_with("\n4 0 0 0\n"));
}

TEST(KivSolids, TextResultsHaveThreeComponents)
{
  const std::string values = "1  0 0 0\n2  0.01 0 0\n3  0.004 -0.02 0\n4  0.005 0.006 0.03\n";
  const std::string reactions =
      "1  -3.26667 0.666667 -6.06667\n2  2.66667 0.266667 0.333333\n"
      "3  0.266667 -1.33333 0.4\n4  0.333333 0.4 5.33333\n";
  EXPECT_EQ(RunFiles(Strained("3d", 4)).text,
            "\n\nNODAL DISPLACEMENTS (x y z thetax thetay thetaz)\n" + values +
                "\n\nREACTIONS (Px Py Pz Mx My Mz)\n" + reactions);
  EXPECT_EQ(RunFiles(Strained("2d", 4)).text, "\n\nNODAL DISPLACEMENTS (x y theta)\n" + values +
                                                  "\n\nREACTIONS (Px Py M)\n" + reactions);
}

TEST(KivSolids, BlocksOfTenNodes)
{
  const Written written = RunFiles(Strained("3d", 10));
  EXPECT_EQ(KivBlockNames(written.kiv),
            (std::vector<std::string>{"Displacements", "Strengths", "Von Misses", "Reactions"}));
  const auto stresses = KivBlock(written.kiv, "Strengths");
  ASSERT_EQ(stresses.size(), 10u);
  for (const auto& [node, points] : stresses)
    ExpectValues(points.at(0), {16, -8, 32, 1.6, 2.4, 2}, 1e-5);
  for (const auto& [node, points] : KivBlock(written.kiv, "Von Misses"))
    ExpectValues(points.at(0), {35.3972}, 1e-5);
}

TEST(KivSolids, MeshFileNamesThreeCorners)
{
  const std::string mesh = RunFiles(Strained("3d", 4)).mesh;
  EXPECT_TRUE(mesh.starts_with("\n\n\n\n\nNumElems NumNodes ElemType\n1 4 7\nnode x y z\n"));
  EXPECT_TRUE(mesh.ends_with("element node1 node2 node3 material\n1 1 2 3  1\n"));
}

// Reading a model of solids switches smoothing on; a caller may switch it off.
TEST(KivSolids, WithoutSmoothingThereAreNoStresses)
{
  for (const int nnode : {4, 10}) {
    const auto project = ReadProject(Strained("3d", nnode).Text());
    project->problem.smoothing.on = false;
    project->Calc(1, nullptr);
    project->CalcStrengthsAndReactions(nullptr);
    const TemporaryFolder folder;
    std::ofstream res(folder.Path() / "res");
    project->WriteKivResults(res, nullptr);
    res.close();
    const std::string kiv = folder.Read("res");
    EXPECT_TRUE(kiv.starts_with("gausspoints     0  " + std::string(nnode == 4 ? "1" : "4") +
                                "  1  0  0\nDisplacements   4 1.0 Estatic 2 1 1\n"));
    EXPECT_EQ(KivBlockNames(kiv), (std::vector<std::string>{"Displacements", "Reactions"}));
  }
}

// Two meshes of solids are computed, but their results cannot be written.
TEST(KivSolids, SecondMeshIsRefused)
{
  SolidModel model = Strained("3d", 4);
  model.rest =
      "mesh dimension 3 elemtype Tetrahedra nnode 4 coordinates\nend\nelements\n"
      "7 1 2 3 4 1\nend\n";
  const RunResult run = RunOnProblem(model.Text());
  EXPECT_EQ(run.err, "tetrahedra elements cannot be mixed with other elements\n");
  EXPECT_EQ(run.status, 2);
}

}  // namespace morlen
