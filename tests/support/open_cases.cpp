#include "support/open_cases.h"

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <sstream>

#include "support/result_files.h"
#include "support/run.h"

namespace morlen {

namespace fs = std::filesystem;

namespace {

const fs::path kFolder = fs::path(MORLEN_SOURCE_DIR) / "tests" / "verification";

std::vector<std::string> Split(const std::string& text, char separator)
{
  std::vector<std::string> parts;
  std::istringstream in(text);
  for (std::string part; std::getline(in, part, separator);)
    parts.push_back(part);
  return parts;
}

/// A line of expected.txt that begins with "check".
struct Check
{
  explicit Check(const std::string& line)
  {
    const std::size_t last = line.find(" block=");
    std::istringstream in(line.substr(0, last));
    in >> run >> kind;
    for (std::string word; in >> word;) {
      const std::size_t equals = word.find('=');
      items[word.substr(0, equals)] = word.substr(equals + 1);
    }
    if (last != std::string::npos)
      block = line.substr(last + std::string(" block=").size());
  }

  const std::string& Text(const std::string& key) const { return items.at(key); }
  int Int(const std::string& key) const { return std::stoi(items.at(key)); }
  double Double(const std::string& key) const { return std::stod(items.at(key)); }

  std::string run;
  std::string kind;
  std::string block;
  std::map<std::string, std::string> items;
};

/// The results of one run.
class Results
{
public:
  Results(const std::string& text_, const std::string& kiv_)
      : text(ParseTextResults(text_)), kiv(kiv_)
  {
  }

  double Value(const Check& check);
  std::vector<std::string> BlockNames() const { return KivBlockNames(kiv); }

private:
  using Block = std::map<int, std::vector<std::vector<double>>>;

  const Block& Of(const std::string& name);
  double AtPoint(const Check& check, int elem, int point, int component);
  double SumOfReactions(int component) const;
  double SumOverElements(const Check& check);
  int Count(const std::string& what) const;

