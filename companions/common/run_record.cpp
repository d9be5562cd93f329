#include "common/run_record.h"

#include <algorithm>
#include <cstdio>
#include <fstream>
#include <limits>
#include <nlohmann/json.hpp>
#include <ostream>

#include "common/command_line.h"
#include "common/file_text.h"
#include "common/utf8.h"

namespace morlen {

namespace fs = std::filesystem;

using Json = nlohmann::ordered_json;

namespace {

constexpr const char* kFormat = "morlen-run";
constexpr int kFormatVersion = 1;
constexpr const char* kEnding = ".morlen.run";
constexpr const char* kHash = "fnv1a64";

constexpr std::uint64_t kFnvStart = 14695981039346656037U;
constexpr std::uint64_t kFnvPrime = 1099511628211U;

std::uint64_t Hashed(std::string_view bytes, std::uint64_t hash)
{
  for (const char byte : bytes)
    hash = (hash ^ static_cast<unsigned char>(byte)) * kFnvPrime;
  return hash;
}

std::string HexText(std::uint64_t value)
{
  char text[17];
  std::snprintf(text, sizeof text, "%016llx", static_cast<unsigned long long>(value));
  return text;
}

Json JsonOf(const std::vector<RecordedFile>& files)
{
  Json list = Json::array();
  for (const RecordedFile& file : files)
    list.push_back({{"file", ToUtf8(file.name)},
                    {"size", file.content.size},
                    {kHash, HexText(file.content.hash)}});
  return list;
}

std::vector<RecordedFile> FilesIn(const Json& list)
{
  std::vector<RecordedFile> files;
  for (const Json& file : list)
    files.push_back({file.at("file").get<std::string>(),
                     {file.at("size").get<std::uintmax_t>(),
                      std::stoull(file.at(kHash).get<std::string>(), nullptr, 16)}});
  return files;
}

// Null where the number is not finite.
double NumberIn(const Json& value)
{
  return value.is_null() ? std::numeric_limits<double>::quiet_NaN() : value.get<double>();
}

// In the order of the record; with the version only where a page or an export shows the facts.
Json FactsJson(const RunFacts& facts)
{
  return {{"solver", facts.solver},
          {"why", facts.why},
          {"iterations", facts.iterations},
          {"residual", facts.residual},
          {"estimatedError", facts.estimatedError},
          {"equations", facts.equations}};
}

RunRecord RecordIn(const Json& json)
{
  RunRecord record;
  record.facts = {.version = json.at("program").at("version").get<std::string>(),
                  .solver = json.at("solver").get<std::string>(),
                  .why = json.at("why").get<std::string>(),
                  .iterations = json.at("iterations").get<int>(),
                  .residual = NumberIn(json.at("residual")),
                  .estimatedError = NumberIn(json.at("estimatedError")),
                  .equations = json.at("equations").get<int>()};
  record.inputs = FilesIn(json.at("inputs"));
  record.results = FilesIn(json.at("results"));
  return record;
}

// True when a file is among the recorded ones, by its name and its content.
bool IsRecorded(const fs::path& file, const std::vector<RecordedFile>& recorded)
{
  const auto found = std::find_if(recorded.begin(), recorded.end(), [&](const RecordedFile& one) {
    return one.name == ToUtf8(file.filename().string());
  });
  return found != recorded.end() && FingerprintOf(file) == found->content;
}

const char* NameOf(KnownRun::State state)
{
  switch (state) {
    case KnownRun::State::Matches:
      return "matches";
    case KnownRun::State::Differs:
      return "differs";
    default:
      return "absent";
  }
}

}  // namespace

RunFacts FactsOf(const SolverAccount& account, const SolutionAccuracy& accuracy, int equations)
{
  return {.version = ProgramVersion(),
          .solver = account.solver,
          .why = account.reason,
          .iterations = account.iterations,
          .residual = accuracy.residual,
          .estimatedError = accuracy.error,
          .equations = equations};
}

Fingerprint FingerprintOf(std::string_view bytes)
{
  return {bytes.size(), Hashed(bytes, kFnvStart)};
}

std::optional<Fingerprint> FingerprintOf(const fs::path& file)
{
  std::ifstream in(file, std::ios::binary);
  Fingerprint print{0, kFnvStart};
  std::vector<char> part(std::size_t{1} << 16);
  while (in) {
    in.read(part.data(), static_cast<std::streamsize>(part.size()));
    const std::string_view bytes(part.data(), static_cast<std::size_t>(in.gcount()));
    print.size += bytes.size();
    print.hash = Hashed(bytes, print.hash);
  }
  if (in.bad() || !in.eof())
    return std::nullopt;
  return print;
}

fs::path RunRecordName(const fs::path& file)
{
  constexpr std::string_view kResults = ".morlen.res";
  std::string name = file.filename().string();
  if (name.ends_with(kResults))
    name.resize(name.size() - kResults.size());
  else
    name = file.stem().string();
  return file.parent_path() / (name + kEnding);
}

void WriteRunRecord(const RunRecord& record, std::ostream& out)
{
  Json json = {{"format", kFormat},
               {"formatVersion", kFormatVersion},
               {"program", {{"name", kFormat}, {"version", record.facts.version}}}};
  json.update(FactsJson(record.facts));
  json["inputs"] = JsonOf(record.inputs);
  json["results"] = JsonOf(record.results);
  out << json.dump(1, ' ', false, Json::error_handler_t::replace) << "\n";
}

// The library reports wrong types by exceptions.
std::optional<RunRecord> ReadRunRecord(std::string_view text)
{
  try {
    const Json json = Json::parse(text);
    if (json.at("format") != kFormat || json.at("formatVersion") != kFormatVersion)
      return std::nullopt;
    return RecordIn(json);
  } catch (const std::exception&) {
    return std::nullopt;
  }
}

KnownRun FindRun(const fs::path& model, std::span<const fs::path> results)
{
  const fs::path name = RunRecordName(results.front());
  std::error_code error;
  if (!fs::exists(name, error))
    return {};
  const std::optional<std::string> text = FileText(name);
  std::optional<RunRecord> record = text ? ReadRunRecord(*text) : std::nullopt;
  const bool matches =
      record && !record->inputs.empty() && FingerprintOf(model) == record->inputs.front().content &&
      std::all_of(results.begin(), results.end(),
                  [&](const fs::path& file) { return IsRecorded(file, record->results); });
  if (!matches)
    return {KnownRun::State::Differs};
  return {KnownRun::State::Matches, std::move(record->facts)};
}

std::string JsonOf(const KnownRun& run)
{
  Json json = {{"state", NameOf(run.state)}, {"version", run.facts.version}};
  json.update(FactsJson(run.facts));
  if (run.state != KnownRun::State::Matches) {
    for (auto& [key, value] : json.items()) {
      if (key != "state")
        value = nullptr;
    }
  }
  return json.dump(-1, ' ', false, Json::error_handler_t::replace);
}

tables::Table RunTable(const KnownRun& run)
{
  const bool known = run.state == KnownRun::State::Matches;
  const RunFacts& facts = run.facts;
  tables::Table table{"run",
                      {{"solver", ""},
                       {"why", ""},
                       {"iterations", "1"},
                       {"residual", "1"},
                       {"estimated_error", "1"},
                       {"equations", "1"}},
                      {}};
  table.Put(known ? facts.solver.c_str() : "unknown");
  table.Put(known ? facts.why.c_str() : "unknown");
  for (const tables::Cell& cell :
       {tables::Cell(facts.iterations), tables::Cell(facts.residual),
        tables::Cell(facts.estimatedError), tables::Cell(facts.equations)})
    table.Put(known ? cell : tables::Cell("unknown"));
  return table;
}

}  // namespace morlen
