#include "case_file/study.h"

#include <algorithm>
#include <cstdio>
#include <map>
#include <set>

#include "case_file/loads_reader.h"
#include "case_file/names.h"
#include "check/joined.h"
#include "common/shortest.h"
#include "common/utf8.h"
#include "problem/problem.h"

namespace morlen::cases {
namespace {

using check::Joined;

std::string Quoted(const std::string& name)
{
  return Joined("'", ToUtf8(name), "'");
}

/// Resolves the names of a file: combinations become factors of cases.
class Resolver
{
public:
  Resolver(const CaseFile& file_, Problems& problems_) : file(file_), problems(problems_) {}

  void Resolve(Study& study)
  {
    EnterNames();
    study.cases = static_cast<int>(file.cases.size());
    for (int k = 0; k < study.cases; ++k) {
      study.titles.push_back(file.cases[k].title);
      study.combinations.push_back({file.cases[k].name.name, {{k, 1.0}}});
    }
    resolved.resize(file.combinations.size());
    states.assign(file.combinations.size(), State::New);
    const std::vector<Combination> made = MakeFromActions();
    for (const Combination& one : made)
      ofActions[one.name] = &one;
    for (std::size_t k = 0; k < file.combinations.size(); ++k) {
      const Factors& factors = FactorsOf(k);
      study.combinations.push_back({file.combinations[k].name.name, ListOf(factors)});
    }
    study.combinations.insert(study.combinations.end(), made.begin(), made.end());
    CheckNames(made);
    for (const EnvelopeEntry& entry : file.envelopes)
      study.envelopes.push_back({entry.name.name, MembersOf(entry, study)});
  }

private:
  enum class State : int
  {
    New,
    Open,
    Done
  };
  using Factors = std::map<int, double>;

  static std::vector<CaseFactor> ListOf(const Factors& factors)
  {
    std::vector<CaseFactor> list;
    for (const auto& [index, factor] : factors)
      list.push_back({index, factor});
    return list;
  }

  // Calls visit(name, kind, index) for all names of the file, kinds in its order.
  template <class Visit>
  void ForEachName(Visit visit) const
  {
    for (std::size_t k = 0; k < file.cases.size(); ++k)
      visit(file.cases[k].name, "case", k);
    for (std::size_t k = 0; k < file.combinations.size(); ++k)
      visit(file.combinations[k].name, "combination", k);
    for (std::size_t k = 0; k < file.envelopes.size(); ++k)
      visit(file.envelopes[k].name, "envelope", k);
  }

  void EnterNames()
  {
    ForEachName([&](const NamedPlace& name, const char* kind, std::size_t index) {
      const auto [known, added] = names.try_emplace(name.name, Named{kind, index, name.place});
      if (!added)
        problems.Error(name.place, Joined("the name ", Quoted(name.name), " is used twice"),
                       Joined("it is also the name of the ", known->second.kind, " in line ",
                              known->second.place.line));
    });
  }

  // Generated names and the names of files.
  void CheckNames(const std::vector<Combination>& made)
  {
    std::map<std::string, std::string> files;
    const auto enter = [&](const std::string& name, Place place, const char* ending = "") {
      const auto [known, added] = files.try_emplace(FileNameOf(name) + ending, name);
      if (!added && known->second != name)
        problems.Error(place, Joined("the files of ", Quoted(name), " and ", Quoted(known->second),
                                     " would have the same name, '", known->first, "'"));
    };
    ForEachName(
        [&](const NamedPlace& name, const char*, std::size_t) { enter(name.name, name.place); });
    for (const EnvelopeEntry& entry : file.envelopes)
      enter(entry.name.name, entry.name.place, ".summary");
    for (const Combination& one : made) {
      const auto known = names.find(one.name);
      if (known != names.end())
        problems.Error(known->second.place, Joined("the name ", Quoted(one.name), " is used twice"),
                       "it is also the name of a combination made from [actions]");
      enter(one.name, file.actions->place);
    }
  }

  std::vector<std::string_view> KnownNames(bool withCombinations) const
  {
    std::vector<std::string_view> known;
    for (const auto& [name, named] : names) {
      if (named.kind == std::string_view("case") ||
          (withCombinations && named.kind == std::string_view("combination")))
        known.push_back(name);
    }
    return known;
  }

  void UnknownName(const NamedPlace& name, bool withCombinations)
  {
    const auto known = names.find(name.name);
    const char* wanted = withCombinations ? "case or combination" : "case";
    if (known != names.end())
      problems.Error(name.place, Joined(Quoted(name.name), " is the name of ",
                                        known->second.kind[0] == 'e' ? "an " : "a ",
                                        known->second.kind, ", not of a ", wanted));
    else
      problems.Error(name.place, Joined("there is no ", wanted, " ", Quoted(name.name),
                                        DidYouMean(name.name, KnownNames(withCombinations))));
  }