  TextResults text;
  std::string kiv;
  std::map<std::string, Block> blocks;  ///< the blocks that have been read already
};

// The blanks between name and kind are part of the search text, because a name may be the beginning
// of another name.
const Results::Block& Results::Of(const std::string& name)
{
  const auto [block, added] = blocks.try_emplace(name);
  if (!added)
    return block->second;
  std::istringstream in(kiv);
  for (std::string line; std::getline(in, line);) {
    const std::size_t kind = line.find("4 1.0 Estatic");
    if (kind == std::string::npos || !line.starts_with(name) ||
        line.find_first_not_of(' ', name.size()) != kind)
      continue;
    block->second = KivBlock(kiv, line);
    break;
  }
  return block->second;
}

double Results::AtPoint(const Check& check, int elem, int point, int component)
{
  const std::vector<double>& values = Of(check.block).at(elem).at(point);
  return component == 0 ? values.back() : values.at(component - 1);
}

double Results::SumOfReactions(int component) const
{
  double sum = 0.0;
  for (const auto& [node, values] : text.reactions)
    sum += values.at(component - 1);
  return sum;
}

double Results::SumOverElements(const Check& check)
{
  double sum = 0.0;
  for (const std::string& elem : Split(check.Text("elems"), ',')) {
    for (int point = 0; point < check.Int("points"); ++point)
      sum += AtPoint(check, std::stoi(elem), point, check.Int("comp"));
  }
  return check.Double("factor") * sum;
}

int Results::Count(const std::string& what) const
{
  if (what == "disp")
    return static_cast<int>(text.displacements.size());
  const std::string label = "Number of Gauss Points: ";
  const std::size_t set = kiv.find("\"" + what.substr(what.find(':') + 1) + "\"");
  return std::stoi(kiv.substr(kiv.find(label, set) + label.size(), 10));
}

double Results::Value(const Check& check)
{
  const std::string& kind = check.kind;
  if (kind == "disp")
    return text.displacements.at(check.Int("node")).at(check.Int("comp") - 1);
  if (kind == "react")
    return text.reactions.at(check.Int("node")).at(check.Int("comp") - 1);
  if (kind == "endforce")
    return text.endForces.at(check.Int("elem"))[check.Int("end") - 1].at(check.Int("comp") - 1);
  if (kind == "sumreact")
    return SumOfReactions(check.Int("comp"));
  if (kind == "sum")
    return SumOverElements(check);
  if (kind == "count")
    return Count(check.Text("of"));
  if (kind == "res")
    return check.items.contains("node")
               ? AtPoint(check, check.Int("node"), 0, check.Int("comp"))
               : AtPoint(check, check.Int("elem"), check.Int("point"), check.Int("comp"));
  const double a = AtPoint(check, check.Int("elem"), check.Int("point"), 1);
  const double b = AtPoint(check, check.Int("elem"), check.Int("point"), 2);
  return kind == "larger" ? std::max(a, b) : std::min(a, b);
}

using Runs = std::map<std::string, Results>;

bool Converges(const Check& check, Runs& runs)
{
  double error = HUGE_VAL;
  for (const std::string& item : Split(check.Text("nodes"), ',')) {
    const std::size_t colon = item.find(':');
    const Check at("- disp node=" + item.substr(colon + 1) + " comp=" + check.Text("comp"));
    const double next = std::fabs(runs.at(item.substr(0, colon)).Value(at) - check.Double("ref"));
    if (!(next < error))
      return false;
    error = next;
  }
  return error <= check.Double("rtol") * std::fabs(check.Double("ref"));
}

bool Holds(const Check& check, Runs& runs)
{
  if (check.kind == "converge")
    return Converges(check, runs);
  Results& results = runs.at(check.run);
  if (check.kind == "blocks")
    return results.BlockNames() == Split(check.block, '|');
  const double reference = check.Double("ref");
  return std::fabs(results.Value(check) - reference) <=
         check.Double("atol") + check.Double("rtol") * std::fabs(reference);
}

Results Run(const fs::path& file)
{
  const TemporaryFolder work;
  work.Write("model.dat", ReadFile(file));
  RunProgram(work, {"model.dat", "model.txt"});
  return {work.Read("model.txt"), work.Read("model.morlen.res")};
}

/// The rest of a line after its first word.
std::string Rest(const std::string& line)
{
  return line.substr(line.find(' ') + 1);
}

}  // namespace

std::vector<std::string> OpenCaseNames()
{
  std::vector<std::string> names;
  for (const fs::directory_entry& entry : fs::directory_iterator(kFolder)) {
    if (entry.is_directory())
      names.push_back(entry.path().filename().string());
  }
  std::sort(names.begin(), names.end());
  return names;
}

OpenCase RunOpenCase(const std::string& name)
{
  OpenCase result;
  Runs runs;
  VerifiedResult shown;
  std::istringstream in(ReadFile(kFolder / name / "expected.txt"));
  for (std::string line; std::getline(in, line);) {
    const std::string rest = Rest(line);
    if (line.starts_with("section "))
      result.section = rest;
    else if (line.starts_with("title "))
      shown.problem = rest;
    else if (line.starts_with("source "))
      shown.source += (shown.source.empty() ? "" : "; ") + rest;
    else if (line.starts_with("run "))
      runs.emplace(Split(rest, ' ')[0], Run(kFolder / name / Split(rest, ' ')[1]));
    else if (line.starts_with("show "))
      shown.quantity = rest;
    else if (line.starts_with("check ")) {
      const Check check(rest);
      ++result.checks;
      if (!Holds(check, runs))
        result.failures.push_back(line);
      if (shown.quantity.empty())
        continue;
      shown.reference = check.Double("ref");
      shown.result = runs.at(check.run).Value(check);
      shown.tolerance = check.Double("rtol");
      result.shown.push_back(shown);
      shown.quantity.clear();
    }
  }
  return result;
}

}  // namespace morlen
