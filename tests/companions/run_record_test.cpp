#include "common/run_record.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <nlohmann/json.hpp>
#include <sstream>

#include "support/run.h"

namespace morlen {

namespace fs = std::filesystem;

namespace {

RunRecord Example()
{
  return {{"1.2", "Sparse", "a \"reason\"", 12, 1e-9, 0.1 + 0.2, 4242},
          {{"m.dat", {3, 7}}},
          {{"m.txt", {1, std::numeric_limits<std::uint64_t>::max()}}, {"m_csv/nodes.csv", {}}}};
}

std::string TextOf(const RunRecord& record)
{
  std::ostringstream text;
  WriteRunRecord(record, text);
  return text.str();
}

KnownRun Find(const TemporaryFolder& folder)
{
  const fs::path results[] = {folder.Path() / "m.morlen.res", folder.Path() / "m.txt"};
  return FindRun(folder.Path() / "m.dat", results);
}

}  // namespace

// The values are those of the appendix of the description of the hash, for 64 bits.
TEST(RunRecord, HashIsFnv1a)
{
  EXPECT_EQ(FingerprintOf(std::string_view("")).hash, 0xcbf29ce484222325U);
  EXPECT_EQ(FingerprintOf(std::string_view("a")).hash, 0xaf63dc4c8601ec8cU);
  EXPECT_EQ(FingerprintOf(std::string_view("foobar")).hash, 0x85944171f73967e8U);
}

TEST(RunRecord, FingerprintOfAFileIsThatOfItsBytes)
{
  const TemporaryFolder folder;
  const std::string bytes(100000, '\xe9');
  folder.Write("a", bytes);
  EXPECT_EQ(FingerprintOf(folder.Path() / "a"), FingerprintOf(std::string_view(bytes)));
  EXPECT_FALSE(FingerprintOf(folder.Path() / "b"));
  EXPECT_FALSE(FingerprintOf(folder.Path()));
}

TEST(RunRecord, ReadsWhatItWrites)
{
  const RunRecord written = Example();
  const std::optional<RunRecord> read = ReadRunRecord(TextOf(written));
  ASSERT_TRUE(read);
  EXPECT_EQ(read->facts.version, "1.2");
  EXPECT_EQ(read->facts.solver, "Sparse");
  EXPECT_EQ(read->facts.why, written.facts.why);
  EXPECT_EQ(read->facts.iterations, 12);
  EXPECT_EQ(read->facts.residual, 1e-9);
  EXPECT_EQ(read->facts.estimatedError, 0.1 + 0.2);
  EXPECT_EQ(read->facts.equations, 4242);
  ASSERT_EQ(read->results.size(), 2u);
  EXPECT_EQ(read->inputs.front().name, "m.dat");
  EXPECT_EQ(read->inputs.front().content, written.inputs.front().content);
  EXPECT_EQ(read->results.front().content, written.results.front().content);
  EXPECT_EQ(read->results.back().name, "m_csv/nodes.csv");
}

TEST(RunRecord, NumbersThatAreNotFiniteAreNoNumbers)
{
  RunRecord record = Example();
  record.facts.residual = std::numeric_limits<double>::infinity();
  const std::optional<RunRecord> read = ReadRunRecord(TextOf(record));
  ASSERT_TRUE(read);
  EXPECT_TRUE(std::isnan(read->facts.residual));
}

TEST(RunRecord, RefusesOtherTexts)
{
  const std::string good = TextOf(Example());
  EXPECT_TRUE(ReadRunRecord(good));
  for (const char* part : {"morlen-run", "formatVersion", "solver", "inputs", "fnv1a64", "size"}) {
    std::string damaged = good;
    damaged.replace(damaged.find(part), 2, "xx");
    EXPECT_FALSE(ReadRunRecord(damaged)) << part;
  }
  EXPECT_FALSE(ReadRunRecord(""));
  EXPECT_FALSE(ReadRunRecord("[]"));
  EXPECT_FALSE(ReadRunRecord(good.substr(0, good.size() / 2)));
}

TEST(RunRecord, NameFollowsTheModel)
{
  EXPECT_EQ(RunRecordName("a.b/m.dat"), "a.b/m.morlen.run");
  EXPECT_EQ(RunRecordName("a.b/m.morlen.res"), "a.b/m.morlen.run");
  EXPECT_EQ(RunRecordName("m"), "m.morlen.run");
}

TEST(RunRecord, MatchesTheSameFilesOnly)
{
  const TemporaryFolder folder;
  folder.Write("m.dat", "model");
  folder.Write("m.morlen.res", "post");
  folder.Write("m.txt", "text");
  EXPECT_EQ(Find(folder).state, KnownRun::State::Absent);
  const auto print = [](std::string_view bytes) { return FingerprintOf(bytes); };
  RunRecord record = {Example().facts,
                      {{"-", print("model")}},
                      {{"m.txt", print("text")}, {"m.morlen.res", print("post")}}};
  folder.Write("m.morlen.run", TextOf(record));
  EXPECT_EQ(Find(folder).state, KnownRun::State::Matches);
  EXPECT_EQ(Find(folder).facts.iterations, 12);
  for (const char* file : {"m.dat", "m.txt", "m.morlen.res"}) {
    const std::string content = folder.Read(file);
    folder.Write(file, "other");
    EXPECT_EQ(Find(folder).state, KnownRun::State::Differs) << file;
    EXPECT_EQ(Find(folder).facts.solver, "");
    folder.Write(file, content);
  }
  record.results.pop_back();
  folder.Write("m.morlen.run", TextOf(record));
  EXPECT_EQ(Find(folder).state, KnownRun::State::Differs);
}

TEST(RunRecord, UnknownRunsHaveNoValues)
{
  const nlohmann::json unknown = nlohmann::json::parse(JsonOf(KnownRun{}));
  EXPECT_EQ(unknown.at("state"), "absent");
  EXPECT_EQ(unknown.size(), 8u);
  for (const auto& [key, value] : unknown.items())
    EXPECT_EQ(value.is_null(), key != "state") << key;
  const tables::Table table = RunTable({});
  ASSERT_EQ(table.Rows(), 1u);
  for (const tables::Cell& cell : table.cells)
    EXPECT_STREQ(std::get<const char*>(cell), "unknown");
}

TEST(RunRecord, KnownRunsHaveTheirFacts)
{
  const KnownRun run = {KnownRun::State::Matches, Example().facts};
  const nlohmann::json json = nlohmann::json::parse(JsonOf(run));
  EXPECT_EQ(json.at("state"), "matches");
  EXPECT_EQ(json.at("version"), "1.2");
  EXPECT_EQ(json.at("iterations"), 12);
  EXPECT_EQ(json.at("equations"), 4242);
  const tables::Table table = RunTable(run);
  EXPECT_STREQ(std::get<const char*>(table.cells[0]), "Sparse");
  EXPECT_EQ(std::get<int>(table.cells[2]), 12);
  EXPECT_EQ(std::get<double>(table.cells[4]), 0.1 + 0.2);
}

}  // namespace morlen
