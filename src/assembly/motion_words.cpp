// Motions of a structure in words.
//
// In a motion without energy every element moves as a rigid body, and so do elements that are
// connected rigidly. The nodes that move are compared with the simplest motions in this order: a
// rotation in place, the same displacement of all, a rotation of all about one axis, parallel
// displacements. A rotation is that of the node that moves most, or, for nodes without rotations or
// with hinges, the one that fits the displacements best. The reason follows from the elements at
// these nodes. A hinge takes part when the end of its beam turns against the chord of the beam.
// Without such a hinge, a group that turns about one axis either is a whole part of the model,
// which its supports do not hold, or hangs on the few nodes on that axis.

#include "assembly/motion_words.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <iterator>
#include <numeric>
#include <optional>
#include <utility>
#include <vector>

#include "assembly/element_assembly.h"
#include "assembly/element_family.h"
#include "assembly/free_equations.h"
#include "assembly/solve.h"
#include "model/constraint.h"
#include "model/mesh.h"
#include "model/node.h"
#include "numeric/plex_range.h"
#include "problem/problem.h"
#include "solvers/element_blocks.h"

namespace morlen {

namespace {

/// Displacements and deviations below this part of the largest displacement count as none.
constexpr double kSmall = 1e-3;
/// A motion whose displacements are below this part of its rotations times the length only turns.
constexpr double kTurnsOnly = 1e-6;
constexpr std::size_t kMostNamed = 6;
constexpr std::size_t kMostHolding = 6;

struct NodeMotion
{
  const Node* node = nullptr;  ///< null where no node has the number
  ReaVec place{0.0, 0.0, 0.0};
  ReaVec u{0.0, 0.0, 0.0};
  ReaVec w{0.0, 0.0, 0.0};
};

/// u = t + w × (place - centre).
struct RigidMotion
{
  ReaVec At(const ReaVec& place) const
  {
    const ReaVec r = place - centre;
    return t + VectorProd(w, r);
  }

  ReaVec centre, t, w;
};

ReaVec InSpace(const Node& node)
{
  return {node(1), node(2), node.Size() == 3 ? node(3) : 0.0};
}

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

bool AreParallel(const ReaVec& a, const ReaVec& b)
{
  return VectorProd(a, b).modul() <= kSmall * a.modul() * b.modul();
}

/// Takes elements and keeps the largest strain energy of one of them for given displacements,
/// relative to that which its largest entry would have for the largest displacement.
class StrainMeter : public ElementSink
{
public:
  StrainMeter(const ComponentScale& unit, const ReaVecV& motion) : scale(unit), u(motion)
  {
    for (int i = 1; i <= u.Size(); ++i)
      largest = std::max(largest, scale.Unit(Component(i)) * std::fabs(u(i)));
  }

  void AddElement(const ElementBlocks& element) override
  {
    const double* block = element.values;
    const int count = static_cast<int>(element.nodes.size());
    Energy sum;
    for (int i = 0; i < count; ++i) {
      for (int j = i; j < count; ++j, block += element.ndof * element.ndof)
        AddBlock(block, element.nodes[i], element.nodes[j], sum);
    }
    if (sum.possible > 0.0)
      strain = std::max(strain, std::fabs(sum.found) / (sum.possible * largest * largest));
  }

  double Strain() const { return strain; }
  double Largest() const { return largest; }

private:
  int Component(int equation) const { return (equation - 1) % scale.components.count + 1; }
  double At(int node, int k) const { return u(scale.components.Equation(node, k)); }

  /// Of an element: the energy, and the largest entry of its stiffness.
  struct Energy
  {
    double found = 0.0;
    double possible = 0.0;
  };

  void AddBlock(const double* block, int first, int second, Energy& sum) const
  {
    const double times = first == second ? 1.0 : 2.0;
    for (int a = 1; a <= scale.components.count; ++a) {
      for (int b = 1; b <= scale.components.count; ++b) {
        const double value = *block++;
        sum.found += times * value * At(first, a) * At(second, b);
        sum.possible = std::max(sum.possible, std::fabs(value) / (scale.Unit(a) * scale.Unit(b)));
      }
    }
  }

