// Motions of a structure in words.
//
// The nodes that move are compared with the simplest motions in this order: a rotation in place,
// the same displacement of all, a rotation of all about one axis, parallel displacements. The
// reason follows from the elements at these nodes: a hinge that takes part, or else a group that is
// a whole part of the model, which its supports do not hold, or that hangs on the few nodes on the
// axis.

#include "assembly/motion_words.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <iterator>
#include <optional>
#include <utility>
#include <vector>

#include "assembly/node_motions.h"
#include "model/elem.h"
#include "model/node.h"

namespace morlen {

namespace {

constexpr std::size_t kMostNamed = 6;
constexpr std::size_t kMostHolding = 6;

/// "node 2", "nodes 2 and 5", "nodes 1, 2, 3, 4, 5 and 7 others". `noun` is the singular.
std::string Listed(const char* noun, std::vector<int> numbers)
{
  std::sort(numbers.begin(), numbers.end());
  numbers.erase(std::unique(numbers.begin(), numbers.end()), numbers.end());
  std::string text = noun + std::string(numbers.size() > 1 ? "s" : "");
  const std::size_t named = numbers.size() > kMostNamed ? kMostNamed - 1 : numbers.size();
  for (std::size_t i = 0; i < named; ++i) {
    const bool isLast = i + 1 == numbers.size();
    text += (i == 0 ? " " : isLast ? " and " : ", ") + std::to_string(numbers[i]);
  }
  if (named < numbers.size())
    text += " and " + std::to_string(numbers.size() - named) + " others";
  return text;
}

std::string Tuple(const ReaVec& p, double size)
{
  char text[100];
  const auto shown = [size](double value) { return std::fabs(value) < 1e-9 * size ? 0.0 : value; };
  std::snprintf(text, sizeof text, "(%.4g, %.4g, %.4g)", shown(p(1)), shown(p(2)), shown(p(3)));
  return text;
}

/// "x", "y", "z", or the components of the unit vector, whose largest component is positive.
std::string DirectionName(const ReaVec& d)
{
  constexpr double kAlmostOne = 1.0 - kTurnsOnly;
  int largest = 1;
  for (int k = 2; k <= 3; ++k) {
    if (std::fabs(d(k)) > std::fabs(d(largest)) * (1.0 + kTurnsOnly))
      largest = k;
  }
  const ReaVec unit = d / std::copysign(d.modul(), d(largest));
  return unit(largest) > kAlmostOne ? std::string(1, "xyz"[largest - 1]) : Tuple(unit, 1.0);
}

std::string WithReason(const std::string& text, const std::string& reason)
{
  return reason.empty() ? text : text + ": " + reason;
}

class MotionWords
{
public:
  MotionWords(const Problem& problem, const ReaVecV& motion) : motions(problem, motion) {}
  MotionInWords Describe() const;

private:
  int NodeForPlace() const;
  std::string Nodes(const std::vector<const NodeMotion*>& nodes) const;
  std::string Turning() const;
  std::string Rotating(const RigidMotion& rigid) const;
  std::string PartName() const;
  std::string Along() const { return " can move along " + DirectionName(motions.lead->u); }
  std::string Group(const RigidMotion& rigid, const std::string& verb) const;
  std::string HingesOrSpin() const;
  std::string Hanging() const;

