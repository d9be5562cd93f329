// The part on load cases of the verification manual: pattern loading of a beam over two spans, and
// the number of combinations by EN 1990.

#include <memory>
#include <string>
#include <vector>

#include "base/textscan.h"
#include "cases/en1990.h"
#include "cases/envelope.h"
#include "cases/solved_cases.h"
#include "problem/load_blocks.h"
#include "problem/problem.h"
#include "run/element_families.h"
#include "support/processor.h"
#include "support/solved.h"
#include "support/tested_solver.h"
#include "support/verification.h"

namespace morlen {

namespace {

constexpr double kSpan = 6.0;
constexpr double kLoad = 10.0;

/// A beam over two equal spans with a load on each, both together and a settlement of the middle.
class TwoSpans
{
public:
  TwoSpans()
      : problem(ReadProblemText(
            "problem type: 2d\nNumOfDivisions 16\n"
            "mesh dimension = 2 elemtype Linear nnode = 2\n"
            "coordinates\n1 0 0\n2 6 0\n3 12 0\nend coordinates\n"
            "elements\n1 1 2 1\n2 2 3 1\nend elements\n"
            "materials\n1 E=2.1e8 A=78e-4 Iz=57e-6\nend materials\n"
            "constraints\n1 110 0 0 0\n2 010 0 0 0\n3 010 0 0 0\nend constraints\n"))
  {
    problem->solverSettings.processor = TestedProcessor();
    ExtractLoads(*problem);
    Add("global_pressure_loads\n1 0 -10 0 0\nend global_pressure_loads\n");
    Add("global_pressure_loads\n2 0 -10 0 0\nend global_pressure_loads\n");
    Add("constraints\n2 010 0 -0.01 0\nend constraints\n");
    solved = std::make_unique<SolvedCases>(*problem, FamiliesOf(*problem), loads,
                                           AnalysisOptions{.kit = TestedKit()});
  }

  /// The extreme of a component at a point (from 0) of an item over the two patterns and both.
  double Of(ValueKind kind, int item, int point, int component, bool maximum) const
  {
    const std::vector<Combination> patterns = {
        {"left", {{0, 1.0}}}, {"right", {{1, 1.0}}}, {"both", {{0, 1.0}, {1, 1.0}}}};
    return ExtremeOf(kind, item, point, component, maximum, patterns);
  }
  double OfSettlement(ValueKind kind, int item, int component) const
  {
    return ExtremeOf(kind, item, 0, component, true, {{"settlement", {{2, 1.0}}}});
  }

private:
  void Add(const std::string& text)
  {
    TextScan scan(text);
    ReadLoadBlocks(scan, *problem);
    loads.push_back(ExtractLoads(*problem));
  }

  double ExtremeOf(ValueKind kind, int item, int point, int component, bool maximum,
                   const std::vector<Combination>& combinations) const
  {
    double found = 0.0;
    for (const ValueGroup& group : solved->Layout().Groups()) {
      if (group.kind != kind)
        continue;
      ForEachEnvelopePoint(*solved, group, combinations, [&](const EnvelopePoint& at) {
        if (at.item == item && at.point == point && at.component == component)
          found = (maximum ? at.maximum : at.minimum).value;
      });
    }
    return found;
  }

  std::unique_ptr<Problem> problem;
  std::vector<LoadSet> loads;
  std::unique_ptr<SolvedCases> solved;
};

// One permanent case in each of `permanent` lists, and variable actions of one case each.
double CountOf(int permanent, int variable)
{
  Actions actions;
  for (int k = 0; k < permanent; ++k)
    actions.permanent.push_back({k});
  for (int k = 0; k < variable; ++k)
    actions.variable.push_back({{permanent + k}, false, {0.7, 0.5, 0.3}});
  return static_cast<double>(MakeCombinations(actions, Formula::Fundamental).size());
}

}  // namespace

VerifiedSection LoadCases()
{
  constexpr double q = kLoad;
  constexpr double L = kSpan;
  constexpr double EI = 2.1e8 * 57e-6;
  constexpr auto kForces = ValueKind::BeamForces;
  constexpr auto kReactions = ValueKind::Reactions;
  constexpr int kMz = 2;
  const TwoSpans beam;
  const std::string text = "Beam over two spans of 6, q = 10 on one span, the other or both";
  const std::string source = "Force method, closed form";
  return {"Load cases",
          {{text, source, "largest moment of a span 49qL²/512 at 7L/16", 49 * q * L * L / 512,
            beam.Of(kForces, 0, 7, kMz, true)},
           {text, source, "smallest moment over the middle support -qL²/8", -q * L * L / 8,
            beam.Of(kForces, 0, 16, kMz, false)},
           {text, source, "largest moment there -qL²/16", -q * L * L / 16,
            beam.Of(kForces, 0, 16, kMz, true)},
           {text, source, "smallest moment at 7L/16, other span loaded: -7qL²/256",
            -7 * q * L * L / 256, beam.Of(kForces, 0, 7, kMz, false)},
           {text, source, "largest reaction of an end 7qL/16", 7 * q * L / 16,
            beam.Of(kReactions, 0, 0, 1, true)},
           {text, source, "smallest reaction of an end -qL/16", -q * L / 16,
            beam.Of(kReactions, 0, 0, 1, false)},
           {text, source, "largest reaction of the middle 5qL/4", 5 * q * L / 4,
            beam.Of(kReactions, 1, 0, 1, true)},
           {"The beam, its middle support settled by s = 0.01", source,
            "reaction of the middle -6EIs/L³", -6 * EI * 0.01 / (L * L * L),
            beam.OfSettlement(kReactions, 1, 1)},
           {"One permanent, three variable actions, EN 1990 (6.10)", "counted: 2 (1 + 3·2²)",
            "combinations", 26, CountOf(1, 3), 0.0},
           {"Five permanent, six variable actions, EN 1990 (6.10)", "counted: 2⁵ (1 + 6·2⁵)",
            "combinations", 6176, CountOf(5, 6), 0.0}}};
}

}  // namespace morlen
