#include "report/page_data.h"

#include <fstream>
#include <nlohmann/json.hpp>

#include "common/tables.h"
#include "report/packed.h"

namespace morlen {

using Json = nlohmann::ordered_json;

std::vector<std::string> DescriptionOf(const std::filesystem::path& file)
{
  std::ifstream in(file);
  return DescriptionIn(in);
}

std::vector<std::string> DescriptionIn(std::istream& in)
{
  constexpr std::size_t kMostLines = 40;
  constexpr std::size_t kMostCharacters = 200;
  std::vector<std::string> lines;
  bool first = true;  // the first line may be the type of the problem
  for (std::string line; lines.size() < kMostLines && std::getline(in, line); first = false) {
    const std::size_t begin = line.find_first_not_of(" \t\r");
    if (begin == std::string::npos || line[begin] != '#') {
      if (first)
        continue;
      break;
    }
    line.erase(0, begin + 1);
    line.erase(line.find_last_not_of(" \t\r") + 1);
    lines.push_back(line.substr(line.starts_with(' ') ? 1 : 0, kMostCharacters));
  }
  return lines;
}

namespace {

void PutTables(Json& data, const std::vector<tables::Table>& all, const model::Model& model)
{
  Json& packed = data["tables"] = Json::array();
  for (const tables::Table& table : all) {
    if (table.Rows() > 0)
      packed.push_back(Packed(TableOfPage(table, model.Translations())));
  }
}

}  // namespace

std::string PageData(const ReportContent& content)
{
  Json data =
      ModelParts(content.file, content.description, content.model, content.check, content.run);
  data["equilibrium"] = BalancePart(content.equilibrium, content.advice);
  data["loads"] = LoadsPart(content.loads);
  PutTables(data, tables::AllTables(content.model, content.results), content.model);
  return PageText(data);
}

std::string PageDataOfModel(const std::string& file, const std::vector<std::string>& description,
                            const model::Model& model, const AppliedLoads& loads,
                            const std::vector<Finding>& check)
{
  Json data = ModelParts(file, description, model, check, {});
  data["equilibrium"] = nullptr;
  data["loads"] = LoadsPart(loads);
  PutTables(data, tables::ModelTables(model), model);
  return PageText(data);
}

}  // namespace morlen
