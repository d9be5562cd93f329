#include "case_file/case_file.h"

#include <toml++/toml.h>
#include <algorithm>
#include <cmath>
#include <initializer_list>
#include <span>

#include "base/text_parts.h"
#include "check/joined.h"
#include "common/utf8.h"

namespace morlen::cases {
namespace {

using check::Joined;

Place PlaceOf(const toml::source_region& region)
{
  return {static_cast<int>(region.begin.line), static_cast<int>(region.begin.column)};
}

Place PlaceOf(const toml::node& node)
{
  return PlaceOf(node.source());
}

/// A key of a table with its value.
struct Entry
{
  std::string key;
  Place place;
  const toml::node* value;
};

// The entries of a table in the order of the file: the parser sorts them by name.
std::vector<Entry> EntriesOf(const toml::table& table)
{
  std::vector<Entry> entries;
  for (const auto& [key, value] : table)
    entries.push_back({std::string(key.str()), PlaceOf(key.source()), &value});
  std::stable_sort(entries.begin(), entries.end(), [](const Entry& a, const Entry& b) {
    return std::make_pair(a.place.line, a.place.column) <
           std::make_pair(b.place.line, b.place.column);
  });
  return entries;
}

/// Converts the parsed tables of a file into a CaseFile. Errors and unknown keys go to Problems.
class Reader
{
public:
  Reader(std::string_view text_, Problems& problems_) : text(text_), problems(problems_) {}

  CaseFile Read(const toml::table& root)
  {
    Visit(root, "",
          {{"model", [&](const Entry& e) { ReadName(e, file.model); }},
           {"cases", [&](const Entry& e) { ReadCases(e); }},
           {"combinations", [&](const Entry& e) { ReadCombinations(e); }},
           {"envelopes", [&](const Entry& e) { ReadEnvelopes(e); }},
           {"actions", [&](const Entry& e) { ReadActions(e); }}});
    if (!root.contains("model"))
      problems.Error({1, 1}, "the key 'model' is missing",
                     "model = \"file.dat\" names the structure");
    if (!root.contains("cases"))
      problems.Error({1, 1}, "the file has no load case", "a case begins with [cases.NAME]");
    return std::move(file);
  }

private:
  struct Key
  {
    std::string_view name;
    std::function<void(const Entry&)> read;
  };

  // Reads the entries of a table with these keys. where: after "unknown key"; may be empty.
  void Visit(const toml::table& table, const std::string& where, std::initializer_list<Key> keys)
  {
    for (const Entry& entry : EntriesOf(table)) {
      const auto* found = std::find_if(keys.begin(), keys.end(),
                                       [&](const Key& key) { return key.name == entry.key; });
      if (found != keys.end()) {
        found->read(entry);
        continue;
      }
      std::vector<std::string_view> names;
      for (const Key& key : keys)
        names.push_back(key.name);
      problems.Error(entry.place, Joined("unknown key '", ToUtf8(entry.key), "'", where,
                                         DidYouMean(entry.key, names)));
    }
  }

  void WrongType(const Entry& entry, const std::string& wanted)
  {
    problems.Error(PlaceOf(*entry.value), Joined("'", ToUtf8(entry.key), "' must be ", wanted));
  }

  // Calls read(table) for a value that is a table.
  template <class Read>
  void AsTable(const Entry& entry, Read read)
  {
    if (const toml::table* table = entry.value->as_table())
      read(*table);
    else
      WrongType(entry, "a table");
  }

  void ReadName(const Entry& entry, NamedPlace& name)
  {
    const toml::value<std::string>* value = entry.value->as_string();
    if (!value || value->get().empty())
      return WrongType(entry, "a text");
    name = {value->get(), PlaceOf(*value)};
  }

  void ReadFlag(const Entry& entry, bool& flag)
  {
    if (const toml::value<bool>* value = entry.value->as_boolean())
      flag = value->get();
    else
      WrongType(entry, "true or false");
  }

  std::optional<double> NumberOf(const toml::node& node)
  {
    const std::optional<double> number = node.is_number() ? node.value<double>() : std::nullopt;
    if (!number || !std::isfinite(*number)) {
      problems.Error(PlaceOf(node), "a number is expected");
      return std::nullopt;
    }
    return number;
  }

  // Reads `count` numbers that are not negative.
  void ReadFactors(const Entry& entry, double* factors, std::size_t count)
  {
    const toml::array* list = entry.value->as_array();
    if (count == 1 && !list)
      return ReadFactor(*entry.value, entry.key, *factors);
    if (!list || list->size() != count)
      return WrongType(entry, count == 1 ? "a number" : Joined("a list of ", count, " numbers"));
    for (const toml::node& node : *list)
      ReadFactor(node, entry.key, *factors++);
  }

