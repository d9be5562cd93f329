#pragma once

#include <memory>
#include <tuple>
#include <vector>

#include "base/node_components.h"
#include "model/constraint.h"
#include "model/node.h"

namespace morlen::check {

/// Springs at single equations, which the destructor takes away again.
class AddedSprings
{
public:
  explicit AddedSprings(const NodeComponents& ofNodes) : components(ofNodes) {}
  AddedSprings(const AddedSprings&) = delete;
  AddedSprings& operator=(const AddedSprings&) = delete;
  ~AddedSprings()
  {
    for (auto one = saved.rbegin(); one != saved.rend(); ++one) {
      if (one->isNew)
        one->node.constraint.reset();
      else
        std::tie(one->node.constraint->flags[one->k], one->node.constraint->values[one->k]) =
            std::tie(one->flag, one->value);
    }
  }

  /// Adds a spring at component k (from 0) of a node, which is free or has a spring.
  void Add(Node& node, int k, double stiffness)
  {
    const bool isNew = !node.constraint;
    if (isNew)
      node.constraint = std::make_unique<Constraint>(components);
    int& flag = node.constraint->flags[k];
    double& value = node.constraint->values[k];
    saved.push_back({node, k, isNew, flag, value});
    value = stiffness + (flag == Constraint::kSpring ? value : 0.0);
    flag = Constraint::kSpring;
  }

private:
  struct Saved
  {
    Node& node;
    int k;
    bool isNew;
    int flag;
    double value;
  };

  NodeComponents components;
  std::vector<Saved> saved;
};

}  // namespace morlen::check