  // The index of a case; -1 and an error for another name.
  int CaseOf(const NamedPlace& name)
  {
    const auto known = names.find(name.name);
    if (known != names.end() && known->second.kind == std::string_view("case"))
      return static_cast<int>(known->second.index);
    UnknownName(name, false);
    return -1;
  }

  // True for a name or a pattern that actions with errors would have made or matched.
  bool MayBeMade(const std::string& name) const
  {
    return !actionsAreWhole && (IsPattern(name) || name.find('/') != std::string::npos);
  }

  const Factors& FactorsOf(std::size_t k)
  {
    if (states[k] != State::New)
      return resolved[k];
    states[k] = State::Open;
    for (const Term& term : file.combinations[k].terms)
      AddTerm(file.combinations[k], term, resolved[k]);
    states[k] = State::Done;
    return resolved[k];
  }

  void AddTerm(const CombinationEntry& combination, const Term& term, Factors& factors)
  {
    const auto known = names.find(term.name.name);
    const auto made = ofActions.find(term.name.name);
    if (known == names.end() && made != ofActions.end()) {
      for (const CaseFactor& one : made->second->factors)
        factors[one.index] += term.factor * one.factor;
    } else if (known == names.end() || known->second.kind == std::string_view("envelope")) {
      if (known != names.end() || !MayBeMade(term.name.name))
        UnknownName(term.name, true);
    } else if (known->second.kind == std::string_view("case")) {
      factors[static_cast<int>(known->second.index)] += term.factor;
    } else if (states[known->second.index] == State::Open) {
      problems.Error(term.name.place, Joined(Quoted(combination.name.name), " combines itself, by ",
                                             Quoted(term.name.name)));
    } else {
      for (const auto& [index, factor] : FactorsOf(known->second.index)) {
        double& sum = factors[index];
        const bool wasFinite = std::isfinite(sum);
        sum += term.factor * factor;
        if (wasFinite && !std::isfinite(sum))
          problems.Error(term.name.place, Joined("the factors of ", Quoted(combination.name.name),
                                                 " are too large"));
      }
    }
  }

  std::vector<int> CasesOf(const std::vector<NamedPlace>& list, std::set<int>& used)
  {
    std::vector<int> cases;
    for (const NamedPlace& name : list) {
      const int index = CaseOf(name);
      if (index < 0)
        continue;
      if (!used.insert(index).second)
        problems.Error(name.place,
                       Joined("the case ", Quoted(name.name), " is in [actions] twice"));
      else
        cases.push_back(index);
    }
    return cases;
  }

  std::vector<Combination> MakeFromActions()
  {
    if (!file.actions)
      return {};
    Actions actions;
    actions.factors = file.actions->factors;
    std::set<int> used;
    const int before = problems.Errors();
    for (const std::vector<NamedPlace>& list : file.actions->permanent)
      actions.permanent.push_back(CasesOf(list, used));
    for (const VariableEntry& entry : file.actions->variable) {
      VariableAction& added = actions.variable.emplace_back();
      added.cases = CasesOf(entry.cases, used);
      added.together = entry.together;
      std::copy_n(entry.psi, 3, added.psi);
    }
    double bound = static_cast<double>(file.combinations.size());
    for (const Formula formula : file.actions->make)
      bound += CombinationBound(actions, formula);
    if (bound > kMostCombinations) {
      char text[80];
      std::snprintf(text, sizeof text,
                    "the actions make up to %.4g combinations; the most are %.0f", bound,
                    kMostCombinations);
      problems.Error(file.actions->place, text,
                     "fewer cases that act together, or fewer permanent lists, make fewer");
    }
    std::vector<Combination> made;
    for (std::size_t k = 0; problems.Errors() == before && k < file.actions->make.size(); ++k) {
      std::vector<Combination> list = MakeCombinations(actions, file.actions->make[k]);
      made.insert(made.end(), std::make_move_iterator(list.begin()),
                  std::make_move_iterator(list.end()));
    }
    actionsAreWhole = problems.Errors() == before;
    return made;
  }

  std::vector<int> MembersOf(const EnvelopeEntry& entry, const Study& study)
  {
    std::set<int> members;
    for (const NamedPlace& pattern : entry.patterns) {
      bool found = false;
      const bool exact = std::any_of(study.combinations.begin(), study.combinations.end(),
                                     [&](const Combination& c) { return c.name == pattern.name; });
      for (std::size_t k = 0; k < study.combinations.size(); ++k) {
        const std::string& name = study.combinations[k].name;
        if (exact ? name != pattern.name : !Matches(pattern.name, name))
          continue;
        members.insert(static_cast<int>(k));
        found = true;
      }
      if (found || MayBeMade(pattern.name))
        continue;
      if (IsPattern(pattern.name))
        problems.Error(pattern.place,
                       Joined(Quoted(pattern.name), " matches no case and no combination"));
      else
        UnknownName(pattern, true);
    }
    return {members.begin(), members.end()};
  }

