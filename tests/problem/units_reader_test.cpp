// The block of unit systems and the unit lines.

#include "problem/units_reader.h"

#include <gtest/gtest.h>

#include <chrono>
#include <string>

#include "base/read_observer.h"
#include "support/fatal.h"
#include "support/frame.h"
#include "support/hints.h"
#include "support/solved.h"

namespace morlen {

namespace {

std::unique_ptr<Problem> ReadWith(const std::string& settings)
{
  return ReadProblemText(ProblemParts().With(&ProblemParts::settings, settings).Text());
}

std::string Table(const std::string& records)
{
  return "units_names\n" + records + "\nend\n";
}

void ExpectRefused(const std::string& settings, const std::string& message, const std::string& hint)
{
  EXPECT_EQ(HintCaught([&] { ReadWith(settings); }), hint) << settings;
  ExpectFatal([&] { ReadWith(settings); }, message);
}

const std::string kLongest(20, 'n');
const std::string kTooLong(21, 'n');

}  // namespace

TEST(UnitsBlock, NamesHaveUpTo20Characters)
{
  const auto problem = ReadWith(
      Table(kLongest + " " + kLongest + " " + kLongest + " " + kLongest + " 2 3") + "units_mesh " +
      kLongest + "\nunits_mat_and_load=" + kLongest + "\nunits_res " + kLongest);
  EXPECT_EQ(problem->units.meshLength, 3.0);
  EXPECT_EQ(problem->units.matLoadForce, 2.0);
  EXPECT_EQ(problem->units.resLengthName, kLongest);
}

TEST(UnitsBlock, LongerNamesAreRefused)
{
  const std::string items =
      "error: 'units_names' items should be: name nameN nameM namePa facN facM\n";
  ExpectRefused(Table(kTooLong + " N m Pa 1 1"), items,
                "line 3: the name '" + kTooLong + "' has more than 20 characters");
  // Cut after 20 characters these would be complete records, of other names.
  for (const std::string& record :
       {kTooLong + " N m 1 1", "SI " + kTooLong + " m 1 1", std::string(40, 'n') + " N m 1 1"}) {
    const std::string name =
        record.starts_with("SI") ? kTooLong : record.substr(0, record.find(' '));
    ExpectRefused(
        Table(record), "error: Unit name '" + name + "' is too long\n",
        "line 3: it has " + std::to_string(name.size()) + " characters; names have up to 20");
  }
}

TEST(UnitsBlock, ACommentMayFollowARecord)
{
  for (const char* record :
       {"SI N m Pa 2 3 # comment", "SI N m Pa 2 3\t#comment", "SI N m Pa 2 3#c",
        "# first\nSI N m Pa 2 3 \r", "SI\tN\tm\tPa\t2\t3\t"})
    EXPECT_EQ(ReadWith(Table(record))->units.GiveUnitsBase("SI")->facM, 3.0) << record;
}

TEST(UnitsBlock, IncompleteRecordsAreExplained)
{
  ExpectRefused(Table("SI N m Pa 1"),
                "error: 'units_names' items should be: name nameN nameM namePa facN facM\n",
                "line 3: four names and two numbers are needed, such as 'kN_m kN m kPa 1000 1'");
}

TEST(UnitsBlock, RepeatedSystemsMustBeEqual)
{
  EXPECT_EQ(ReadWith(Table("a N m Pa 1 1\na N m Pa 1.0 1"))->units.bases.size(), 2u);
  EXPECT_EQ(ReadWith(Table("a N m Pa 1 1") + Table("a N m Pa 1 1"))->units.bases.size(), 2u);
  for (const char* other : {"kN m Pa 1 1", "N n Pa 1 1", "N m kPa 1 1", "N m Pa 2 1"}) {
    const std::string again = std::string("a ") + other;
    const std::string message = "error: Unit name 'a' is defined twice with different contents\n";
    const std::string hint =
        ": 'a' is already 'N m Pa 1 1'; give it once, or give one of the two "
        "another name";
    ExpectRefused(Table("a N m Pa 1 1\n" + again), message, "line 4" + hint);
    ExpectRefused(Table("a N m Pa 1 1") + Table(again), message, "line 6" + hint);
  }
}

TEST(UnitsBlock, ALengthUnitHasOneFactor)
{
  const std::string message =
      "error: Unit length name 'mm' is defined twice with different factors\n";
  const std::string hint = ": its factor is 0.01 here and 0.001 before";
  ExpectRefused(Table("a N mm Pa 1 0.001\nb kN mm Pa 1 0.01"), message, "line 4" + hint);
  ExpectRefused(Table("a N mm Pa 1 0.001") + Table("b kN mm Pa 1 0.01"), message, "line 6" + hint);
  ExpectRefused(Table("a N mm Pa 1 1\nb kN mm Pa 1 1.0000001"), message,
                "line 4: its factor is 1.0000001 here and 1 before");
  EXPECT_EQ(ReadWith(Table("a N mm Pa 1 1e-3\nb kN mm Pa 1 0.001"))->units.bases.size(), 2u);
}

TEST(UnitsBlock, FactorsArePositive)
{
  for (const char* factors : {"0 1", "1 0", "-1 1", "1 -1"})
    ExpectFatal([&] { ReadWith(Table(std::string("a N m Pa ") + factors)); },
                "error: Unit name 'a' must have two positive numbers\n");
  ExpectRefused(Table("a N m Pa 1 0"), "error: Unit name 'a' must have two positive numbers\n",
                "its sizes in 'units_names' are 1 and 0");
  ExpectRefused(Table("a N m Pa 1 0") + "units_mesh m",
                "error: Units_mesh must be a positive number\n",
                "line 5: the sizes of the system 'a' are 1 and 0");
}

TEST(UnitsBlock, WithoutAnEndIsExplained)
{
  EXPECT_EQ(HintCaught([] { ReadProblemText("problem type 2d\n\nunits_names\nSI N m Pa 1 1\n"); }),
            "the block in line 3 has no line that begins with 'end'");
}

TEST(UnitLines, UndefinedNamesAreExplained)
{
  const std::string table = Table("kN_m kN m kPa 1000 1\nN_mm N mm MPa 1 0.001");
  static const struct
  {
    const char* line;
    const char* hint;
  } cases[] = {
      {"units_res kn_m", "did you mean 'kN_m'? Upper and lower case differ"},
      {"units_res kNm", "did you mean 'kN_m'? Defined so far: 'N_mm', 'kN_m'"},
      {"units_res SI", "defined so far: 'N_mm', 'kN_m'"},
      {"units_res mm", "'mm' is the length unit of the system 'N_mm': a system is named here"},
      {"units_mat_and_load kN",
       "'kN' is the force unit of the system 'kN_m': a system is named here"},
      {"units_mesh kN_m", "'kN_m' is a unit system: units_mesh takes its length unit, 'm'"},
      {"units_mesh MM", "did you mean 'mm'? Upper and lower case differ"},
      {"units_res kN_m#kN", "a comment needs a blank in front of its '#'"},
      {"units_mesh km_", "defined so far: 'm', 'mm'"},
  };
  for (const auto& c : cases)
    EXPECT_EQ(HintCaught([&] { ReadWith(table + c.line); }), c.hint) << c.line;
  EXPECT_EQ(HintCaught([&] { ReadWith("units_res SI"); }),
            "no unit system is defined yet: the block 'units_names' comes first");
}

// Were each record compared with all before it, this would take minutes.
TEST(UnitsBlock, ManySystemsAreReadInTime)
{
  constexpr int kSystems = 50000;
  std::string records;
  for (int i = 0; i < kSystems; ++i) {
    const std::string number = std::to_string(i * 7919LL % kSystems);
    records += "u" + number + " N m" + number + " Pa 1 1\n";
  }
  const auto start = std::chrono::steady_clock::now();
  EXPECT_EQ(ReadWith(Table(records))->units.bases.size(), static_cast<std::size_t>(kSystems));
  const std::chrono::duration<double> seconds = std::chrono::steady_clock::now() - start;
  EXPECT_LT(seconds.count(), 10.0);
}

}  // namespace morlen
