// What the readers of records note for an observer: text that is read as less than it says.

#include <gtest/gtest.h>

#include <algorithm>
#include <string>

#include "base/textscan.h"
#include "problem/elem_load_reader.h"
#include "problem/hinges.h"
#include "problem/nodal_reader.h"
#include "problem/problem.h"
#include "support/frame.h"
#include "support/read_listener.h"
#include "support/solved.h"

namespace morlen {

namespace {

struct Case
{
  const char* record;
  Notices notices;
};

// The notices of one record of a block, without those of its end.
template <class Read>
Notices NoticesOf(const std::string& record, const Read& read)
{
  const auto problem = ReadProblemText(ProblemParts().Text());
  const std::string block = record + "\nend\n";
  TextScan text(block);
  const ReadListener listener;
  read(text, *problem);
  Notices notices = listener.notices;
  std::erase_if(notices, [](const auto& notice) {
    return notice.first == ReadEvent::WordPart || notice.first == ReadEvent::SkippedToBlockEnd;
  });
  return notices;
}

}  // namespace

TEST(RecordNotices, OfSupports)
{
  static const Case cases[] = {
      {"1 111 0 0 0", {}},
      {"1 120 0.5 7 0 # clamped", {}},
      {"1\t1 1 1\t0 0\t0\t", {}},
      {"1 110 0.5 7 0.0", {}},
      {"1 110 0.5 7 -9.5 other=1",
       {{ReadEvent::FreeValue, "-9.5"}, {ReadEvent::IgnoredKey, "other"}}},
      {"1 001 1 2 3", {{ReadEvent::FreeValue, "1"}, {ReadEvent::FreeValue, "2"}}},
      {"1 1110 0 0", {{ReadEvent::GluedValue, "1110"}}},
      {"1 111 0 0 0mm x", {{ReadEvent::NumberPart, "0mm"}, {ReadEvent::IgnoredKey, "mm"}}},
      {"1 111 0 0 0 Euler1=2,1", {{ReadEvent::NumberPart, "2,1"}}},
  };
  for (const Case& c : cases)
    EXPECT_EQ(NoticesOf(c.record, ReadConstraints), c.notices) << c.record;
}

TEST(RecordNotices, OfNodalLoads)
{
  static const Case cases[] = {
      {"2 1 2 3", {}},
      {"2 1 2 3 # x", {}},
      {"2.5 1 2 3 4", {{ReadEvent::NumberPart, "2.5"}, {ReadEvent::IgnoredKey, "3"}}},
      {"2 1 2 3,5 4", {{ReadEvent::NumberPart, "3,5"}, {ReadEvent::IgnoredKey, ",5"}}},
  };
  for (const Case& c : cases)
    EXPECT_EQ(NoticesOf(c.record, ReadNodalLoads), c.notices) << c.record;
}

TEST(RecordNotices, OfElementLoads)
{
  const auto read = [](const char* keyword) {
    return [keyword](TextScan& text, Problem& problem) { ReadElemLoad(text, keyword, problem); };
  };
  static const Case pressures[] = {
      {"1 2 3", {}},
      {"1 2 3 # 4", {}},
      {"1 2 3kN x", {{ReadEvent::NumberPart, "3kN"}, {ReadEvent::IgnoredKey, "kN"}}},
  };
  for (const Case& c : pressures)
    EXPECT_EQ(NoticesOf(c.record, read("face_loads")), c.notices) << c.record;
}

TEST(RecordNotices, OfTemperatures)
{
  const auto read = [](TextScan& text, Problem& problem) {
    ReadElemLoad(text, "temperature_loads", problem);
  };
  EXPECT_EQ(NoticesOf("1 1e-5 30", read), (Notices{{ReadEvent::LineTail, ""}}));
  EXPECT_EQ(NoticesOf("1 1e-5 30,5", read),
            (Notices{{ReadEvent::NumberPart, "30,5"}, {ReadEvent::LineTail, ",5"}}));
}

TEST(RecordNotices, OfRepeatedItems)
{
  static const Case cases[] = {
      {"1 111 0 0 0 Euler1=1 Euler2=1", {}},
      {"1 111 0 0 0 Euler1=1 euler1=2", {{ReadEvent::RepeatedItem, "euler1=2"}}},
  };
  for (const Case& c : cases)
    EXPECT_EQ(NoticesOf(c.record, ReadConstraints), c.notices) << c.record;
  EXPECT_EQ(NoticesOf("1 10\n1 10 # same\n1 01", ReadElementHinges),
            (Notices{{ReadEvent::LineTail, ""},
                     {ReadEvent::LineTail, " # same"},
                     {ReadEvent::LineTail, ""},
                     {ReadEvent::RepeatedItem, "01"}}));
}

TEST(RecordNotices, OfASolidLoadWithoutAFace)
{
  const std::string head =
      "problem type 2d\nmesh dimension 3 elemtype Tetrahedra nnode 4 coordinates\n"
      "1 0 0 0\n2 1 0 0\n3 0 1 0\n4 0 0 1\nend\nelements\n1 1 2 3 4 1\nend\n";
  const auto problem = ReadProblemText(head);
  for (const bool faces : {true, false}) {
    TextScan text("1 1 10\nend\n");
    const ReadListener listener;
    ReadElemLoad(text, faces ? "face_loads" : "global_pressure_loads", *problem);
    const auto missing = std::count(listener.notices.begin(), listener.notices.end(),
                                    Notices::value_type{ReadEvent::FaceMissing, " 1 10"});
    EXPECT_EQ(missing, faces ? 1 : 0);
  }
}

// The face ends where its digits end, in files with a 3d header.
TEST(RecordNotices, OfFaces)
{
  const std::string file =
      "problem type 3d\nmesh dimension 3 elemtype Tetrahedra nnode 4 coordinates\n"
      "1 0 0 0\n2 1 0 0\n3 0 1 0\n4 0 0 1\nend\nelements\n1 1 2 3 4 1\nend\n";
  const auto problem = ReadProblemText(file);
  const auto noticesOf = [&](const std::string& record) {
    const std::string block = record + "\nend\n";
    TextScan text(block);
    const ReadListener listener;
    ReadElemLoad(text, "face_loads", *problem);
    Notices notices = listener.notices;
    std::erase_if(notices, [](const auto& n) { return n.first != ReadEvent::NumberPart; });
    return notices;
  };
  EXPECT_EQ(noticesOf("1 2 1 2 3"), Notices());
  EXPECT_EQ(noticesOf("1 0.0 1 2"), (Notices{{ReadEvent::NumberPart, "0.0"}}));
  EXPECT_EQ(noticesOf("1 1.5 2.5 3.5"), (Notices{{ReadEvent::NumberPart, "1.5"}}));
}

TEST(RecordNotices, OfHinges)
{
  static const Case nodes[] = {
      {"2", {}},
      {"2 hinge", {}},
      {"2 # 1", {}},
      {"2 1", {{ReadEvent::LineTail, " 1"}}},
      {"2, 1", {{ReadEvent::NumberPart, "2,"}, {ReadEvent::LineTail, ", 1"}}}};
  for (const Case& c : nodes)
    EXPECT_EQ(NoticesOf(c.record, ReadNodeHinges), c.notices) << c.record;
  static const Case codes[] = {
      {"1 10", {{ReadEvent::LineTail, ""}}},
      {"1 10 rest", {{ReadEvent::LineTail, " rest"}}},
      {"1 110", {{ReadEvent::NumberPart, "110"}, {ReadEvent::LineTail, ""}}},
      {"1 1.0", {{ReadEvent::NumberPart, "1.0"}, {ReadEvent::LineTail, ""}}},
  };
  for (const Case& c : codes)
    EXPECT_EQ(NoticesOf(c.record, ReadElementHinges), c.notices) << c.record;
}

}  // namespace morlen
