// Finds the rigid motions that the supports of a part leave free.
//
// A rigid motion is (t, w·L): the displacement t of the part's centre and its rotation w, times the
// size L of the part so that all six numbers are comparable. Each held component of a support is a
// linear form on these motions, a row of six numbers. The part is held when the rows have full
// rank; otherwise the null space of the rows are its free motions.

#include <algorithm>
#include <cmath>
#include <string>
#include <unordered_map>
#include <unordered_set>

#include "assembly/row_space.h"
#include "check/checks.h"
#include "check/recorder.h"
#include "model/constraint.h"
#include "model/node.h"
#include "numeric/matriu.h"
#include "problem/problem.h"

namespace morlen::check {
namespace {

using RigidMotion = SixNumbers;

// Vectors shorter than this part of the size of a body count as 0.
constexpr double kDependent = 1e-7;

/// A part with its centre and its size.
struct Body
{
  const std::vector<const Node*>& nodes;
  Point centre{};
  double size = 0.0;
};

Body BodyOf(const std::vector<const Node*>& nodes)
{
  Body body{.nodes = nodes};
  for (const Node* node : nodes) {
    const Point place = PlaceOf(*node);
    for (int k = 0; k < 3; ++k)
      body.centre[k] += place[k] / static_cast<double>(nodes.size());
  }
  for (const Node* node : nodes) {
    const Point r = Minus(PlaceOf(*node), body.centre);
    body.size = std::max(body.size, std::sqrt(Dot(r, r)));
  }
  return body;
}

// The row of a support at a place that holds the displacement along u and the rotation about a.
RigidMotion RowOf(const Body& body, const Point& place, const Point& u, const Point& a)
{
  const Point moment = Cross(Minus(place, body.centre), u);
  RigidMotion row;
  for (int k = 0; k < 3; ++k) {
    row[k] = u[k];
    row[3 + k] = (moment[k] + a[k]) / body.size;
  }
  return row;
}

bool Holds(const Constraint& support, int k)
{
  return support.flags[k] == Constraint::kPrescribed ||
         (support.flags[k] == Constraint::kSpring && support.values[k] > 0.0);
}

// The direction of component k of a support, as a displacement and a rotation.
std::pair<Point, Point> DirectionOf(const NodeComponents& components, const Matriu* T, int k)
{
  std::pair<Point, Point> direction{};
  for (int i = 0; i < components.count; ++i) {
    const double value = T ? (*T)(i + 1, k + 1) : (i == k ? 1.0 : 0.0);
    if (i < components.translations)
      direction.first[i] = value;
    else
      direction.second[components.count == 3 ? 2 : i - 3] = value;
  }
  return direction;
}

/// The effect of hinges on the motions of parts.
struct Hinges
{
  /// Nodes where every beam end is hinged. The analysis holds their rotations, which matter only
  /// to the torsion of their beams.
  std::unordered_set<const Node*> loose;
  /// For nodes that turn with their part: the axes of their beams to loose nodes.
  std::unordered_map<const Node*, std::vector<Point>> spins;
};

bool IsContinuous(const HingeCodes& codes, const Elem& elem, int end)
{
  if (elem.ElemType() != Linear)
    return true;
  const HingeCode code = GiveHingeCode(codes, elem.Num());
  return !elem(end)->hasRotule && !(end == 0 ? code.FirstHinged() : code.SecondHinged());
}

Hinges HingesOf(const Subject& subject)
{
  Hinges hinges;
  if (!subject.problem.hasHinges)
    return hinges;
  hinges.loose.insert(subject.nodes.begin(), subject.nodes.end());
  for (const Elem* elem : subject.elements) {
    for (int i = 0; i < elem->Nnode(); ++i) {
      if (IsContinuous(subject.problem.hingeCodes, *elem, i))
        hinges.loose.erase((*elem)(i));
    }
  }
  for (const Elem* elem : subject.elements) {
    if (elem->ElemType() != Linear || subject.problem.problemType == kPlane)
      continue;
    for (int i = 0; i < 2; ++i) {
      if (!hinges.loose.contains((*elem)(i)) && hinges.loose.contains((*elem)(1 - i)))
        hinges.spins[(*elem)(i)].push_back(Minus(PlaceOf(*(*elem)(1)), PlaceOf(*(*elem)(0))));
    }
  }
  return hinges;
}

// Torsion holds a node that turns with its part against the rotation about a beam to a loose node.
void AddSpins(const Hinges& hinges, const Body& body, const Node& node, RowSpace& rows)
{
  const auto found = hinges.spins.find(&node);
  if (found == hinges.spins.end())
    return;
  for (Point axis : found->second) {
    const double length = std::sqrt(Dot(axis, axis));
    for (double& component : axis)
      component /= length;
    rows.Add(RowOf(body, body.centre, {}, axis));
  }
}

// A straight part of loose nodes only does not turn about its line.
void AddLine(const Hinges& hinges, const Body& body, RowSpace& rows)
{
  Point line{};
  for (const Node* node : body.nodes) {
    if (!hinges.loose.contains(node))
      return;
    const Point r = Minus(PlaceOf(*node), body.centre);
    line = Dot(r, r) > Dot(line, line) ? r : line;
  }
  const double limit = kDependent * Dot(line, line);
  for (const Node* node : body.nodes) {
    const Point away = Cross(line, Minus(PlaceOf(*node), body.centre));
    if (Dot(away, away) > limit * limit)
      return;
  }
  rows.Add(RowOf(body, body.centre, {}, line));
}

// Held rotations of a loose node do not hold its part.
void AddSupport(const NodeComponents& components, const Body& body, const Node& node, bool loose,
                RowSpace& rows)
{
  Matriu T;
  const bool turned =
      node.constraint->CalcTransfMatFromEuler(node.number, T, components.count, 0) == 0;
  for (int k = 0; k < (loose ? components.translations : components.count); ++k) {
    if (!Holds(*node.constraint, k))
      continue;
    const auto [u, a] = DirectionOf(components, turned ? &T : nullptr, k);
    rows.Add(RowOf(body, PlaceOf(node), u, a));
  }
}

// Components that are rounding errors compared with the size become 0.
std::string Listed(const Point& p, double size)
{
  const auto shown = [size](double value) {
    return Rounded(std::fabs(value) < 1e-9 * size ? 0.0 : value, 4);
  };
  return Joined("(", shown(p[0]), ", ", shown(p[1]), ", ", shown(p[2]), ")");
}

std::string DirectionName(Point d)
{
  const double length = std::sqrt(Dot(d, d));
  for (int k = 0; k < 3; ++k) {
    d[k] /= length;
    if (std::fabs(d[k]) > 1.0 - 1e-9)
      return std::string(1, "XYZ"[k]);
  }
  return Listed(d, 1.0);
}

// A motion with a rotation is named by its axis, and by its shift along the axis if it has one.
std::string MotionName(const Body& body, const Point& t, const Point& w)
{
  const double turn = Dot(w, w);
  if (turn * body.size * body.size < 1e-12)
    return Joined("move along ", DirectionName(t));
  Point on = Cross(w, t);
  for (int k = 0; k < 3; ++k)
    on[k] = body.centre[k] + on[k] / turn;
  const bool screw = std::fabs(Dot(w, t)) > 1e-6 * turn * body.size;
  return Joined("turn about the axis along ", DirectionName(w), " through ", Listed(on, body.size),
                screw ? " while moving along it" : "");
}

RowSpace RowsOf(const NodeComponents& components, const Hinges& hinges, const Body& body)
{
  RowSpace rows;
  for (const Node* node : body.nodes) {
    if (node->constraint)
      AddSupport(components, body, *node, hinges.loose.contains(node), rows);
    AddSpins(hinges, body, *node, rows);
  }
  AddLine(hinges, body, rows);
  return rows;
}

Point DisplacementAt(const Node& node, const Body& body, const Point& t, const Point& w)
{
  Point u = Cross(w, Minus(PlaceOf(node), body.centre));
  for (int k = 0; k < 3; ++k)
    u[k] += t[k];
  return u;
}

// A straight part may turn about its own line, which displaces no node.
Motion MotionOf(const Body& body, const Point& t, const Point& w)
{
  constexpr double kNone = 1e-6;
  Motion motion{.turns = true};
  for (const Node* node : body.nodes) {
    const Point u = DisplacementAt(*node, body, t, w);
    motion.nodes.push_back(node->number);
    motion.vectors.push_back(u);
    motion.turns = motion.turns && Length(u) <= kNone * body.size * Length(w);
  }
  if (motion.turns)
    std::fill(motion.vectors.begin(), motion.vectors.end(), w);
  return motion;
}

const Node& MostMoved(const Body& body, const Point& t, const Point& w)
{
  const Node* most = body.nodes.front();
  double largest = 0.0;
  for (const Node* node : body.nodes) {
    const Point u = DisplacementAt(*node, body, t, w);
    if (Dot(u, u) > largest * (1.0 + 1e-9)) {
      largest = Dot(u, u);
      most = node;
    }
  }
  return *most;
}

}  // namespace

std::vector<std::size_t> CheckSupports(const Subject& subject, Recorder& recorder)
{
  std::vector<std::size_t> loose;
  const Problem& problem = subject.problem;
  const bool plane = problem.problemType == kPlane && problem.components.translations == 2;
  const std::vector<int> columns = plane ? std::vector{0, 1, 5} : std::vector{0, 1, 2, 3, 4, 5};
  const Hinges hinges = HingesOf(subject);
  for (std::size_t index = 0; index < subject.parts.size(); ++index) {
    const Subject::Part& part = subject.parts[index];
    const Body body = BodyOf(part.nodes);
    if (!(body.size > 0.0))
      continue;
    const RowSpace rows = RowsOf(problem.components, hinges, body);
    const int first = part.nodes.front()->number;
    const std::string name =
        subject.parts.size() == 1 ? "the model" : Joined("the part of node ", first);
    const std::vector<RigidMotion> motions = rows.FreeMotions(columns);
    if (!motions.empty())
      loose.push_back(index);
    for (const RigidMotion& motion : motions) {
      const Point t = {motion[0], motion[1], motion[2]};
      const Point w = {motion[3] / body.size, motion[4] / body.size, motion[5] / body.size};
      const int node = MostMoved(body, t, w).number;
      recorder.Error(Code::FreeMotion, recorder.PlaceOf(ReadItem::Node, node), "the supports let ",
                     name, " ", MotionName(body, t, w), ": node ", node, " moves most");
      recorder.AddMotion(MotionOf(body, t, w));
    }
  }
  return loose;
}

}  // namespace morlen::check
