#include "problem/load_set.h"

#include <cmath>
#include <utility>

#include "model/constraint.h"
#include "model/nodal_load.h"
#include "model/node.h"
#include "numeric/plex_range.h"
#include "problem/elem_loads.h"
#include "problem/problem.h"

namespace morlen {

namespace {

// A copy of a chain of loads, in its order.
std::unique_ptr<BaseElemLoads> CopyChain(const BaseElemLoads& first)
{
  std::unique_ptr<BaseElemLoads> chain = first.Copy();
  for (const BaseElemLoads* load = first.Next(); load; load = load->Next())
    chain->Append(load->Copy());
  return chain;
}

// -0.0 counts: it would be printed.
bool IsPlainZero(double value)
{
  return value == 0.0 && !std::signbit(value);
}

void ExtractSettlements(Node& node, std::vector<LoadSet::Settlement>& settlements)
{
  if (!node.constraint)
    return;
  Constraint& support = *node.constraint;
  for (int k = 0; k < kMaxComponents; ++k) {
    if (support.flags[k] == Constraint::kPrescribed && !IsPlainZero(support.values[k]))
      settlements.push_back({&node, k, std::exchange(support.values[k], 0.0)});
  }
}

}  // namespace

LoadSet::LoadSet() = default;
LoadSet::LoadSet(LoadSet&&) noexcept = default;
LoadSet& LoadSet::operator=(LoadSet&&) noexcept = default;
LoadSet::~LoadSet() = default;

LoadSet LoadSet::Copy() const
{
  LoadSet copy;
  for (const AtNode& at : nodal)
    copy.nodal.push_back({at.node, std::make_unique<Load>(*at.load)});
  for (const OnElement& on : onElements)
    copy.onElements.push_back({on.number, CopyChain(*on.chain)});
  copy.settlements = settlements;
  copy.selfWeight = selfWeight;
  copy.name = name;
  return copy;
}

LoadSet ExtractLoads(Problem& problem)
{
  LoadSet loads;
  for (Node& node : Each<Node>(problem.GiveNodes())) {
    if (node.load)
      loads.nodal.push_back({&node, std::move(node.load)});
    ExtractSettlements(node, loads.settlements);
  }
  for (const auto [number, chain] : EachNumbered<BaseElemLoads>(problem.elemLoads))
    loads.onElements.push_back({number, std::unique_ptr<BaseElemLoads>(&chain)});
  problem.elemLoads.clear();
  loads.selfWeight = std::exchange(problem.selfWeight, false);
  return loads;
}

void InstallLoads(LoadSet&& loads, Problem& problem)
{
  for (LoadSet::AtNode& at : loads.nodal)
    at.node->load = std::move(at.load);
  for (LoadSet::OnElement& on : loads.onElements)
    Store(problem.elemLoads, on.number, std::move(on.chain));
  for (const LoadSet::Settlement& s : loads.settlements)
    s.node->constraint->values[s.component] = s.value;
  problem.selfWeight = loads.selfWeight;
}

LoadsInPlace::LoadsInPlace(Problem& problem_, LoadSet& loads_) : problem(problem_), loads(loads_)
{
  InstallLoads(std::move(loads), problem);
}

LoadsInPlace::~LoadsInPlace()
{
  loads = ExtractLoads(problem);
}

}  // namespace morlen
