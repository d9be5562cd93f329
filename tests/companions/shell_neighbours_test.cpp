#include "export/shell_neighbours.h"

#include <gtest/gtest.h>

#include <cmath>
#include <vector>

namespace morlen {

namespace {

constexpr std::array<Vec3, 3> kGlobal = {{{1, 0, 0}, {0, 1, 0}, {0, 0, 1}}};

// Two triangles on the edge of the nodes 1 and 2, and the nodes 4 and 5 beside them.
model::Model Two()
{
  model::Model model;
  model.components = 6;
  model.nodes = {{1, {0, 0, 0}}, {2, {1, 0, 0}}, {3, {0, 1, 0}},
                 {4, {1, 1, 0}}, {5, {1, 0, 1}}, {6, {0.5, 0.5, 0}}};
  model.materials.resize(3);
  for (model::Material& material : model.materials)
    material.t = 0.1;
  return model;
}

model::Element& Add(model::Model& model, const std::vector<int>& nodes,
                    model::Kind kind = model::Kind::Shell)
{
  model::Element element{};
  element.kind = kind;
  element.nodeCount = static_cast<int>(nodes.size());
  std::copy(nodes.begin(), nodes.end(), element.nodes.begin());
  element.axes = kGlobal;
  return model.elements.emplace_back(element);
}

model::Model Joined()
{
  model::Model model = Two();
  Add(model, {0, 1, 2});
  Add(model, {3, 2, 1});
  return model;
}

// Whether the two triangles are neighbours; they must agree on it.
bool AreNeighbours(const model::Model& model)
{
  const ShellNeighbours neighbours(model);
  EXPECT_EQ(neighbours.Beyond(0, 1) == 1, neighbours.Beyond(1, 1) == 0);
  EXPECT_EQ(neighbours.Beyond(0, 0), -1);
  EXPECT_EQ(neighbours.Beyond(0, 2), -1);
  return neighbours.Beyond(0, 1) == 1;
}

model::Support Held(int node, const std::array<int, 6>& flags)
{
  model::Support support{};
  support.node = node;
  support.flags = flags;
  return support;
}

}  // namespace

TEST(ShellNeighbours, AreBeyondACommonEdge)
{
  const model::Model model = Joined();
  EXPECT_TRUE(AreNeighbours(model));
  const ShellNeighbours neighbours(model);
  ASSERT_EQ(neighbours.At(1).size(), 2u);
  EXPECT_EQ(neighbours.At(1)[0].i, 1);
  EXPECT_EQ(neighbours.At(1)[1].element, 1);
  EXPECT_EQ(neighbours.At(1)[1].i, 2);
  EXPECT_TRUE(neighbours.At(4).empty());
}

TEST(ShellNeighbours, EndWhereForcesJump)
{
  model::Model beam = Joined();
  Add(beam, {2, 1}, model::Kind::Beam);
  EXPECT_FALSE(AreNeighbours(beam));
  model::Model besides = Joined();
  Add(besides, {0, 1}, model::Kind::Beam);
  EXPECT_TRUE(AreNeighbours(besides));
  model::Model wall = Joined();
  Add(wall, {1, 4, 2});
  EXPECT_FALSE(AreNeighbours(wall));
  model::Model thickness = Joined();
  thickness.elements[1].material = 1;
  EXPECT_TRUE(AreNeighbours(thickness));
  thickness.materials[1].t = 0.2;
  EXPECT_FALSE(AreNeighbours(thickness));
  model::Model mesh = Joined();
  mesh.elements[1].mesh = 1;
  EXPECT_FALSE(AreNeighbours(mesh));
  model::Model fold = Joined();
  fold.elements[1].axes = {{{1, 0, 0}, {0, 0, 1}, {0, -1, 0}}};
  EXPECT_FALSE(AreNeighbours(fold));
}

TEST(ShellNeighbours, EndAtBeamsOnHalfEdges)
{
  model::Model model = Two();
  Add(model, {0, 1, 2, 4, 5, 4});
  Add(model, {3, 2, 1, 4, 5, 4});
  EXPECT_TRUE(AreNeighbours(model));
  Add(model, {5, 2}, model::Kind::Beam);
  EXPECT_FALSE(AreNeighbours(model));
}

TEST(ShellNeighbours, EndAtLineSupportsOnly)
{
  model::Model line = Joined();
  line.supports = {Held(1, {0, 0, 1}), Held(2, {0, 0, 2})};
  EXPECT_FALSE(AreNeighbours(line));
  // Supports of one node, of two components, or of the whole plane are no line.
  model::Model one = Joined();
  one.supports = {Held(1, {1, 1, 1, 1, 1, 1})};
  EXPECT_TRUE(AreNeighbours(one));
  model::Model two = Joined();
  two.supports = {Held(1, {0, 0, 1}), Held(2, {1, 0, 0})};
  EXPECT_TRUE(AreNeighbours(two));
  model::Model plane = line;
  plane.supports.push_back(Held(0, {0, 0, 1}));
  EXPECT_TRUE(AreNeighbours(plane));
}

}  // namespace morlen
