// Words of the heads of a problem file: in comments, glued to their values, with delimiters.

#include <gtest/gtest.h>

#include <string>

#include "base/read_observer.h"
#include "model/elem.h"
#include "model/mesh.h"
#include "model/node.h"
#include "support/fatal.h"
#include "support/frame.h"
#include "support/hints.h"
#include "support/solved.h"

namespace morlen {

namespace {

// A space frame with this head of the mesh, up to its "coordinates".
std::string WithHead(const std::string& head)
{
  std::string text = SpaceProblem().Text();
  const std::size_t begin = text.find("mesh");
  return text.replace(begin, text.find("coordinates") - begin, head + "\n");
}

const char* const kLists = "coordinates\nend\nelements\n7 1 2 1\nend\n";

}  // namespace

TEST(ProblemHead, TypesInCommentsDoNotCountBesideTheTrueOne)
{
  static const struct
  {
    const char* header;
    PROBLEMTYPE type;
  } cases[] = {
      {"# old problem type 2d\nproblem type 3d", kSpace},
      {"# problem type 3d\n# problem type 3d\nproblem type 2d", kPlane},
      {"problem # of the type 2d\ntype 3d", kSpace},
      {"problem type # 2d or 3d?\n3d", kSpace},
      {"problem type: # 2d\n# 2d\n = 3d", kSpace},
      {"problem type reticulat # 2d\n 3d", kSpace},
      {"# problem type 3d", kSpace},
      {"# problem type 2d", kPlane},
      {"problem #1 type 3d", kSpace},
      {"problem type # 3d", kSpace},
      {"problem type #3d", kSpace},
      {"\xef\xbb\xbf# problem type 2d\nproblem type 3d", kSpace},
  };
  for (const auto& c : cases) {
    const ProblemParts parts = c.type == kPlane ? ProblemParts() : SpaceProblem();
    const auto problem = ReadProblemText(parts.With(&ProblemParts::header, c.header).Text());
    EXPECT_EQ(problem->problemType, c.type) << c.header;
  }
}

TEST(ProblemHead, TheTypeMayBeGlued)
{
  for (const char* header :
       {"problem type=3d", "problem type:3d", "problem type= 3d", "problem type =3D",
        "problem\ttype\t=\t3d", "problem:type=3d", "problem type=reticulat 3d",
        "Problem:prototype type 3d", "problem type=frame 3d"}) {
    const auto problem = ReadProblemText(SpaceProblem().With(&ProblemParts::header, header).Text());
    EXPECT_EQ(problem->problemType, kSpace) << header;
  }
}

TEST(ProblemHead, AMeshHeadMayBeGluedOrSpaced)
{
  for (const char* head :
       {"mesh dimension=3 elemtype=Linear nnode=2", "mesh dimension:3 elemtype:Linear nnode:2",
        "mesh dimension =3 elemtype =Linear nnode =2",
        "mesh dimension= 3 elemtype= Linear nnode= 2",
        "mesh dimension = 3 elemtype = Linear nnode = 2",
        "mesh\tdimension\t=\t3\telemtype\t=\tLinear\tnnode\t=\t2",
        "mesh dimension: 3 elemtype: linear nnode: 2", "mesh dimension 3 elemtype:l nnode 2",
        "mesh dimension 3 elemtype # beams\n= # Linear?\nLinear nnode 2",
        "mesh dimension=+3 elemtype=LINEAR nnode=2,"}) {
    const auto problem = ReadProblemText(WithHead(head));
    const Mesh& mesh = *problem->meshes[0];
    EXPECT_EQ(mesh.GiveNdime(), 3) << head;
    EXPECT_EQ(mesh.GiveElemType(), Linear) << head;
    EXPECT_EQ(mesh.GiveNnode(), 2) << head;
    EXPECT_EQ(mesh.GiveElemPlex()->Count(), 1) << head;
  }
}

// A value that is only glued to another word does not end the search, as ever.
TEST(ProblemHead, OtherGluedTextIsPassedOver)
{
  for (const char* head : {"mesh dimension2 = 3 elemtype Linear nnode3 2",
                           "mesh dimension=x 3 elemtype=beam Linear nnode=two 2"}) {
    const auto problem = ReadProblemText(WithHead(head));
    EXPECT_EQ(problem->meshes[0]->GiveNdime(), 3) << head;
    EXPECT_EQ(problem->meshes[0]->GiveNnode(), 2) << head;
  }
}

TEST(ProblemHead, WordsInCommentsDoNotCountBesideTheTrueOnes)
{
  for (const char* head :
       {"mesh # dimension = 2 elemtype Triangle nnode 3\ndimension = 3 elemtype Linear nnode = 2",
        "mesh # coordinates\ndimension = # 2 or\n3 elemtype # Triangle\nLinear nnode # 3\n2",
        "mesh dimension = 3 elemtype Linear nnode = 2 # coordinates and elements",
        "mesh # dimension = 3 elemtype Linear nnode = 2",
        "mesh # dimension = 3\nelemtype Linear nnode = 2",
        "mesh dimension # 3\nelemtype Linear nnode = 2",
        "mesh dimension 3 # elemtype Linear\nnnode = 2",
        "mesh dimension 3 elemtype Linear # nnode = 2"}) {
    const auto problem = ReadProblemText(WithHead(head));
    EXPECT_EQ(problem->meshes[0]->GiveNdime(), 3) << head;
    EXPECT_EQ(problem->meshes[0]->GiveElemType(), Linear) << head;
    EXPECT_EQ(problem->meshes[0]->GiveNnode(), 2) << head;
    EXPECT_EQ(problem->GiveNodes().Count(), 2) << head;
  }
}

TEST(ProblemHead, AHeadInACommentDoesNotLoseItsMesh)
{
  const auto problem = ReadProblemText(WithHead("mesh dimension 3 elemtype Linear # nnode = 2") +
                                       "mesh dimension 3 elemtype Linear nnode = 2\n" + kLists);
  ASSERT_EQ(problem->meshes.size(), 2u);
  EXPECT_TRUE(problem->GiveElem(1));
  EXPECT_TRUE(problem->GiveElem(7));
}

TEST(ProblemHead, NoBeamIsLostToAGluedNumber)
{
  constexpr int kBeams = 150;
  std::string nodes = "1 0 0 0\n";
  std::string beams;
  for (int i = 1; i <= kBeams; ++i) {
    nodes += std::to_string(i + 1) + " " + std::to_string(i) + " 0 0\n";
    beams += std::to_string(i) + " " + std::to_string(i) + " " + std::to_string(i + 1) + " 1\n";
  }
  const auto problem = ReadProblemText(
      "problem type=3d\nmesh dimension=3 elemtype=Linear nnode=2\n"
      "coordinates\n" +
      nodes + "end\nelements\n" + beams + "end\n");
  EXPECT_EQ(problem->meshes[0]->GiveElemPlex()->Count(), kBeams);
}

TEST(ProblemHead, ABlockEndInACommentDoesNotCountBesideTheTrueOne)
{
  const WarningsHeard warnings;
  const auto problem = ReadProblemText(
      SpaceProblem().With(&ProblemParts::coordinates, "1 0 0 0\n2 1 0 0\nx # end\ny").Text());
  EXPECT_TRUE(problem->GiveElem(1));
  EXPECT_EQ(warnings.Lines(),
            std::vector<std::string>{
                "the block 'coordinates' in line 4 ends at 'x' in line 7, which is no number: 2 "
                "lines are not read, in lines 7 to 8"});
}

TEST(ProblemHead, AMissingEndIsReported)
{
  const WarningsHeard warnings;
  std::string text = SpaceProblem().Text();
  text.erase(text.find("end materials"), 14);
  const auto problem = ReadProblemText(text);
  EXPECT_FALSE(problem->FindNode(1)->constraint);
  EXPECT_EQ(warnings.Lines(),
            std::vector<std::string>{
                "the block 'materials' in line 11 ends at 'constraints' in line 13, which is no "
                "number: 2 lines are not read, in lines 13 to 14. It has no 'end': 'end' in line "
                "15 is taken for it, and these blocks are lost: 'constraints' (line 13)"});
}

TEST(ProblemHead, ErrorsAreExplained)
{
  static const struct
  {
    const char* text;
    const char* message;
    const char* hint;
  } cases[] = {
      {"problem type 1d\n", "Type of problem unknown. Only 2d and 3d\n",
       "line 1: the type is '1d'; write 'problem type: 2d' or 'problem type: 3d'"},
      {"problem 3d\nmesh dimension 3 elemtype Linear nnode 2\n",
       "Type of problem unknown. Only 2d and 3d\n",
       "line 2: 'elemtype' is taken for the word 'type' of the header, which is missing: 'problem "
       "type: 2d' or 'problem type: 3d'"},
      {"problem type 2d\nmesh dimension 4 elemtype\n", "error: mesh dimension must be 2 or 3\n",
       "line 2: the dimension is 4; it is the number of coordinates of a node"},
      {"problem type 2d\nmesh dimension\n", "end of file and no digit found\n",
       "no number follows 'dimension' in line 2"},
      {"problem type 2d\nmesh dimension 2 elemtype beam \n",
       "ElemType must be: Linear,Triangle,Quadrilateral, Tetrahedra or Hexahedra\n",
       "line 2: the type of element is 'beam': 'elemtype Linear' makes beams, Triangle shells, "
       "Tetrahedra solids"},
      {"problem type 2d\nmesh dimension 2 elemtype Linear nnode 3 \n", "Unknown Femview type\n",
       "elements of type Linear do not have 3 nodes: Linear has 2, Triangle 3 or 6, Tetrahedra 4 "
       "or 10"},
      {"problem type 2d\nmesh dimension 2 elemtype Linear\ncoordinates\n",
       "can't find word ***nnode*** in input file\n",
       "the block 'mesh', which begins in line 2, has no 'nnode' after line 2"},
      {"problem type 2d\n", "error: it is necessary at least one mesh\n",
       "the file has no block 'mesh'"},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(HintCaught([&] { ReadProblemText(c.text); }), c.hint) << c.text;
    ExpectFatal([&] { ReadProblemText(c.text); }, c.message);
  }
}

}  // namespace morlen
