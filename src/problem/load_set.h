#pragma once

#include <memory>
#include <string>
#include <vector>

namespace morlen {

class BaseElemLoads;
class Load;
class Node;
struct Problem;

/// All that acts on a problem and is not part of its structure: loads at nodes and on elements,
/// self-weight, and the values of prescribed displacements. The nodes are those of the problem.
struct LoadSet
{
  struct AtNode
  {
    Node* node;
    std::unique_ptr<Load> load;
  };
  struct OnElement
  {
    int number;
    std::unique_ptr<BaseElemLoads> chain;
  };
  struct Settlement
  {
    Node* node;
    int component;  ///< from 0
    double value;   ///< in the axes of the support
  };

  LoadSet();
  LoadSet(LoadSet&&) noexcept;
  LoadSet& operator=(LoadSet&&) noexcept;
  ~LoadSet();

  LoadSet Copy() const;

  std::vector<AtNode> nodal;
  std::vector<OnElement> onElements;
  std::vector<Settlement> settlements;  ///< the values other than 0
  bool selfWeight = false;
  std::string name;  ///< of the case, for messages; may be empty
};

/// Moves the loads out of a problem: it then has none, no weight, and its prescribed displacements
/// are 0.
LoadSet ExtractLoads(Problem& problem);

/// Moves loads into a problem that has none.
void InstallLoads(LoadSet&& loads, Problem& problem);

/// The loads of a problem that has none, until the scope ends. Then they are in the set again.
class LoadsInPlace
{
public:
  LoadsInPlace(Problem& problem, LoadSet& loads);
  LoadsInPlace(const LoadsInPlace&) = delete;
  LoadsInPlace& operator=(const LoadsInPlace&) = delete;
  ~LoadsInPlace();

private:
  Problem& problem;
  LoadSet& loads;
};

}  // namespace morlen