  void ReadFactor(const toml::node& node, const std::string& key, double& factor)
  {
    const std::optional<double> number = NumberOf(node);
    if (!number)
      return;
    if (*number < 0.0)
      problems.Error(PlaceOf(node), Joined("a factor of '", key, "' can't be negative"));
    factor = *number;
  }

  std::vector<NamedPlace> NamesOf(const Entry& entry)
  {
    const toml::array* list = entry.value->as_array();
    std::vector<NamedPlace> names;
    if (!list || list->empty()) {
      WrongType(entry, "a list of names");
      return names;
    }
    for (const toml::node& node : *list) {
      const toml::value<std::string>* value = node.as_string();
      if (value)
        names.push_back({value->get(), PlaceOf(node)});
      else
        problems.Error(PlaceOf(node), "a name in quotes is expected");
    }
    return names;
  }

  NamedPlace NewName(const Entry& entry)
  {
    if (entry.key.empty())
      problems.Error(entry.place, "a name can't be empty");
    return {entry.key, entry.place};
  }

  void ReadCases(const Entry& entry)
  {
    AsTable(entry, [&](const toml::table& table) {
      for (const Entry& one : EntriesOf(table))
        AsTable(one, [&](const toml::table& content) { ReadCase(one, content); });
      if (table.empty())
        problems.Error(entry.place, "the file has no load case", "a case begins with [cases.NAME]");
    });
  }

  void ReadCase(const Entry& entry, const toml::table& table)
  {
    CaseEntry added;
    added.name = NewName(entry);
    Place gravity;
    Visit(table, " of a case",
          {{"title", [&](const Entry& e) { ReadTitle(e, added.title); }},
           {"gravity",
            [&](const Entry& e) {
              ReadFlag(e, added.gravity);
              gravity = e.place;
            }},
           {"from_model", [&](const Entry& e) { ReadFlag(e, added.fromModel); }},
           {"loads",
            [&](const Entry& e) {
              NamedPlace name;
              ReadName(e, name);
              if (!name.name.empty())
                added.loads = name;
            }},
           {"text", [&](const Entry& e) { ReadText(e, added.text); }}});
    if (added.gravity && added.fromModel)
      problems.Error(gravity, "'gravity' with 'from_model' would count the weight twice",
                     "from_model = true includes the weight");
    file.cases.push_back(std::move(added));
  }

  void ReadTitle(const Entry& entry, std::string& title)
  {
    if (const toml::value<std::string>* value = entry.value->as_string())
      title = value->get();
    else
      WrongType(entry, "a text");
  }

  void ReadText(const Entry& entry, std::optional<LoadText>& loads)
  {
    const toml::value<std::string>* value = entry.value->as_string();
    if (!value)
      return WrongType(entry, "a text in '''");
    loads = LoadText{value->get(), PlaceOf(*value), false, {}};
    if (!loads->text.ends_with('\n'))
      loads->text += '\n';  // the readers want the end of a line after the last word
    std::string_view rest = TextAt(loads->place);
    constexpr std::string_view kQuotes = "'''";
    if (!rest.starts_with(kQuotes))
      return;
    rest.remove_prefix(kQuotes.size());
    const bool newLine = rest.starts_with("\n") || rest.starts_with("\r\n");
    loads->exact = true;
    loads->begin = newLine ? Place{loads->place.line + 1, 1}
                           : Place{loads->place.line, loads->place.column + 3};
  }

  // The text of the file from a place on. Columns count characters.
  std::string_view TextAt(Place place) const
  {
    std::string_view rest = WithoutByteOrderMark(text);
    for (int line = 1; line < place.line; ++line)
      rest.remove_prefix(std::min(rest.find('\n') + 1, rest.size()));
    for (int column = 1; column < place.column && !rest.empty(); ++column) {
      do
        rest.remove_prefix(1);
      while (!rest.empty() && (static_cast<unsigned char>(rest[0]) & 0xC0) == 0x80);
    }
    return rest;
  }

  void ReadCombinations(const Entry& entry)
  {
    AsTable(entry, [&](const toml::table& table) {
      for (const Entry& one : EntriesOf(table))
        AsTable(one, [&](const toml::table& content) { ReadCombination(one, content); });
    });
  }

  void ReadCombination(const Entry& entry, const toml::table& table)
  {
    CombinationEntry added{NewName(entry), {}};
    for (const Entry& term : EntriesOf(table)) {
      if (const std::optional<double> factor = NumberOf(*term.value))
        added.terms.push_back({{term.key, term.place}, *factor});
    }
    if (table.empty())
      problems.Error(entry.place, Joined("'", ToUtf8(entry.key), "' combines nothing"));
    file.combinations.push_back(std::move(added));
  }

