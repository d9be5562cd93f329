#include "model/node_places.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <memory>
#include <utility>
#include <vector>

#include "model/elem.h"
#include "model/mesh.h"
#include "model/node.h"
#include "numeric/plex_range.h"

namespace morlen {
namespace {

TEST(NodePlaces, PiecesAreNullAndApart)
{
  Node node(3);
  NodePlaces places;
  Node** const two = places.Acquire(2);
  Node** const three = places.Acquire(3);
  two[0] = two[1] = &node;
  for (int i = 0; i < 3; ++i)
    EXPECT_EQ(three[i], nullptr);
}

// The pieces fill many chunks. A piece that is larger than a chunk gets a chunk for itself.
TEST(NodePlaces, StayWhereTheyAreAsTheirNumberGrows)
{
  constexpr int kPieces = 200000;
  constexpr int kHuge = 1000000;
  std::vector<Node*> marks;
  for (int i = 0; i < 7; ++i)
    marks.push_back(reinterpret_cast<Node*>(static_cast<std::uintptr_t>(8 * i + 8)));
  NodePlaces places;
  std::vector<Node**> pieces;
  for (int i = 0; i < kPieces; ++i) {
    pieces.push_back(places.Acquire(1 + i % 7));
    std::fill_n(pieces.back(), 1 + i % 7, marks[i % 7]);
  }
  Node** const huge = places.Acquire(kHuge);
  EXPECT_EQ(huge[kHuge - 1], nullptr);
  huge[0] = huge[kHuge - 1] = marks[0];
  for (int i = 0; i < kPieces; ++i) {
    for (int k = 0; k < 1 + i % 7; ++k)
      ASSERT_EQ(pieces[i][k], marks[i % 7]) << i;
  }
}

TEST(ElemPlaces, AnElementWithoutAMeshOwnsItsPlaces)
{
  Node node(3);
  Elem elem(4, nullptr, nullptr);
  EXPECT_EQ(elem.Nnode(), 4);
  for (int i = 0; i < 4; ++i)
    EXPECT_EQ(elem(i), nullptr);
  elem(3) = &node;
  elem.IncreaseNnode(10);
  EXPECT_EQ(elem.Nnode(), 10);
  EXPECT_EQ(elem(3), &node);
  EXPECT_EQ(elem(9), nullptr);
  EXPECT_EQ(Elem(0, nullptr, nullptr).Nnode(), 0);
}

// The first mesh, which owned the places, is deleted after the change.
TEST(ElemPlaces, AnElementKeepsItsNodesInAnotherMesh)
{
  Node a(3), b(3);
  Mesh to(100, 100, 3, Linear, 2);
  auto from = std::make_unique<Mesh>(100, 100, 3, Linear, 2);
  Elem elem(from.get(), nullptr);
  elem(0) = &a;
  elem(1) = &b;
  Node** const before = &elem(0);
  elem.NewMesh(&to);
  EXPECT_NE(&elem(0), before);
  from.reset();
  EXPECT_EQ(elem(0), &a);
  EXPECT_EQ(elem(1), &b);
  elem.NewMesh(nullptr);
  EXPECT_EQ(elem.Nnode(), 2);
  EXPECT_EQ(elem(1), &b);
  elem.NewMesh(&to);
  EXPECT_EQ(elem(0), &a);
}

TEST(ElemPlaces, AMeshOfMoreNodesGivesNullPlacesToo)
{
  Node corners[3] = {Node(3), Node(3), Node(3)};
  Mesh triangles(100, 100, 3, Triangle, 3), sixNodes(100, 100, 3, Triangle, 6);
  Elem triangle(&triangles, nullptr);
  for (int i = 0; i < 3; ++i)
    triangle(i) = &corners[i];
  triangle.NewMesh(&sixNodes);
  for (int i = 0; i < triangle.Nnode(); ++i)
    EXPECT_EQ(triangle(i), i < 3 ? &corners[i] : nullptr);
}

TEST(ElemPlaces, AreNoFewerThanTheNodesOfTheMesh)
{
  Mesh tetras(100, 100, 3, Tetrahedra, 10);
  Elem elem(4, &tetras, nullptr);
  elem.IncreaseNnode(6);
  for (int i = 0; i < elem.Nnode(); ++i)
    EXPECT_EQ(elem(i), nullptr);
}

// After a change to fewer nodes an element drops the others, which may be deleted.
TEST(ElemPlaces, SixThenThreeThenSixNodesLeaveThreeNullPlaces)
{
  Node nodes[6] = {Node(3), Node(3), Node(3), Node(3), Node(3), Node(3)};
  Mesh mesh(100, 100, 3, Triangle, 6);
  Elem elem(&mesh, nullptr);
  mesh.GiveElemPlex()->set_at(1, &elem);
  for (int i = 0; i < 6; ++i)
    elem(i) = &nodes[i];
  mesh.ConvertToNewNnode(3);
  EXPECT_EQ(elem.Nnode(), 3);
  EXPECT_EQ(elem(2), &nodes[2]);
  mesh.ConvertToNewNnode(6);
  for (int i = 0; i < 6; ++i)
    EXPECT_EQ(elem(i), i < 3 ? &nodes[i] : nullptr);
}

TEST(ElemPlaces, AMeshCanBeFilledAgain)
{
  Node node(3);
  Mesh mesh(100, 100, 3, Linear, 2);
  for (int round = 0; round < 2; ++round) {
    for (int i = 1; i <= 1000; ++i) {
      auto elem = std::make_unique<Elem>(&mesh, nullptr);
      EXPECT_EQ((*elem)(1), nullptr);
      (*elem)(1) = &node;
      Store(*mesh.GiveElemPlex(), i, std::move(elem));
    }
    mesh.ClearAllElems();
  }
}

}  // namespace
}  // namespace morlen