  ComponentScale scale;
  const ReaVecV& u;
  double largest = 0.0;
  double strain = 0.0;
};

class MotionWords
{
public:
  MotionWords(const Problem& problem_, const ReaVecV& motion);
  MotionInWords Describe() const;

private:
  void FindMoving();
  void FindPart();
  void FindElements();

  bool Moves(const Node& node) const { return moves[node.number - 1]; }
  const NodeMotion& Of(const Node& node) const { return all[node.number - 1]; }
  double Amount(const NodeMotion& node) const { return (turnsOnly ? node.w : node.u).modul(); }
  bool IsInFile(const Node& node) const { return NumberInFile(node) <= problem.initialNumNodes; }
  int NumberInFile(const Node& node) const { return problem.meshes.front()->GiveOldNumber(&node); }
  int NodeForPlace() const;
  std::string Nodes(const std::vector<const NodeMotion*>& nodes) const;

  template <class Test>
  bool AllMoving(Test test) const
  {
    return std::all_of(moving.begin(), moving.end(),
                       [&](const NodeMotion* node) { return test(*node); });
  }
  bool AreEqual() const;
  bool AreParallelAll() const;
  bool FitsMoving(const RigidMotion& rigid) const;
  std::optional<RigidMotion> OwnRotation() const;
  std::optional<RigidMotion> FittedRotation() const;
  bool IsWholePart(const RigidMotion& rigid) const;

  std::string Turning() const;
  std::string Rotating(const RigidMotion& rigid) const;
  std::vector<const NodeMotion*> IdleRotations(const RigidMotion& rigid) const;
  std::string PartName() const;
  std::string Along() const { return " can move along " + DirectionName(lead->u); }
  std::string Group(const RigidMotion& rigid, const std::string& verb) const;
  std::string HingesOrSpin() const;
  std::string Hanging() const;
  std::vector<int> BeamsAtWork() const;
  std::vector<int> SpinningBeams() const;
  bool IsHingeAtWork(const Elem& beam) const;

