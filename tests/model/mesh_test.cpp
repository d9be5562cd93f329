#include "model/mesh.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include "base/errorwriter.h"
#include "base/textscan.h"
#include "model/material.h"
#include "model/node.h"
#include "model/units.h"
#include "numeric/plex_range.h"
#include "support/fatal.h"

namespace morlen {

namespace {

// A mesh that deletes its nodes and elements.
class OwnedMesh : public Mesh
{
public:
  OwnedMesh() : Mesh(100, 100, 0, ElemType(0), 0) {}
  ~OwnedMesh() override
  {
    ClearAllElems();
    ClearAllNodes();
  }
  void Read(const std::string& block, const Units* units = nullptr)
  {
    TextScan text(block);
    ReadFromAscii(text, units);
  }
  Node& NodeAt(int number) { return *Find<Node>(*GiveNodePlex(), number); }
  Elem& ElemAt(int number) { return *Find<Elem>(*GiveElemPlex(), number); }
};

const std::string kBeams2d =
    "dimension = 2 elemtype Linear nnode = 2\n"
    "coordinates\n"
    "# a comment line\n"
    "1 0 0\n"
    " : 2 3 0\n"
    "3 1.0 2.0 extra words\n"
    "end coordinates\n"
    "elements\n"
    "# another\n"
    "1 1 2 1\n"
    "5 2 3 010\n"
    "end elements\n";

std::string Block(const char* type, const char* nodes, const char* elems)
{
  return std::string("dimension 3 elemtype ") + type + "\ncoordinates\n" + nodes +
         "end coordinates\nelements\n" + elems + "end elements\n";
}

}  // namespace

TEST(MeshReader, ReadsNodesAndElements)
{
  OwnedMesh mesh;
  mesh.Read(kBeams2d);
  EXPECT_EQ(mesh.GiveNdime(), 2);
  EXPECT_EQ(mesh.GiveNnode(), 2);
  EXPECT_EQ(mesh.GiveElemType(), Linear);
  EXPECT_EQ(mesh.GiveFvType(), 11);
  EXPECT_EQ(mesh.GiveNodePlex()->Count(), 3);
  EXPECT_EQ(mesh.GiveElemPlex()->Count(), 2);
  EXPECT_EQ(mesh.NodeAt(3)(1), 1.0);
  EXPECT_EQ(mesh.NodeAt(3)(2), 2.0);
  EXPECT_EQ(mesh.NodeAt(3).Size(), 2);
  EXPECT_EQ(mesh.ElemAt(5)(0), &mesh.NodeAt(2));
  EXPECT_EQ(mesh.ElemAt(5)(1), &mesh.NodeAt(3));
  EXPECT_EQ(mesh.ElemAt(1).GiveMaterialNum(), 1);
  EXPECT_EQ(mesh.ElemAt(5).GiveMaterialNum(), 8);  // a leading 0: octal
}

TEST(MeshReader, ConvertsCoordinates)
{
  Units units;
  units.meshLength = 0.001;
  units.resLength = 0.01;
  OwnedMesh mesh;
  mesh.Read(kBeams2d, &units);
  EXPECT_NEAR(mesh.NodeAt(2)(1), 0.3, 1e-15);
}

TEST(MeshReader, TypesByTheirFirstLetters)
{
  static const struct
  {
    const char* words;
    ElemType type;
    int code;
  } cases[] = {
      {"linear nnode 2", Linear, 11},
      {"TRIANGLE nnode 3", Triangle, 7},
      {"trussx nnode 6", Triangle, 8},
      {"tri nnode: 3", Triangle, 7},
      {"Quadrilateral nnode 4", Quadrilateral, 9},
      {"quad nnode = 8", Quadrilateral, 10},
      {"Tetrahedra nnode = 4", Tetrahedra, 3},
      {"te nnode x10", Tetrahedra, 6},
      {"Hexahedra nnode 8", Hexahedra, 1},
      {"hexa nnode 20", Hexahedra, 4},
  };
  for (const auto& c : cases) {
    OwnedMesh mesh;
    mesh.Read(Block(c.words, "1 0 0 0\n", ""));
    EXPECT_EQ(mesh.GiveElemType(), c.type) << c.words;
    EXPECT_EQ(mesh.GiveFvType(), c.code) << c.words;
  }
}

TEST(MeshReader, RefusedBlocks)
{
  static const struct
  {
    std::string block;
    const char* message;
  } cases[] = {
      {"dimension = x", "end of file and no digit found\n"},
      {"dimension 3 elemtype Linear nnode\n", "end of file and no digit found\n"},
      {"dimension 3 elemtype Bar nnode 2\n",
       "ElemType must be: Linear,Triangle,Quadrilateral, Tetrahedra or Hexahedra\n"},
      {"dimension 3 elemtype Tx nnode 2\n",
       "ElemType must be: Linear,Triangle,Quadrilateral, Tetrahedra or Hexahedra\n"},
      {"dimension 4 elemtype Linear nnode 2\n", "error: mesh dimension must be 2 or 3\n"},
      {"dimension 99999999999 elemtype Linear nnode 2\n",
       "error: the number 99999999999 is too large\n"},
      {Block("Quadrilateral nnode 3", "1 0 0 0\n", ""), "Unknown Femview type\n"},
      {Block("Linear nnode 2000000000", "1 0 0 0\n", ""), "Unknown Femview type\n"},
      {Block("Linear nnode 0", "1 0 0 0\n", ""), "Unknown Femview type\n"},
      {Block("Linear nnode 2", "1 0 0 0\n2 1 0 0\n4 1 1 0\n", ""),
       "error: list of nodes does not contain all numbers\n"},
      {Block("Linear nnode 2", "1 0 0 0\n1 1 0 0\n", ""),
       "error: list of nodes does not contain all numbers\n"},
      {Block("Linear nnode 2", "1 0 0 0\n2 1 0 0\n2 1 1 0\n4 1 1 1\n", ""),
       "error: list of nodes does not contain all numbers\n"},
      {Block("Linear nnode 2", "", ""), "error: list of nodes does not contain any node\n"},
      {Block("Linear nnode 2", "0 0 0 0\n", ""), "Invalid void index 0"},
      {Block("Linear nnode 2", "1 0 0 0\n2 1 0 0\n", "3 2 2\n"),
       "error: element: 3  have both nodes equal\n"},
      {"dimension 3 elemtype Linear nnode 2 coordinates 1 0 0 0 end",
       "can't find word ***end*** in input file\n"},
      {Block("Linear nnode 2", "1 0 0 0\n2 1 0 0\n", "1 1 2 3 T=1\n"),
       "Input of materials not correct. Unknown char: 'T'\n"},
  };
  for (const auto& c : cases) {
    OwnedMesh mesh;
    ExpectFatal([&] { mesh.Read(c.block); }, c.message);
  }
}

TEST(MeshReader, HintsNameTheNodesThatAreMissing)
{
  static const struct
  {
    std::string nodes;
    const char* hint;
  } cases[] = {
      {"1 0 0 0\n2 1 0 0\n4 1 1 0\n", "node 3 is missing"},
      {"1 0 0 0\n2 1 0 0\n\n2 1 1 0\n", "node 2 is given in line 4 and in line 6"},
      {"1 0 0 0\n2 1 0 0\n2 1 1 0\n4 1 1 1\n",
       "node 3 is missing; node 2 is given in line 4 and in line 5"},
      {"2 0 0 0\n1,0 1 0 0\n",
       "line 4: the list ends here: '1,0' is not a number: the decimal sign is a point, write 1.0; "
       "node 1 is missing"},
      {"2 1 0 2.1d8\n", "node 1 is missing"},
      {"2 0 0 0\n! 1 0 0 0\n",
       "line 4: the list ends here: '!' is not a number: a comment begins with '#'; node 1 is "
       "missing"},
      {"1 0 x 0\n", "line 3: the list ends here: 'x' is not a number"},
  };
  for (const auto& c : cases) {
    OwnedMesh mesh;
    FatalCaught([&] { mesh.Read(Block("Linear nnode 2", c.nodes.c_str(), "")); });
    EXPECT_EQ(errorwriter.Hint(), c.hint) << c.nodes;
  }
}

TEST(MeshReader, ALineThatIsNoNodeEndsTheList)
{
  for (const char* line : {"2 1.0 abc 0\n", "2 nan 0 0\n", "2 1e400 0 0\n", "x\n"}) {
    OwnedMesh mesh;
    mesh.Read(Block("Linear nnode 2", (std::string("1 0 0 0\n") + line).c_str(), ""));
    EXPECT_EQ(mesh.GiveNodePlex()->Count(), 1) << line;
  }
}

TEST(MeshReader, CommentsAndTabsInTheLists)
{
  OwnedMesh mesh;
  mesh.Read(Block("Linear nnode 2", "# 9 9 9 9\n\t# 9 9 9 9\n1\t0\t0\t0\t# foot\n\t2 1 0 0 # 3\n\t",
                  "#\n\t# 9 1 2\n1\t1\t2\t7\t# x\n2 1 2 # 7 A=1\n3 1 2 7 A=2\t# A=3\n\t"));
  EXPECT_EQ(mesh.GiveNodePlex()->Count(), 2);
  EXPECT_EQ(mesh.GiveElemPlex()->Count(), 3);
  EXPECT_EQ(mesh.ElemAt(1).GiveMaterialNum(), 7);
  EXPECT_EQ(mesh.ElemAt(2).GiveMaterialNum(), 0);
  EXPECT_EQ(mesh.ElemAt(3).GiveMaterial(nullptr)->A, 2.0);
}

TEST(MeshReader, UnknownNodesAreNull)
{
  OwnedMesh mesh;
  mesh.Read(Block("Linear nnode 2", "1 0 0 0\n2 1 0 0\n", "1 1 9\n2 -3 2000000000\n"));
  EXPECT_NE(mesh.ElemAt(1)(0), nullptr);
  EXPECT_EQ(mesh.ElemAt(1)(1), nullptr);
  EXPECT_EQ(mesh.ElemAt(2)(0), nullptr);
}

TEST(MeshReader, ARepeatedElementReplacesTheEarlierOne)
{
  OwnedMesh mesh;
  mesh.Read(Block("Linear nnode 2", "1 0 0 0\n2 1 0 0\n3 2 0 0\n", "1 1 2 4\n1 2 3 5\n"));
  EXPECT_EQ(mesh.GiveElemPlex()->Count(), 1);
  EXPECT_EQ(mesh.ElemAt(1).GiveMaterialNum(), 5);
}

TEST(MeshReader, NodesListedAgainMoveAndStayTheSame)
{
  OwnedMesh first;
  first.Read(Block("Linear nnode 2", "1 0 0 0\n2 1 0 0\n", "1 1 2\n"));
  const Node* node = &first.NodeAt(2);
  Mesh second(first.GiveNodePlex(), 100, 0, ElemType(0), 0);
  const std::string block = Block("Linear nnode 2", "1 0 0 0\n2 5 6 7\n", "");
  TextScan text(block);
  second.ReadFromAscii(text, nullptr);
  EXPECT_EQ(&first.NodeAt(2), node);
  EXPECT_EQ((*node)(1), 5.0);
  EXPECT_EQ((*node)(3), 7.0);
}

TEST(MeshReader, OwnMaterialOfAnElement)
{
  OwnedMesh mesh;
  mesh.Read(Block("Linear nnode 2", "1 0 0 0\n2 1 0 0\n",
                  "5 1 2 3 E=2.1e11\n6 1 2 4 \t\r\n7 1 2 0x1F\n8 1 2\n"));
  VoidPlex materials(100);
  Material numbered;
  numbered.A = 0.5;
  numbered.E1 = 7.0;
  materials.set_at(3, &numbered);
  Elem& elem = mesh.ElemAt(5);
  EXPECT_EQ(elem.GiveMaterialNum(), 0);
  elem.ComposeYourMaterial(&materials);
  EXPECT_EQ(elem.GiveMaterial(&materials)->E1, 2.1e11);
  EXPECT_EQ(elem.GiveMaterial(&materials)->A, 0.5);
  double EIy = 0.0, EIz = 0.0, EA = 0.0;
  elem.GiveEI(&materials, EIy, EIz, EA);
  EXPECT_NEAR(EA, 1.05e11, 1e-3);
  EXPECT_EQ(mesh.ElemAt(6).GiveMaterialNum(), 4);
  EXPECT_EQ(mesh.ElemAt(6).GiveMaterial(&materials), nullptr);
  EXPECT_EQ(mesh.ElemAt(7).GiveMaterialNum(), 31);
  EXPECT_EQ(mesh.ElemAt(8).GiveMaterialNum(), 0);
}

TEST(Mesh, OldNumberWithoutARenumberingIsTheNumber)
{
  OwnedMesh mesh;
  EXPECT_EQ(mesh.GiveOldNumber(5), 5);
  EXPECT_EQ(mesh.GiveOldNumber(nullptr), 0);
}

TEST(Mesh, ListingInTheNumbersOfTheFile)
{
  OwnedMesh mesh;
  mesh.Read(Block("Linear nnode 2", "1 0 0 0\n2 1.5 -2 0.25\n", "1 1 2 3\n2 2 1\n3 1 2 3 A=1\n"));
  mesh.RenumberNodes();
  std::ostringstream out;
  mesh.PrintTo(out, 1, 0);
  EXPECT_EQ(out.str(),
            "MESH    dimension = 3 ElemType Linear  Nnode = 2\n"
            "Coordinates\n"
            "    1              0              0              0\n"
            "    2            1.5             -2           0.25\n"
            "end coordinates\n"
            "\n"
            "Elements\n"
            "    1       1    2  Mat: 3\n"
            "    2       2    1\n"
            "    3       1    2  Mat: 0 E1=-1 E2=-1 nuXY=-1 nuYX=-1 Iy=-1 Iz=-1 Gxy=-1 Gxz=-1 "
            "Gyz=-1 J=-1 A=1 Weight=-1 t=-1\n"
            "end elements\n");
}

TEST(Mesh, BareListing)
{
  OwnedMesh mesh;
  mesh.Read(Block("Linear nnode 2", "1 0 0 0\n2 1.5 -2 0.25\n", "1 1 2 3\n3 1 2 3 A=1\n"));
  std::ostringstream bare, notOld;
  mesh.PrintTo(bare, 1, 1);
  EXPECT_NE(bare.str().find("\n    1       1    2 3\n    3       1    2 0\n"), std::string::npos);
  mesh.PrintTo(notOld, 0, 1);
  EXPECT_NE(notOld.str().find("\n    1       1    2  Mat: 3\n"), std::string::npos);
}

TEST(Mesh, FemviewFile)
{
  OwnedMesh mesh;
  mesh.Read(
      "dimension 2 elemtype Linear nnode 2 coordinates\n1 0 0\n2 1.5 -2\nend coordinates\n"
      "elements\n1 1 2 3\nend elements\n");
  std::ostringstream out;
  mesh.PrintToFemview(out, "/a/b/problem.dat");
  EXPECT_EQ(out.str(),
            "    1Cem.dat\n"
            "    2CCOORDE\n"
            " -1    1 0.00000e+00 0.00000e+00 0.00000e+00 \n"
            " -1    2 1.50000e+00-2.00000e+00 0.00000e+00 \n"
            " -3\n"
            "    3CCONECT\n"
            " -1    1   11    1    1\n"
            " -2    1    2\n"
            " -3\n"
            " 9999\n");
  std::ostringstream beam;
  mesh.PrintToFemview(beam, "beam");
  EXPECT_EQ(beam.str().substr(0, 11), "    1Cbeam\n");
}

TEST(Mesh, FemviewElementOfManyNodesTakesTwoLines)
{
  std::string nodes, elem = "7";
  for (int i = 1; i <= 20; ++i) {
    nodes += std::to_string(i) + " 0 0 0\n";
    elem += " " + std::to_string(i);
  }
  OwnedMesh mesh;
  mesh.Read(Block("Hexahedra nnode 20", nodes.c_str(), (elem + " 1\n").c_str()));
  std::ostringstream out;
  mesh.ElemAt(7).PrintToFemview(out);
  EXPECT_EQ(out.str(),
            " -1    7    4    1    1\n"
            " -2    1    2    3    4    5    6    7    8    9   10   11   12   13   14   15\n"
            "   16   17   18   19   20\n");
}

TEST(Mesh, NodesTakenAreDroppedElementsTakenAreAppended)
{
  Mesh mesh(100, 100, 3, Linear, 2);
  Node first(3), taken(3), unnumbered(3);
  first.number = taken.number = 4;
  EXPECT_EQ(mesh.AddPtstoPlex(&first), 4);
  EXPECT_EQ(mesh.AddPtstoPlex(&taken), 4);
  EXPECT_EQ(Find<Node>(*mesh.GiveNodePlex(), 4), &first);
  EXPECT_EQ(mesh.AddPtstoPlex(&unnumbered), 5);
  EXPECT_EQ(unnumbered.number, 0);

  Elem a(&mesh, nullptr), b(&mesh, nullptr), c(&mesh, nullptr);
  a.NewNum(3);
  b.NewNum(3);
  EXPECT_EQ(mesh.AddElemtoPlex(&a), 3);
  EXPECT_EQ(mesh.AddElemtoPlex(&b), 4);
  EXPECT_EQ(b.Num(), 3);
  EXPECT_EQ(mesh.AddElemtoPlex(&c), 5);
  EXPECT_EQ(c.Num(), 0);
}

TEST(Mesh, ConvertToMoreNodesKeepsTheOldOnes)
{
  OwnedMesh mesh;
  mesh.Read(Block("Triangle nnode 3", "1 0 0 0\n2 1 0 0\n3 0 1 0\n", "1 1 2 3 1\n"));
  mesh.ConvertToNewNnode(6);
  EXPECT_EQ(mesh.GiveNnode(), 6);
  EXPECT_EQ(mesh.GiveFvType(), 8);
  EXPECT_EQ(mesh.ElemAt(1)(2), &mesh.NodeAt(3));
  EXPECT_EQ(mesh.ElemAt(1)(5), nullptr);
}

TEST(Mesh, EdgesCompareByTheFirstThenTheSecondNumber)
{
  const int a[] = {1, 5}, b[] = {2, 1}, c[] = {1, 6};
  EXPECT_LT(CompareEdgePointers(a, b), 0);
  EXPECT_LT(CompareEdgePointers(a, c), 0);
  EXPECT_GT(CompareEdgePointers(c, a), 0);
  EXPECT_EQ(CompareEdgePointers(a, a), 0);
}

TEST(Renumber, ALineOfNodesIsNumberedFromOneEnd)
{
  OwnedMesh mesh;
  mesh.Read(Block("Linear nnode 2", "1 3 0 0\n2 0 0 0\n3 4 0 0\n4 1 0 0\n5 2 0 0\n", ""));
  mesh.RenumberNodes();
  // The numbers start at the node at x = 0: of the two nodes farthest from the centroid, the first.
  static const int expected[] = {4, 1, 5, 2, 3};
  for (int old = 1; old <= 5; ++old) {
    EXPECT_EQ(mesh.NodeAt(old).number, expected[old - 1]);
    EXPECT_EQ(mesh.GiveOldNumber(&mesh.NodeAt(old)), old);
  }
}

TEST(Renumber, NodesAtEqualDistanceKeepTheirOrder)
{
  OwnedMesh mesh;
  mesh.Read(Block("Linear nnode 2", "1 1 0 0\n2 0 1 0\n3 0 0 1\n4 -9 -9 -9\n5 0 -1 0\n", ""));
  mesh.RenumberNodes();
  EXPECT_EQ(mesh.NodeAt(4).number, 1);
  EXPECT_EQ(mesh.NodeAt(5).number, 2);
  EXPECT_EQ(mesh.NodeAt(1).number, 3);
  EXPECT_EQ(mesh.NodeAt(2).number, 4);
  EXPECT_EQ(mesh.NodeAt(3).number, 5);
}

TEST(Renumber, TwiceKeepsTheNumbersOfTheFile)
{
  OwnedMesh mesh;
  mesh.Read(Block("Linear nnode 2", "1 3 0 0\n2 0 0 0\n3 4 0 0\n", ""));
  mesh.RenumberNodes();
  mesh.RenumberNodes();
  for (int old = 1; old <= 3; ++old)
    EXPECT_EQ(mesh.GiveOldNumber(&mesh.NodeAt(old)), old);
}

TEST(Renumber, AMeshWithoutNodesStaysAsItIs)
{
  Mesh mesh(100, 100, 3, Linear, 2);
  mesh.RenumberNodes();
  EXPECT_EQ(mesh.GiveOldNumber(1), 1);
}

TEST(Renumber, NullEntriesSortLast)
{
  Node a(3);
  const Node* node = &a;
  const Node* none = nullptr;
  mxnod = &a;
  EXPECT_LT(CompareNodePointers(&node, &none), 0);
  EXPECT_GT(CompareNodePointers(&none, &node), 0);
  EXPECT_EQ(CompareNodePointers(&none, &none), 0);
}

TEST(Renumber, ManyNodesAtEqualDistanceKeepTheirOrder)
{
  constexpr int kNodes = 300;
  constexpr int kStep = 101;  // no common divisor with the number of nodes
  OwnedMesh mesh;
  std::string nodes;
  std::vector<std::pair<int, int>> ranked;  // place along an axis, number
  for (int number = 1; number <= kNodes; ++number) {
    const int key = number * kStep % kNodes;
    const int place = key / 3 + 1;
    int at[3] = {};
    at[key % 3] = place;
    for (const int value : {number, at[0], at[1], at[2]})
      nodes += std::to_string(value) + ' ';
    nodes += '\n';
    ranked.emplace_back(place, number);
  }
  nodes += std::to_string(kNodes + 1) + " -500 -500 -500\n";
  std::sort(ranked.begin(), ranked.end());
  mesh.Read(Block("Linear nnode 2", nodes.c_str(), ""));
  mesh.RenumberNodes();
  EXPECT_EQ(mesh.NodeAt(kNodes + 1).number, 1);
  for (int i = 0; i < kNodes; ++i)
    ASSERT_EQ(mesh.NodeAt(ranked[i].second).number, i + 2);
}

TEST(Renumber, NodesCompareByTheirDistanceFromTheReferenceNode)
{
  Node reference(3), near(3), far(3), opposite(2);
  reference(1) = 10.0;
  near(1) = 7.0;
  far(1) = 14.0;
  opposite(1) = 6.0;
  const Node* n = &near;
  const Node* f = &far;
  const Node* o = &opposite;
  mxnod = &reference;
  EXPECT_LT(CompareNodePointers(&n, &f), 0);
  EXPECT_GT(CompareNodePointers(&f, &n), 0);
  EXPECT_EQ(CompareNodePointers(&f, &o), 0);
  EXPECT_EQ(CompareNodePointers(&n, &n), 0);
  mxnod = nullptr;
}

TEST(Mesh, FemviewWritesZOfSpaceNodes)
{
  OwnedMesh mesh;
  mesh.Read(Block("Linear nnode 2", "1 1 2 3\n2 0.5 0 -0.25\n", ""));
  std::ostringstream out;
  mesh.PrintToFemview(out, "m");
  EXPECT_EQ(out.str(),
            "    1Cm\n"
            "    2CCOORDE\n"
            " -1    1 1.00000e+00 2.00000e+00 3.00000e+00 \n"
            " -1    2 5.00000e-01 0.00000e+00-2.50000e-01 \n"
            " -3\n"
            "    3CCONECT\n"
            " -3\n"
            " 9999\n");
}

TEST(Mesh, FemviewTitleIsTheEndOfTheLastPartOfThePath)
{
  static const struct
  {
    const char* file;
    const char* title;
  } cases[] = {
      {"/a/b/beam", "beam"},   {"models/a", "a"},     {"abcdef", "abcdef"}, {"x/abcdef", "abcdef"},
      {"x/abcdefg", "bcdefg"}, {"abcdefg", "bcdefg"}, {"models/", ""},      {"", ""}};
  for (const auto& c : cases) {
    OwnedMesh mesh;
    std::ostringstream out;
    mesh.PrintToFemview(out, c.file);
    EXPECT_EQ(out.str(),
              std::string("    1C") + c.title + "\n    2CCOORDE\n -3\n    3CCONECT\n -3\n 9999\n");
  }
}

TEST(Mesh, AnElementGetsTheMeshWhereItIsAppended)
{
  Mesh mesh(100, 100, 3, Linear, 2);
  Mesh other(100, 100, 3, Triangle, 3);
  Elem free(&other, nullptr), taken(&other, nullptr), unnumbered(&other, nullptr);
  free.NewNum(7);
  taken.NewNum(7);
  EXPECT_EQ(mesh.AddElemtoPlex(&free), 7);
  EXPECT_EQ(mesh.AddElemtoPlex(&taken), 8);
  EXPECT_EQ(mesh.AddElemtoPlex(&unnumbered), 9);
  EXPECT_EQ(Find<Elem>(*mesh.GiveElemPlex(), 7), &free);
  EXPECT_EQ(Find<Elem>(*mesh.GiveElemPlex(), 8), &taken);
  EXPECT_EQ(Find<Elem>(*mesh.GiveElemPlex(), 9), &unnumbered);
  EXPECT_EQ(free.ElemType(), Triangle);
  EXPECT_EQ(taken.ElemType(), Linear);
  EXPECT_EQ(unnumbered.ElemType(), Linear);
}

TEST(Mesh, ConvertToFewerNodesLeavesTheCorners)
{
  OwnedMesh mesh;
  mesh.Read(Block("Triangle nnode 6", "1 0 0 0\n2 2 0 0\n3 0 2 0\n4 1 0 0\n5 1 1 0\n6 0 1 0\n",
                  "1 1 2 3 4 5 6 9\n"));
  mesh.ConvertToNewNnode(3);
  EXPECT_EQ(mesh.GiveNnode(), 3);
  EXPECT_EQ(mesh.GiveFvType(), 7);
  const Elem& elem = mesh.ElemAt(1);
  EXPECT_EQ(elem.Nnode(), 3);
  EXPECT_EQ(elem.IsInto(&mesh.NodeAt(3)), 3);
  EXPECT_EQ(elem.IsInto(&mesh.NodeAt(4)), 0);
  EXPECT_EQ(elem.GiveMaterialNum(), 9);
  std::ostringstream out;
  out << elem;
  EXPECT_EQ(out.str(), "    1       1    2    3  Mat: 9\n");
  ExpectFatal([&] { mesh.ConvertToNewNnode(4); }, "Unknown Femview type\n");
}

TEST(Mesh, MoreNodesAfterFewerAreNull)
{
  OwnedMesh mesh;
  mesh.Read(Block("Triangle nnode 6", "1 0 0 0\n2 2 0 0\n3 0 2 0\n4 1 0 0\n5 1 1 0\n6 0 1 0\n",
                  "1 1 2 3 4 5 6\n"));
  mesh.ConvertToNewNnode(3);
  mesh.ConvertToNewNnode(6);
  EXPECT_EQ(mesh.GiveFvType(), 8);
  for (int i = 0; i < 6; ++i)
    EXPECT_EQ(mesh.ElemAt(1)(i), i < 3 ? &mesh.NodeAt(i + 1) : nullptr) << i;
}

TEST(Mesh, TheSameNumberOfNodesChangesNothing)
{
  OwnedMesh mesh;
  mesh.Read(Block("Triangle nnode 3", "1 0 0 0\n2 1 0 0\n3 0 1 0\n", "1 1 2 3\n"));
  mesh.ConvertToNewNnode(3);
  EXPECT_EQ(mesh.GiveNnode(), 3);
  EXPECT_EQ(mesh.GiveFvType(), 7);
  EXPECT_EQ(mesh.ElemAt(1)(2), &mesh.NodeAt(3));
}

TEST(Mesh, TheMiddleOfAnElementIsThatOfTheNodesItHas)
{
  OwnedMesh mesh;
  mesh.Read(Block("Triangle nnode 6", "1 0 0 0\n2 6 0 0\n3 0 3 9\n4 9 9 9\n5 9 9 9\n6 9 9 9\n",
                  "1 1 2 3 4 5 6\n"));
  mesh.ConvertToNewNnode(3);
  ReaVec middle;
  mesh.ElemAt(1).MidNode(middle);
  EXPECT_EQ(middle, ReaVec(2.0, 1.0, 3.0));
}

TEST(Mesh, ClearingDeletesAndForgets)
{
  OwnedMesh mesh;
  const std::string block = Block("Linear nnode 2", "1 0 0 0\n2 1 0 0\n", "1 1 2\n");
  for (int round = 0; round < 2; ++round) {
    mesh.Read(block);
    mesh.ClearAllElems();
    EXPECT_EQ(mesh.GiveElemPlex()->Count(), 0);
    EXPECT_EQ(mesh.GiveNodePlex()->Count(), 2);
    mesh.ClearAllNodes();
    EXPECT_EQ(mesh.GiveNodePlex()->Count(), 0);
  }
}

TEST(Mesh, OwnMaterialsAreKnownFromAnyElement)
{
  const char* const nodes = "1 0 0 0\n2 1 0 0\n";
  static const struct
  {
    const char* elems;
    bool own;
  } cases[] = {{"1 1 2 3\n2 2 1\n", false},
               {"1 1 2 3 A=1\n2 2 1 3\n", true},
               {"1 1 2 3\n2 2 1 3 A=1\n", true}};
  for (const auto& c : cases) {
    OwnedMesh mesh;
    EXPECT_FALSE(mesh.HasOwnMaterials());
    mesh.Read(Block("Linear nnode 2", nodes, c.elems));
    EXPECT_EQ(mesh.HasOwnMaterials(), c.own) << c.elems;
  }
}

TEST(Mesh, ListingOfRenumberedNodesAndElements)
{
  OwnedMesh mesh;
  mesh.Read(Block("Linear nnode 2", "1 1 0 0\n2 9 0 0\n3 0 0 0\n", "1 1 3\n"));
  mesh.RenumberNodes();  // 2, 1, 3
  std::ostringstream old, now;
  mesh.PrintTo(old, 1, 0);
  mesh.PrintTo(now, 0, 0);
  EXPECT_NE(old.str().find("\n    1              1 "), std::string::npos);
  EXPECT_NE(old.str().find("\n    1       1    3\n"), std::string::npos);
  EXPECT_NE(now.str().find("\n    2              1 "), std::string::npos);
  EXPECT_NE(now.str().find("\n    1       2    3\n"), std::string::npos);
}

// A node stored without a number has the number that it got when the nodes were renumbered.
TEST(Mesh, ListingOfANodeWithoutAnOldNumber)
{
  Mesh mesh(100, 100, 2, Linear, 2);
  Node first(2), unnumbered(2);
  first.number = 1;
  first(1) = 4.0;
  mesh.AddPtstoPlex(&first);
  mesh.AddPtstoPlex(&unnumbered);
  mesh.RenumberNodes();
  std::ostringstream out;
  mesh.PrintTo(out, 1, 0);
  EXPECT_NE(out.str().find("\n    1              4              0\n"
                           "    2              0              0\n"),
            std::string::npos);
}

TEST(Renumber, RestoringGivesTheNumbersOfTheFileBack)
{
  OwnedMesh mesh;
  mesh.Read(Block("Linear nnode 2", "1 1 0 0\n2 9 0 0\n3 0 0 0\n", ""));
  mesh.RestoreNumbers();
  EXPECT_EQ(mesh.NodeAt(3).number, 3);
  mesh.RenumberNodes();
  mesh.RenumberNodes();
  EXPECT_EQ(mesh.NodeAt(2).number, 1);
  mesh.RestoreNumbers();
  for (int i = 1; i <= 3; ++i) {
    EXPECT_EQ(mesh.NodeAt(i).number, i);
    EXPECT_EQ(mesh.GiveOldNumber(i), i);
  }
}

TEST(MeshReader, OnlyBeamsMayNotHaveEqualNodes)
{
  OwnedMesh mesh;
  mesh.Read(Block("Triangle nnode 3", "1 0 0 0\n2 1 0 0\n", "1 1 2 1\n"));
  EXPECT_EQ(mesh.ElemAt(1)(2), &mesh.NodeAt(1));
}

TEST(MeshReader, CoordinatesBecomeInfiniteInNoUnit)
{
  Units units;
  units.meshLength = 1e300;
  OwnedMesh mesh;
  ExpectFatal([&] { mesh.Read(Block("Linear nnode 2", "1 1 0 0\n2 0 1e10 0\n", ""), &units); },
              "error: node 2 has a coordinate that is not finite\n");
}

TEST(MeshReader, ALaterMeshMayListNoNodes)
{
  OwnedMesh first;
  first.Read(Block("Linear nnode 2", "1 0 0 0\n2 1 0 0\n", "1 1 2\n"));
  Node apart(3);
  apart.number = 4;
  first.AddPtstoPlex(&apart);
  Mesh second(first.GiveNodePlex(), 100, 0, ElemType(0), 0);
  const std::string block = Block("Linear nnode 2", "", "2 2 4\n");
  TextScan text(block);
  second.ReadFromAscii(text, nullptr);
  const Elem& elem = *Find<Elem>(*second.GiveElemPlex(), 2);
  EXPECT_EQ(elem(0), &first.NodeAt(2));
  EXPECT_EQ(elem(1), &apart);
  second.ClearAllElems();
  first.GiveNodePlex()->set_at(4, nullptr);
}

}  // namespace morlen
