#include "model/elem.h"

#include <gtest/gtest.h>

#include <sstream>
#include <string>

#include "base/textscan.h"
#include "model/material.h"
#include "model/mesh.h"
#include "model/node.h"
#include "support/fatal.h"

namespace morlen {

namespace {

// Nodes 1 to 4 and an element of each kind on them.
struct Pieces
{
  Pieces()
  {
    for (int i = 0; i < 4; ++i) {
      nodes[i].number = i + 1;
      nodes[i](1) = i;
      nodes[i](2) = 10 * i;
      tetra(i) = &nodes[i];
    }
    for (int i = 0; i < 3; ++i)
      triangle(i) = &nodes[i];
    for (int i = 0; i < 2; ++i)
      line(i) = &nodes[i];
  }

  Node nodes[4] = {Node(3), Node(3), Node(3), Node(3)};
  Mesh lines{100, 100, 3, Linear, 2};
  Mesh triangles{100, 100, 3, Triangle, 3};
  Mesh tetras{100, 100, 3, Tetrahedra, 4};
  Mesh quads{100, 100, 3, Quadrilateral, 4};
  Elem line{&lines, nullptr};
  Elem triangle{&triangles, nullptr};
  Elem tetra{&tetras, nullptr};
  Elem quad{&quads, nullptr};
};

}  // namespace

TEST(Elem, TakesTypeAndSizesFromItsMesh)
{
  Pieces p;
  EXPECT_EQ(p.triangle.ElemType(), Triangle);
  EXPECT_EQ(p.triangle.Ndime(), 3);
  EXPECT_EQ(p.triangle.Nnode(), 3);
  EXPECT_EQ(p.triangle.Num(), 0);
  EXPECT_EQ(p.triangle.GiveMaterialNum(), 0);
  EXPECT_EQ(p.triangle.IsInBound(), nullptr);
}

TEST(Elem, FacesOfATetrahedronAreCyclic)
{
  Pieces p;
  static const int expected[4][3] = {{1, 2, 3}, {2, 3, 4}, {3, 4, 1}, {4, 1, 2}};
  for (int face = 0; face < 4; ++face) {
    const Elem piece(&p.tetra, face);
    ASSERT_EQ(piece.Nnode(), 3);
    for (int i = 0; i < 3; ++i)
      EXPECT_EQ(piece(i)->number, expected[face][i]);
  }
}

TEST(Elem, FacesOfATriangleAreItsEdges)
{
  Pieces p;
  const Elem edge(&p.triangle, 2);
  ASSERT_EQ(edge.Nnode(), 2);
  EXPECT_EQ(edge(0)->number, 3);
  EXPECT_EQ(edge(1)->number, 1);
}

TEST(Elem, OtherTypesHaveNoFaces)
{
  Pieces p;
  ExpectFatal([&] { Elem(&p.line, 0); },
              "error in Elem::Elem(Elem* el,int face). Linear has no faces\n");
  ExpectFatal([&] { Elem(&p.quad, 0); },
              "error in Elem::Elem(Elem* el,int face). Only Triang. and Tetr. implemented\n");
}

TEST(Elem, ALineSplitAtANode)
{
  Pieces p;
  const Elem first(&p.line, &p.nodes[3], 0, 0, nullptr);
  EXPECT_EQ(first(0)->number, 1);
  EXPECT_EQ(first(1)->number, 4);
  EXPECT_EQ(first.ElemType(), Linear);
  const Elem second(&p.line, &p.nodes[3], 1, 0, nullptr);
  EXPECT_EQ(second(0)->number, 4);
  EXPECT_EQ(second(1)->number, 2);
}

TEST(Elem, APieceOfATriangleEndsInTheNewNode)
{
  Pieces p;
  const Elem piece(&p.triangle, &p.nodes[3], 1, 0, &p.triangles);
  EXPECT_EQ(piece(0)->number, 2);
  EXPECT_EQ(piece(1)->number, 3);
  EXPECT_EQ(piece(2)->number, 4);
}

TEST(Elem, CopyWithOneNodeMore)
{
  Pieces p;
  const Elem copy(&p.triangle, &p.nodes[3], &p.tetras, &p.triangle);
  for (int i = 0; i < 4; ++i)
    EXPECT_EQ(copy(i)->number, i + 1);
  EXPECT_EQ(copy.IsInBound(), &p.triangle);
}

TEST(Elem, PositionsAndMiddle)
{
  Pieces p;
  EXPECT_EQ(p.triangle.IsInto(&p.nodes[2]), 3);
  EXPECT_EQ(p.triangle.IsInto(&p.nodes[3]), 0);
  ReaVec middle;
  p.triangle.MidNode(middle);
  EXPECT_EQ(middle.Size(), 3);
  EXPECT_EQ(middle(1), 1.0);
  EXPECT_EQ(middle(2), 10.0);
}

TEST(Elem, GiveEINeedsAMaterial)
{
  Pieces p;
  VoidPlex materials(100);
  p.line.NewNum(12);
  double a = 0.0, b = 0.0, c = 0.0;
  ExpectFatal([&] { p.line.GiveEI(&materials, a, b, c); },
              "error: Material in element: 12 doesn't exist\n");
}

TEST(Node, ReadsByItsDimension)
{
  Node plane(2), space(3);
  TextScan text("3 1.5 2 words\n4 1 2 3\nend");
  EXPECT_EQ(plane.ReadFromAscii(text), 1);
  EXPECT_EQ(plane.number, 3);
  EXPECT_EQ(plane(1), 1.5);
  EXPECT_EQ(space.ReadFromAscii(text), 1);
  EXPECT_EQ(space(3), 3.0);
  EXPECT_EQ(space.ReadFromAscii(text), 0);
}

TEST(Node, Listing)
{
  Node plane(2), space(3);
  plane.number = 7;
  plane(1) = 1.0 / 3.0;
  space.number = 12345;
  space(3) = -2e10;
  std::ostringstream out;
  out << plane << space;
  EXPECT_EQ(out.str(),
            "    7       0.333333              0\n"
            "12345              0              0         -2e+10\n");
}

TEST(Node, DistanceOfAPlaneAndASpacePoint)
{
  Node plane(2), space(3);
  plane(1) = 3.0;
  space(2) = 4.0;
  space(3) = 12.0;
  EXPECT_EQ(dist2(&plane, &space), 169.0);
  EXPECT_EQ(dist2(&space, &plane), 169.0);
}

TEST(Elem, MaterialNumberAfterTheNodes)
{
  static const struct
  {
    const char* line;
    int material;
  } cases[] = {{"1 1 2 7", 7},           {"1 1 2 7 \t\r\n", 7},
               {"1 1 2\n", 0},           {"1 1 2 0\n", 0},
               {"1 1 2 = 7\n", 7},       {"1 1 2:7\n", 7},
               {"1 1 2 010", 8},         {"1 1 2 0x10", 16},
               {"1 1 2 -3\n", -3},       {"1 1 2 123456789", 123456789},
               {"1 1 2 7.5\n", 7},       {"1 1 2 word\n", 0},
               {"1 1 2 +7\n", 7},        {"1 1 2 # 7 E=1\n", 0},
               {"1 1 2#7 x\n", 0},       {"1 1 2 7 # E=1\n", 7},
               {"1\t1\t2\t7\t# x\n", 7}, {"1 1 2 7 \v\f\n", 7}};
  for (const auto& c : cases) {
    Mesh mesh(100, 100, 3, Linear, 2);
    Elem elem(&mesh, nullptr);
    TextScan text(c.line);
    ASSERT_EQ(elem.ReadFromAscii(text, mesh.GiveNodePlex(), nullptr), 1) << c.line;
    EXPECT_EQ(elem.GiveMaterialNum(), c.material) << c.line;
    EXPECT_FALSE(elem.HasOwnMaterial()) << c.line;
    EXPECT_TRUE(text.AtEnd()) << c.line;
  }
}

TEST(Elem, GiveEIInTheOrderOfItsNames)
{
  Pieces p;
  Material numbered;
  numbered.E1 = 2.0;
  numbered.Iy = 3.0;
  numbered.Iz = 5.0;
  numbered.A = 7.0;
  VoidPlex materials(100);
  materials.set_at(4, &numbered);
  p.line.NewMaterial(4);
  double EIy = 0.0, EIz = 0.0, EA = 0.0;
  p.line.GiveEI(&materials, EIy, EIz, EA);
  EXPECT_EQ(EIy, 6.0);
  EXPECT_EQ(EIz, 10.0);
  EXPECT_EQ(EA, 14.0);
}

// Reads the line of the pieces from a record, and composes the material of the element.
void ReadLine(Pieces& p, const char* record, const VoidPlex& materials)
{
  TextScan text(record);
  VoidPlex nodes(100);
  for (int i = 0; i < 2; ++i)
    nodes.set_at(i + 1, &p.nodes[i]);
  ASSERT_EQ(p.line.ReadFromAscii(text, &nodes, nullptr), 1);
  p.line.ComposeYourMaterial(&materials);
}

TEST(Elem, NegativeItemsReplaceTheValuesOfTheMaterial)
{
  Pieces p;
  Material numbered;
  numbered.nuXY = numbered.nuYX = 0.3;
  numbered.Weight = 25.0;
  numbered.A = 7.0;
  VoidPlex materials(100);
  materials.set_at(4, &numbered);
  ReadLine(p, "1 1 2 4 nu=-0.2 Weight=-25", materials);
  const Material* const own = p.line.GiveMaterial(&materials);
  EXPECT_EQ(own->nuXY, -0.2);
  EXPECT_EQ(own->nuYX, -0.2);
  EXPECT_EQ(own->Weight, -25.0);
  EXPECT_EQ(own->A, 7.0);
  EXPECT_EQ(p.line.GiveMaterialNum(), 0);
  EXPECT_EQ(p.line.GiveNumberedMaterial(), 4);
}

TEST(Elem, GiveEIOfAMaterialOfItsOwn)
{
  Pieces p;
  Material numbered;
  numbered.E1 = 100.0;
  numbered.A = 7.0;
  VoidPlex materials(100);
  materials.set_at(4, &numbered);
  ReadLine(p, "1 1 2 4 E=2 Iy=3 Iz=5", materials);
  double EIy = 0.0, EIz = 0.0, EA = 0.0;
  p.line.GiveEI(&materials, EIy, EIz, EA);
  EXPECT_EQ(EIy, 6.0);
  EXPECT_EQ(EIz, 10.0);
  EXPECT_EQ(EA, 14.0);
}

TEST(Elem, APieceBelongsToTheGivenMesh)
{
  Pieces p;
  Mesh plane(100, 100, 2, Linear, 2);
  for (const int face : {0, 1}) {
    const Elem given(&p.line, &p.nodes[3], face, 0, &plane);
    EXPECT_EQ(given.Ndime(), 2) << face;
    const Elem same(&p.line, &p.nodes[3], face, 0, nullptr);
    EXPECT_EQ(same.Ndime(), 3) << face;
  }
}

}  // namespace morlen