  struct Named
  {
    const char* kind;
    std::size_t index;
    Place place;
  };

  const CaseFile& file;
  Problems& problems;
  std::map<std::string, Named> names;
  std::map<std::string, const Combination*> ofActions;
  std::vector<Factors> resolved;  ///< of the combinations of the file
  std::vector<State> states;
  bool actionsAreWhole = true;
};

void WarnOfUnusedCases(const CaseFile& file, const Study& study,
                       std::span<const std::string> written, Problems& problems)
{
  std::set<int> used;
  for (std::size_t k = study.cases; k < study.combinations.size(); ++k) {
    for (const CaseFactor& one : study.combinations[k].factors)
      used.insert(one.index);
  }
  for (const Envelope& envelope : study.envelopes)
    used.insert(envelope.members.begin(), envelope.members.end());
  for (int k = 0; k < study.cases; ++k) {
    const NamedPlace& name = file.cases[k].name;
    const bool isWritten = std::any_of(written.begin(), written.end(), [&](const std::string& p) {
      return p == name.name || Matches(p, name.name);
    });
    if (!used.contains(k) && !isWritten)
      problems.Warn(check::Code::UnusedCase, name.place,
                    Joined("nothing uses the case ", Quoted(name.name)));
  }
}

std::vector<std::filesystem::path> InputsOf(const CaseFile& content, const std::string& file)
{
  std::vector<std::filesystem::path> inputs = {file, PathOf(content.model.name, file)};
  for (const CaseEntry& one : content.cases) {
    if (one.loads)
      inputs.emplace_back(PathOf(one.loads->name, file));
  }
  return inputs;
}

}  // namespace

std::unique_ptr<Study> ReadStudy(const std::string& file, std::string_view text,
                                 std::span<const std::string> written, Problems& problems)
{
  const std::optional<CaseFile> content = ReadCaseFile(text, problems);
  if (!content)
    return nullptr;
  auto study = std::make_unique<Study>();
  Resolver(*content, problems).Resolve(*study);
  if (!problems.HasErrors())
    WarnOfUnusedCases(*content, *study, written, problems);
  study->modelFile = PathOf(content->model.name, file);
  study->inputs = InputsOf(*content, file);
  study->problem = std::make_unique<Problem>(100);
  if (!content->model.name.empty() && ReadModel(*content, file, *study->problem, problems)) {
    study->model = model::ModelOf(*study->problem);
    const LoadSet own = ExtractLoads(*study->problem);
    study->loads = ReadLoads(*content, file, own, *study->problem, problems);
    for (std::size_t k = 0; k < study->loads.size(); ++k)
      study->loads[k].name = content->cases[k].name.name;
  } else {
    FindMissingLoads(*content, file, problems);
  }
  return problems.HasErrors() ? nullptr : std::move(study);
}

Selection Select(const Study& study, std::span<const std::string> patterns,
                 std::vector<std::string>& unmatched)
{
  std::set<int> combinations;
  std::set<int> envelopes;
  const auto add = [](const auto& list, const std::string& pattern, bool exact,
                      std::set<int>& selected) {
    bool found = false;
    for (std::size_t k = 0; k < list.size(); ++k) {
      if (exact ? list[k].name != pattern : !Matches(pattern, list[k].name))
        continue;
      selected.insert(static_cast<int>(k));
      found = true;
    }
    return found;
  };
  for (const std::string& pattern : patterns) {
    bool found = false;
    for (const bool exact : {true, false}) {
      if (found)
        break;
      const bool inCombinations = add(study.combinations, pattern, exact, combinations);
      found = add(study.envelopes, pattern, exact, envelopes) || inCombinations;
    }
    if (!found)
      unmatched.push_back(pattern);
  }
  return {{combinations.begin(), combinations.end()}, {envelopes.begin(), envelopes.end()}};
}

std::string TextOf(const Study& study, const Combination& combination)
{
  std::string text;
  for (const CaseFactor& one : combination.factors) {
    if (!text.empty())
      text += one.factor < 0.0 ? " - " : " + ";
    else if (one.factor < 0.0)
      text += "-";
    AppendNumber(text, std::abs(one.factor));
    text += " " + study.combinations[one.index].name;
  }
  return text;
}

}  // namespace morlen::cases
