#pragma once

#include <array>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

#include "base/errorwriter.h"
#include "base/read_observer.h"
#include "base/textscan.h"
#include "check/findings.h"
#include "check/joined.h"
#include "check/run_end.h"
#include "check/unit_order.h"

namespace morlen::check {

/// Follows the core's readers over a text and collects the errors that they raise and the text
/// that they pass over.
///
/// It is the observer of its thread while it exists, and errors of this thread end steps instead
/// of the process. Its decisions depend on the typed facts of the readers, never on the wording
/// of a message.
class Recorder : public ReadObserver
{
public:
  /// All are borrowed; the scan is over the text, and the problem is filled from it.
  Recorder(std::string_view text, TextScan& scan, const Problem& problem);
  Recorder(const Recorder&) = delete;
  Recorder& operator=(const Recorder&) = delete;
  ~Recorder() override;

  bool Attempt(TextScan* text, const std::function<void()>& step) override;
  bool AttemptOn(ReadItem item, int number, const std::function<void()>& step) override;
  void Notice(ReadEvent event, std::string_view place, std::string_view detail) override;
  void Entered(ReadTopic topic) override;
  void Stored(ReadItem item, int number) override;

  /// The parts, texts and integers, make up the message.
  template <class... Parts>
  void Error(Code code, std::ptrdiff_t offset, const Parts&... parts)
  {
    ++errors;
    findings.push_back({Severity::Error, code, offset, Joined(parts...)});
  }
  template <class... Parts>
  void Warn(Code code, std::ptrdiff_t offset, const Parts&... parts)
  {
    findings.push_back({Severity::Warning, code, offset, Joined(parts...)});
  }

  /// Gives the finding that was recorded last its motion.
  void AddMotion(Motion motion)
  {
    motion.Normalise();
    findings.back().motion = std::make_shared<const Motion>(std::move(motion));
  }

  /// Text to be added to the message of an error with this reason; none when it is not known.
  using Remark = std::function<std::string(std::optional<ReadEvent> reason)>;

  /// Runs a step whose errors belong to this place and get this code, unless their reason is
  /// known; `remark` is asked about each of them.
  bool AttemptAt(Code code, std::ptrdiff_t offset, const std::function<void()>& step,
                 const Remark& remark = {});

  /// The code of the errors that follow: those of the steps that name none.
  void SetCode(Code code) { stepCode = code; }

  /// The place where the file gives an item last; kWholeFile when it does not.
  std::ptrdiff_t PlaceOf(ReadItem item, int number) const;
  /// The place of the first keyword with this topic; kWholeFile when there is none.
  std::ptrdiff_t PlaceOf(ReadTopic wanted) const;
  /// The line, from 1, of a place in the text.
  int LineNumber(std::ptrdiff_t offset) const;
  /// Reports units that come too late. After reading.
  void ReportUnitOrder() { unitOrder.Report(*this); }
  bool UsesUnits(const std::string& name) const { return usedUnits.contains(name); }
  bool HasErrors() const { return errors > 0; }
  /// True when the records with this topic have been read without errors.
  bool IsWhole(ReadTopic wanted) const { return !broken.contains(wanted); }
  /// True when every keyword of the top level is known and every block is read.
  bool KnowsAll() const { return !unknownKeyword && !blocksLost; }
  const std::vector<Finding>& Findings() const { return findings; }

private:
  bool Run(const std::function<void()>& step);
  void SkipBrokenRecord(TextScan& text, std::ptrdiff_t from);
  void AddError(std::string_view message);
  std::string HintAt(std::ptrdiff_t place) const;
  void EnterKeyword(std::ptrdiff_t offset);
  void Judge(ReadEvent event, std::string_view place, std::string_view detail);
  void JudgeFact(ReadEvent event, std::string_view place);
  void JudgeSkipped(std::string_view skipped, const std::string& target, int endLine = 0);
  void JudgeListEnd(std::string_view skipped);
  void JudgeEndLine(std::string_view skipped);
  void JudgeIgnoredKey(std::string_view key);
  void JudgeRepeatedItem(std::string_view item, std::string_view known);
  void JudgeWordPart(std::string_view word, std::string_view part);
  void JudgePrefix(std::string_view word, std::string_view beginning);
  void JudgeNumber(std::string_view word);
  void JudgeTail(std::string_view tail);
  void NoteBrokenRecord(std::ptrdiff_t from, const TextScan& text);
  void NoteLoss(bool blocks);
  bool IsConsequence(Code code, std::ptrdiff_t place) const;
  bool IsUnknownReference() const;
  bool IsInNodeList(std::string_view word) const;
  bool IsHingeCode(std::string_view word) const;
  bool IsOwnName(std::string_view words) const;
  std::ptrdiff_t OffsetIn(std::string_view place) const;
  std::ptrdiff_t RecordStart(std::ptrdiff_t offset) const;
  std::string_view TextBetween(std::ptrdiff_t from, std::ptrdiff_t end) const;

  static constexpr int kItems = 6;

  /// The list that is being read.
  struct List
  {
    std::string_view name;  ///< its keyword, as in the file
    std::ptrdiff_t offset = kWholeFile;
    bool ofMesh = false;  ///< the nodes or the elements of a mesh
  };

  std::string_view content;
  std::vector<std::ptrdiff_t> newlines;  ///< their offsets, ascending
  TextScan& scan;
  const Problem& problem;
  ObserverScope scope;
  ThrownErrors thrown;
  std::vector<Finding> findings;
  int errors = 0;
  std::ptrdiff_t start = kWholeFile;  ///< of the running step
  std::optional<ReadEvent> reason;    ///< of the error that follows, where it is known
  std::ptrdiff_t lost = kWholeFile;   ///< beginning of the search that has failed
  std::ptrdiff_t fixedPlace = kWholeFile;
  Code stepCode = Code::Refused;  ///< of errors whose reason is not known
  Remark remarkOn;
  bool keywordSeen = false;   ///< in the running step of the top level
  bool unknownWords = false;  ///< the words after an unknown keyword belong to it
  bool unknownKeyword = false;
  int depth = 0;                       ///< of the steps that run inside each other
  ReadTopic topic = ReadTopic::Other;  ///< of the keyword read last
  List list;
  bool judgesList = false;                   ///< the running step judges the whole list of nodes
  std::optional<std::size_t> listFinding;    ///< of that step, for the list that is being read
  bool stored = false;                       ///< the running step has given an item
  bool namedUnits = false;                   ///< the running step has looked up a unit system
  std::string brokenReason;                  ///< why it cannot be read; empty when not known
  std::ptrdiff_t brokenRecord = kWholeFile;  ///< record of a mesh of which a part was read
  bool recordsLost = false;                  ///< a list ended before its "end"
  bool blocksLost = false;                   ///< the same, and whole blocks with them
  bool derailed = false;  ///< the mesh is read from the wrong place: its other faults mean nothing
  std::ptrdiff_t lastNumberEnd = 0;  ///< of the misread number reported last
  std::set<std::ptrdiff_t> misread;  ///< records of elements with misread nodes
  UnitOrder unitOrder;
  std::set<ReadTopic> broken;
  std::array<std::unordered_map<int, std::ptrdiff_t>, kItems> places;
  std::map<ReadTopic, std::ptrdiff_t> topics;  ///< the places of their first keywords
  std::set<std::string> usedUnits;
};

}  // namespace morlen::check