  NodeMotions motions;
};

int MotionWords::NodeForPlace() const
{
  if (motions.IsInFile(*motions.lead->node))
    return motions.NumberInFile(*motions.lead->node);
  for (const Elem* elem : motions.elements) {
    for (int i = 0; i < elem->Nnode(); ++i) {
      if ((*elem)(i) == motions.lead->node)
        return motions.NumberInFile(*(*elem)(0));
    }
  }
  return 0;
}

// Nodes that the preparation has added are not named.
std::string MotionWords::Nodes(const std::vector<const NodeMotion*>& nodes) const
{
  std::vector<int> numbers;
  for (const NodeMotion* one : nodes) {
    if (motions.IsInFile(*one->node))
      numbers.push_back(motions.NumberInFile(*one->node));
  }
  if (numbers.empty())
    return "the middle of an edge at node " + std::to_string(NodeForPlace());
  return Listed("node", numbers);
}

// The beams that spin and the hinges that take part; empty when there are none.
std::string MotionWords::HingesOrSpin() const
{
  const std::vector<int> spinning =
      motions.turnsOnly ? motions.SpinningBeams() : std::vector<int>();
  const std::vector<int> hinged = motions.BeamsAtWork();
  std::string reason;
  if (!spinning.empty())
    reason = Listed("beam", spinning) +
             (spinning.size() > 1 ? " spin about their own axes" : " spins about its own axis");
  const std::string link = reason.empty() ? "" : "; ";
  if (!hinged.empty())
    return reason + link + "the hinges of " + Listed("beam", hinged) + " allow it";
  return motions.turnsOnly && motions.moving.size() == motions.part.size()
             ? reason + link + "no support prevents it"
             : reason;
}

// The few nodes at rest on which a rigid group hangs; empty when there are more.
std::string MotionWords::Hanging() const
{
  if (motions.holding.empty() || motions.holding.size() > kMostHolding)
    return "";
  std::vector<int> numbers;
  for (const Elem* elem : motions.elements)
    numbers.push_back(elem->Num());
  return Listed("element", numbers) + (numbers.size() > 1 ? " hang on " : " hangs on ") +
         Nodes(motions.holding) + " only";
}

// Nodes that turn in their places.
std::string MotionWords::Turning() const
{
  const std::string about = " can turn about " + DirectionName(motions.lead->w);
  if (motions.AreAllParallel())
    return Nodes(motions.moving) + about;
  return Nodes({motions.lead}) + about + ", and " + std::to_string(motions.moving.size() - 1) +
         " other nodes turn with it";
}

std::string MotionWords::PartName() const
{
  const auto nodes = std::count_if(motions.all.begin(), motions.all.end(),
                                   [](const NodeMotion& one) { return one.node != nullptr; });
  if (motions.part.size() == static_cast<std::size_t>(nodes))
    return "the whole model";
  int lowest = motions.NumberInFile(*motions.part.front()->node);
  for (const NodeMotion* one : motions.part)
    lowest = std::min(lowest, motions.NumberInFile(*one->node));
  return "the part of node " + std::to_string(lowest);
}

// A group that moves as a rigid body. A whole part has other reasons than a group in it.
std::string MotionWords::Group(const RigidMotion& rigid, const std::string& verb) const
{
  if (motions.elements.empty())
    return Nodes({motions.lead}) + verb + ": it belongs to no element";
  const std::string hinges = HingesOrSpin();
  if (motions.IsWholePart(rigid)) {
    const std::vector<const NodeMotion*> idle = motions.IdleRotations(rigid);
    std::string support =
        idle.empty() ? "no support prevents it"
                     : "the rotation held at " + Nodes(idle) + " does not hold the elements";
    if (motions.HasHingedEndsAtSupports(rigid))
      support += "; held rotations do not hold hinged beam ends";
    return WithReason(PartName() + verb, hinges.empty() ? support : hinges);
  }
  return WithReason(Nodes(motions.moving) + verb, hinges.empty() ? Hanging() : hinges);
}

std::string MotionWords::Rotating(const RigidMotion& rigid) const
{
  const double turn = rigid.w.modul();
  const ReaVec toAxis = VectorProd(rigid.w, rigid.t) / (turn * turn);
  const ReaVec onAxis = rigid.centre + toAxis;
  double size = onAxis.modul();
  for (const NodeMotion* one : motions.moving)
    size = std::max(size, one->place.modul());
  const auto onIt = [&](const std::vector<const NodeMotion*>& nodes) {
    std::vector<const NodeMotion*> found;
    std::copy_if(nodes.begin(), nodes.end(), std::back_inserter(found), [&](const auto* one) {
      const ReaVec r = one->place - onAxis;
      return motions.IsInFile(*one->node) &&
             VectorProd(r, rigid.w).modul() <= kTurnsOnly * size * turn;
    });
    return found;
  };
  std::vector<const NodeMotion*> through = onIt(motions.holding);
  if (through.empty())
    through = onIt(motions.part);
  const bool screw = std::fabs(rigid.w * rigid.t) > kSmall * turn * motions.largestU;
  const std::string name = DirectionName(rigid.w);
  std::string verb =
      name.size() == 1 ? " can turn about " + name : " can turn about the axis " + name;
  verb += " through " + (through.empty() ? Tuple(onAxis, size) : Nodes(through));
  return Group(rigid, verb + (screw ? " while moving along it" : ""));
}

MotionInWords MotionWords::Describe() const
{
  if (!motions.lead)
    return {};
  const auto described = [this](const std::string& text) {
    return MotionInWords{NodeForPlace(), text};
  };
  if (motions.turnsOnly)
    return described(WithReason(
        Turning(), motions.elements.empty() ? "it belongs to no element" : HingesOrSpin()));
  if (const std::optional<RigidMotion> rigid = motions.OwnRotation())
    return described(Rotating(*rigid));
  if (motions.AreEqual())
    return described(Group(
        {.centre = motions.lead->place, .t = motions.lead->u, .w = {0.0, 0.0, 0.0}}, Along()));
  const bool parallel = motions.AreAllParallel();
  // Two nodes fit some rotation in any case.
  if (!(parallel && motions.moving.size() == 2)) {
    if (const std::optional<RigidMotion> rigid = motions.FittedRotation())
      return described(Rotating(*rigid));
  }
  const std::string most = ", " + Nodes({motions.lead}) + " most";
  const std::string verb =
      parallel ? Along() + most : " can move" + most + ", along " + DirectionName(motions.lead->u);
  return described(WithReason(Nodes(motions.moving) + verb, HingesOrSpin()));
}

}  // namespace

MotionInWords DescribeMotion(const Problem& problem, const ReaVecV& motion)
{
  return MotionWords(problem, motion).Describe();
}

}  // namespace morlen