  const Problem& problem;
  double length;
  double largestU = 0.0;
  double largestW = 0.0;
  bool turnsOnly = false;
  std::vector<NodeMotion> all;             ///< by system number less 1
  std::vector<bool> moves;                 ///< by system number less 1
  std::vector<const NodeMotion*> moving;   ///< empty for a motion of 0
  std::vector<const NodeMotion*> part;     ///< all nodes that elements connect with `lead`
  std::vector<const NodeMotion*> holding;  ///< at rest, of elements with moving nodes
  std::vector<const Elem*> elements;       ///< with moving nodes
  const NodeMotion* lead = nullptr;        ///< moves most
};

MotionWords::MotionWords(const Problem& problem_, const ReaVecV& motion)
    : problem(problem_),
      length(ScaleOfComponents(problem_.meshes, problem_.components).length),
      all(static_cast<std::size_t>(problem_.numNodes)),
      moves(all.size(), false)
{
  const NodeComponents& components = problem.components;
  for (const Node& node : Each<Node>(problem.GiveNodes())) {
    NodeMotion& own = all[node.number - 1];
    own.node = &node;
    own.place = InSpace(node);
    for (int k = 1; k <= components.count; ++k) {
      const double value = motion(problem.Equation(node, k));
      if (k <= components.translations)
        own.u(k) = value;
      else
        own.w(components.Rotations() == 1 ? 3 : k - components.translations) = value;
    }
    largestU = std::max(largestU, own.u.modul());
    largestW = std::max(largestW, own.w.modul());
  }
  turnsOnly = largestU <= kTurnsOnly * length * largestW;
  FindMoving();
  if (!lead)
    return;
  FindPart();
  FindElements();
}

void MotionWords::FindMoving()
{
  const double limit = kSmall * (turnsOnly ? largestW : largestU);
  for (const NodeMotion& one : all) {
    if (!one.node || !(Amount(one) > limit))
      continue;
    moving.push_back(&one);
    moves[one.node->number - 1] = true;
  }
  // Of equal motions, the one with the lowest number in the file: rounding must not decide.
  for (const NodeMotion* one : moving) {
    const double more = lead ? Amount(*one) - Amount(*lead) : 1.0;
    const bool equal = lead && std::fabs(more) <= kTurnsOnly * Amount(*lead);
    if (equal ? NumberInFile(*one->node) < NumberInFile(*lead->node) : more > 0.0)
      lead = one;
  }
}

// The sets of connected nodes, joined element by element (union-find with path halving: R. E.
// Tarjan and J. van Leeuwen, Worst-case analysis of set union algorithms, 1984).
void MotionWords::FindPart()
{
  std::vector<int> parent(all.size());
  std::iota(parent.begin(), parent.end(), 0);
  const auto find = [&](int i) {
    while (parent[i] != i)
      i = parent[i] = parent[parent[i]];
    return i;
  };
  for (const auto& mesh : problem.meshes) {
    for (const Elem& elem : Each<Elem>(*mesh->GiveElemPlex())) {
      for (int i = 1; i < elem.Nnode(); ++i) {
        const int a = find(elem(0)->number - 1);
        const int b = find(elem(i)->number - 1);
        parent[std::max(a, b)] = std::min(a, b);
      }
    }
  }
  const int root = find(lead->node->number - 1);
  for (const NodeMotion& one : all) {
    if (one.node && find(one.node->number - 1) == root)
      part.push_back(&one);
  }
}

// A node at rest holds the moving elements when it has a support or belongs to an element at rest.
void MotionWords::FindElements()
{
  std::vector<bool> holds(all.size(), false);
  for (const auto& mesh : problem.meshes) {
    for (const Elem& elem : Each<Elem>(*mesh->GiveElemPlex())) {
      bool atRest = true;
      for (int i = 0; i < elem.Nnode(); ++i)
        atRest = atRest && !Moves(*elem(i));
      if (!atRest)
        elements.push_back(&elem);
      for (int i = 0; i < elem.Nnode() && atRest; ++i)
        holds[elem(i)->number - 1] = true;
    }
  }
  std::vector<bool> known(all.size(), false);
  for (const Elem* elem : elements) {
    for (int i = 0; i < elem->Nnode(); ++i) {
      const Node& node = *(*elem)(i);
      const std::size_t place = static_cast<std::size_t>(node.number) - 1;
      if (!Moves(node) && !known[place] && (node.constraint || holds[place]))
        holding.push_back(&all[place]);
      known[place] = true;
    }
  }
}

int MotionWords::NodeForPlace() const
{
  if (IsInFile(*lead->node))
    return NumberInFile(*lead->node);
  for (const Elem* elem : elements) {
    for (int i = 0; i < elem->Nnode(); ++i) {
      if ((*elem)(i) == lead->node)
        return NumberInFile(*(*elem)(0));
    }
  }
  return 0;
}

// Nodes that the preparation has added are not named.
std::string MotionWords::Nodes(const std::vector<const NodeMotion*>& nodes) const
{
  std::vector<int> numbers;
  for (const NodeMotion* one : nodes) {
    if (IsInFile(*one->node))
      numbers.push_back(NumberInFile(*one->node));
  }
  if (numbers.empty())
    return "the middle of an edge at node " + std::to_string(NodeForPlace());
  return Listed("node", numbers);
}

bool MotionWords::AreEqual() const
{
  return AllMoving(
      [&](const NodeMotion& node) { return (node.u - lead->u).modul() <= kSmall * largestU; });
}

bool MotionWords::AreParallelAll() const
{
  return AllMoving([&](const NodeMotion& node) {
    return turnsOnly ? AreParallel(node.w, lead->w) : AreParallel(node.u, lead->u);
  });
}

bool MotionWords::FitsMoving(const RigidMotion& rigid) const
{
  return AllMoving([&](const NodeMotion& node) {
    return (node.u - rigid.At(node.place)).modul() <= kSmall * largestU;
  });
}

// The rigid motion of the node that moves most, if all others follow it.
std::optional<RigidMotion> MotionWords::OwnRotation() const
{
  const RigidMotion rigid{.centre = lead->place, .t = lead->u, .w = lead->w};
  if (rigid.w.modul() * length <= kSmall * largestU || !FitsMoving(rigid))
    return std::nullopt;
  return rigid;
}

// The least squares of u - t - w × r about the mean place: t is the mean of u, and w solves
// Σ (r²·1 - r·rᵀ) w = Σ r × u. Nodes on a line say nothing about the rotation about it, which a
// small addition to the matrix makes 0.
std::optional<RigidMotion> MotionWords::FittedRotation() const
{
  RigidMotion rigid{.centre = {0.0, 0.0, 0.0}, .t = {0.0, 0.0, 0.0}, .w = {0.0, 0.0, 0.0}};
  const double count = static_cast<double>(moving.size());
  for (const NodeMotion* one : moving) {
    rigid.centre += one->place / count;
    rigid.t += one->u / count;
  }
  double inertia[3][3] = {};
  ReaVec moment(0.0, 0.0, 0.0);
  for (const NodeMotion* one : moving) {
    const ReaVec r = one->place - rigid.centre;
    moment += VectorProd(r, one->u);
    for (int i = 0; i < 3; ++i) {
      inertia[i][i] += r * r;
      for (int j = 0; j < 3; ++j)
        inertia[i][j] -= r(i + 1) * r(j + 1);
    }
  }
  const double size = inertia[0][0] + inertia[1][1] + inertia[2][2];
  if (!(size > 0.0))
    return std::nullopt;
  constexpr double kRegular = 1e-9;
  for (int i = 0; i < 3; ++i)
    inertia[i][i] += kRegular * size;
  const ReaVec rows[3] = {{inertia[0][0], inertia[0][1], inertia[0][2]},
                          {inertia[1][0], inertia[1][1], inertia[1][2]},
                          {inertia[2][0], inertia[2][1], inertia[2][2]}};
  const double determinant = rows[0] * VectorProd(rows[1], rows[2]);
  for (int k = 0; k < 3; ++k)  // the matrix is symmetric: its rows are its columns
    rigid.w(k + 1) = moment * VectorProd(rows[(k + 1) % 3], rows[(k + 2) % 3]) / determinant;
  return FitsMoving(rigid) ? std::optional(rigid) : std::nullopt;
}

bool MotionWords::IsWholePart(const RigidMotion& rigid) const
{
  return std::all_of(part.begin(), part.end(), [&](const NodeMotion* node) {
    return (node->u - rigid.At(node->place)).modul() <= kSmall * largestU;
  });
}

bool MotionWords::IsHingeAtWork(const Elem& beam) const
{
  const HingeCode code = problem.GiveHingeCode(beam.Num());
  const NodeMotion& first = Of(*beam(0));
  const NodeMotion& second = Of(*beam(1));
  const ReaVec d = second.place - first.place;
  const double squares = d * d;
  const ReaVec relative = second.u - first.u;
  const ReaVec turn = VectorProd(d, relative) / squares;
  const auto works = [&](bool hinged, const NodeMotion& end) {
    if (!hinged)
      return false;
    const ReaVec against = end.w - turn;
    const ReaVec bending = against - d * (against * d / squares);
    return bending.modul() * std::sqrt(squares) > kSmall * std::max(largestU, length * largestW);
  };
  return works(code.FirstHinged(), first) || works(code.SecondHinged(), second);
}

// Also beams whose nodes only turn.
std::vector<int> MotionWords::BeamsAtWork() const
{
  std::vector<int> numbers;
  for (const auto& mesh : problem.meshes) {
    if (mesh->GiveElemType() != Linear)
      continue;
    for (const Elem& elem : Each<Elem>(*mesh->GiveElemPlex())) {
      if (IsHingeAtWork(elem))
        numbers.push_back(elem.Num());
    }
  }
  return numbers;
}

// The beams that turn about their own axes while their nodes stay.
std::vector<int> MotionWords::SpinningBeams() const
{
  std::vector<int> numbers;
  for (const Elem* elem : elements) {
    if (elem->ElemType() != Linear || !Moves(*(*elem)(0)) || !Moves(*(*elem)(1)))
      continue;
    const ReaVec d = Of(*(*elem)(1)).place - Of(*(*elem)(0)).place;
    if (AreParallel(d, Of(*(*elem)(0)).w) && AreParallel(d, Of(*(*elem)(1)).w))
      numbers.push_back(elem->Num());
  }
  return numbers;
}

// The beams that spin and the hinges that take part; empty when there are none.
std::string MotionWords::HingesOrSpin() const
{
  const std::vector<int> spinning = turnsOnly ? SpinningBeams() : std::vector<int>();
  const std::vector<int> hinged = BeamsAtWork();
  std::string reason;
  if (!spinning.empty())
    reason = Listed("beam", spinning) +
             (spinning.size() > 1 ? " spin about their own axes" : " spins about its own axis");
  const std::string link = reason.empty() ? "" : "; ";
  if (!hinged.empty())
    return reason + link + "the hinges of " + Listed("beam", hinged) + " allow it";
  return turnsOnly && moving.size() == part.size() ? reason + link + "no support prevents it"
                                                   : reason;
}

// The few nodes at rest on which a rigid group hangs; empty when there are more.
std::string MotionWords::Hanging() const
{
  if (holding.empty() || holding.size() > kMostHolding)
    return "";
  std::vector<int> numbers;
  for (const Elem* elem : elements)
    numbers.push_back(elem->Num());
  return Listed("element", numbers) + (numbers.size() > 1 ? " hang on " : " hangs on ") +
         Nodes(holding) + " only";
}

// Nodes that turn in their places.
std::string MotionWords::Turning() const
{
  const std::string about = " can turn about " + DirectionName(lead->w);
  if (AreParallelAll())
    return Nodes(moving) + about;
  return Nodes({lead}) + about + ", and " + std::to_string(moving.size() - 1) +
         " other nodes turn with it";
}

// The supported nodes that do not turn with their part: a shell does not turn with the rotation of
// a node about its normal.
std::vector<const NodeMotion*> MotionWords::IdleRotations(const RigidMotion& rigid) const
{
  const auto holdsRotation = [&](const Constraint& support) {
    const auto rotations = support.flags.begin() + problem.components.translations;
    return std::any_of(rotations, rotations + problem.components.Rotations(),
                       [](int flag) { return flag == Constraint::kPrescribed; });
  };
  std::vector<const NodeMotion*> idle;
  for (const NodeMotion* one : part) {
    if (one->node->constraint && holdsRotation(*one->node->constraint) &&
        one->w.modul() < 0.5 * rigid.w.modul())
      idle.push_back(one);
  }
  return idle;
}

std::string MotionWords::PartName() const
{
  const auto nodes = std::count_if(all.begin(), all.end(),
                                   [](const NodeMotion& one) { return one.node != nullptr; });
  if (part.size() == static_cast<std::size_t>(nodes))
    return "the whole model";
  int lowest = NumberInFile(*part.front()->node);
  for (const NodeMotion* one : part)
    lowest = std::min(lowest, NumberInFile(*one->node));
  return "the part of node " + std::to_string(lowest);
}

// A group that moves as a rigid body. A whole part has other reasons than a group in it.
std::string MotionWords::Group(const RigidMotion& rigid, const std::string& verb) const
{
  if (elements.empty())
    return Nodes({lead}) + verb + ": it belongs to no element";
  const std::string hinges = HingesOrSpin();
  if (IsWholePart(rigid)) {
    const std::vector<const NodeMotion*> idle = IdleRotations(rigid);
    const std::string support =
        idle.empty() ? "no support prevents it"
                     : "the rotation held at " + Nodes(idle) + " does not hold the elements";
    return WithReason(PartName() + verb, hinges.empty() ? support : hinges);
  }
  return WithReason(Nodes(moving) + verb, hinges.empty() ? Hanging() : hinges);
}

std::string MotionWords::Rotating(const RigidMotion& rigid) const
{
  const double turn = rigid.w.modul();
  const ReaVec toAxis = VectorProd(rigid.w, rigid.t) / (turn * turn);
  const ReaVec onAxis = rigid.centre + toAxis;
  double size = onAxis.modul();
  for (const NodeMotion* one : moving)
    size = std::max(size, one->place.modul());
  const auto onIt = [&](const std::vector<const NodeMotion*>& nodes) {
    std::vector<const NodeMotion*> found;
    std::copy_if(nodes.begin(), nodes.end(), std::back_inserter(found), [&](const auto* one) {
      const ReaVec r = one->place - onAxis;
      return IsInFile(*one->node) && VectorProd(r, rigid.w).modul() <= kTurnsOnly * size * turn;
    });
    return found;
  };
  std::vector<const NodeMotion*> through = onIt(holding);
  if (through.empty())
    through = onIt(part);
  const bool screw = std::fabs(rigid.w * rigid.t) > kSmall * turn * largestU;
  const std::string name = DirectionName(rigid.w);
  std::string verb =
      name.size() == 1 ? " can turn about " + name : " can turn about the axis " + name;
  verb += " through " + (through.empty() ? Tuple(onAxis, size) : Nodes(through));
  return Group(rigid, verb + (screw ? " while moving along it" : ""));
}

MotionInWords MotionWords::Describe() const
{
  if (!lead)
    return {};
  const auto described = [this](const std::string& text) {
    return MotionInWords{NodeForPlace(), text};
  };
  if (turnsOnly)
    return described(
        WithReason(Turning(), elements.empty() ? "it belongs to no element" : HingesOrSpin()));
  if (const std::optional<RigidMotion> rigid = OwnRotation())
    return described(Rotating(*rigid));
  if (AreEqual())
    return described(Group({.centre = lead->place, .t = lead->u, .w = {0.0, 0.0, 0.0}}, Along()));
  const bool parallel = AreParallelAll();
  // Two nodes fit some rotation in any case.
  if (!(parallel && moving.size() == 2)) {
    if (const std::optional<RigidMotion> rigid = FittedRotation())
      return described(Rotating(*rigid));
  }
  const std::string most = ", " + Nodes({lead}) + " most";
  const std::string verb =
      parallel ? Along() + most : " can move" + most + ", along " + DirectionName(lead->u);
  return described(WithReason(Nodes(moving) + verb, HingesOrSpin()));
}

}  // namespace

bool IsFreeMotion(const Problem& problem, const ElementFamilies& families, const ReaVecV& motion)
{
  // The square of a strain of 1e-6, above the rounding errors of the sums.
  constexpr double kLargestStrain = 1e-12;
  if (!AllFinite(motion))
    return false;
  StrainMeter meter(ScaleOfComponents(problem.meshes, problem.components), motion);
  if (!(meter.Largest() > 0.0))
    return false;
  for (const auto& mesh : problem.meshes)
    families.Of(*mesh).addStiffness(problem, *mesh, kInGlobalAxes, meter);
  return meter.Strain() <= kLargestStrain;
}

MotionInWords DescribeMotion(const Problem& problem, const ReaVecV& motion)
{
  return MotionWords(problem, motion).Describe();
}

}  // namespace morlen