  void ReadEnvelopes(const Entry& entry)
  {
    AsTable(entry, [&](const toml::table& table) {
      for (const Entry& one : EntriesOf(table))
        file.envelopes.push_back({NewName(one), NamesOf(one)});
    });
  }

  void ReadActions(const Entry& entry)
  {
    AsTable(entry, [&](const toml::table& table) {
      ActionsEntry& actions = file.actions.emplace();
      actions.place = entry.place;
      Visit(table, " of [actions]",
            {{"permanent", [&](const Entry& e) { ReadPermanent(e, actions); }},
             {"make", [&](const Entry& e) { ReadMake(e, actions); }},
             {"factors", [&](const Entry& e) { ReadPartialFactors(e, actions.factors); }},
             {"variable", [&](const Entry& e) { ReadVariable(e, actions); }}});
      if (!table.contains("make"))
        problems.Error(entry.place, "[actions] has no key 'make'",
                       "make = [\"6.10\"] makes the combinations of that formula");
    });
  }

  void ReadPermanent(const Entry& entry, ActionsEntry& actions)
  {
    const toml::array* lists = entry.value->as_array();
    const bool nested = lists && std::all_of(lists->begin(), lists->end(),
                                             [](const toml::node& n) { return n.is_array(); });
    if (!nested)
      return WrongType(entry, "a list of lists of cases, such as [[\"G1\"], [\"G2\"]]");
    for (const toml::node& list : *lists)
      actions.permanent.push_back(NamesOf({entry.key, PlaceOf(list), &list}));
  }

  void ReadMake(const Entry& entry, ActionsEntry& actions)
  {
    for (const NamedPlace& name : NamesOf(entry)) {
      const auto* found = std::find(kFormulaNames.begin(), kFormulaNames.end(), name.name);
      if (found == kFormulaNames.end()) {
        const std::vector<std::string_view> known(kFormulaNames.begin(), kFormulaNames.end());
        problems.Error(
            name.place,
            Joined("unknown formula '", ToUtf8(name.name), "'", DidYouMean(name.name, known)),
            "6.10, 6.10ab, EQU, characteristic, frequent and quasi-permanent are known");
        continue;
      }
      const Formula formula = static_cast<Formula>(found - kFormulaNames.begin());
      if (std::find(actions.make.begin(), actions.make.end(), formula) != actions.make.end())
        problems.Error(name.place, Joined("'", name.name, "' is given twice"));
      else
        actions.make.push_back(formula);
    }
  }

  void ReadPartialFactors(const Entry& entry, ActionFactors& factors)
  {
    const auto pair = [&](const Entry& e, double* values) {
      ReadFactors(e, values, 2);
      if (values[0] > values[1])
        problems.Error(PlaceOf(*e.value), Joined("the favourable factor of '", e.key,
                                                 "' comes first, and is not the larger one"));
    };
    AsTable(entry, [&](const toml::table& table) {
      Visit(table, " of [actions.factors]",
            {{"gG", [&](const Entry& e) { pair(e, factors.permanent); }},
             {"gG_EQU", [&](const Entry& e) { pair(e, factors.equilibrium); }},
             {"gQ", [&](const Entry& e) { ReadFactors(e, &factors.variable, 1); }},
             {"xi", [&](const Entry& e) { ReadFactors(e, &factors.xi, 1); }}});
    });
  }

  void ReadVariable(const Entry& entry, ActionsEntry& actions)
  {
    AsTable(entry, [&](const toml::table& table) {
      for (const Entry& one : EntriesOf(table))
        AsTable(one, [&](const toml::table& content) { ReadAction(one, content, actions); });
    });
  }

  void ReadAction(const Entry& entry, const toml::table& table, ActionsEntry& actions)
  {
    VariableEntry& added = actions.variable.emplace_back();
    added.name = NewName(entry);
    Visit(table, " of a variable action",
          {{"cases", [&](const Entry& e) { added.cases = NamesOf(e); }},
           {"together", [&](const Entry& e) { ReadFlag(e, added.together); }},
           {"psi", [&](const Entry& e) { ReadFactors(e, added.psi, 3); }}});
    for (const char* key : {"cases", "psi"}) {
      if (!table.contains(key))
        problems.Error(entry.place,
                       Joined("the action '", ToUtf8(entry.key), "' has no key '", key, "'"));
    }
  }

  std::string_view text;
  Problems& problems;
  CaseFile file;
};

}  // namespace

std::optional<CaseFile> ReadCaseFile(std::string_view text, Problems& problems)
{
  const toml::parse_result parsed = toml::parse(text);
  if (!parsed) {
    const toml::parse_error& error = parsed.error();
    problems.Error(PlaceOf(error.source()), ToUtf8(error.description()));
    return std::nullopt;
  }
  return Reader(text, problems).Read(parsed.table());
}

}  // namespace morlen::cases
