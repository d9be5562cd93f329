#pragma once

#include <functional>
#include <set>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "base/errorwriter.h"
#include "base/read_observer.h"
#include "base/textscan.h"
#include "check/joined.h"
#include "check/problems.h"

namespace morlen::check {

/// Follows the core's readers over a text and collects what they refuse and what they pass over.
///
/// While it lives it is the observer of the readers, and errors end steps instead of the process.
class Recorder : public ReadObserver
{
public:
  /// Both are borrowed; the scan is over the text.
  Recorder(std::string_view text, TextScan& scan);
  Recorder(const Recorder&) = delete;
  Recorder& operator=(const Recorder&) = delete;
  ~Recorder() override;

  bool Attempt(TextScan* text, const std::function<void()>& step) override;
  bool AttemptOn(ReadItem item, int number, const std::function<void()>& step) override;
  void Notice(ReadEvent event, std::string_view place, std::string_view detail) override;
  void Stored(ReadItem item, int number) override;

  /// The parts, texts and whole numbers, make up the message.
  template <class... Parts>
  void Error(std::ptrdiff_t offset, const Parts&... parts)
  {
    ++errors;
    problems.push_back({Severity::Error, offset, Joined(parts...)});
  }
  template <class... Parts>
  void Warn(std::ptrdiff_t offset, const Parts&... parts)
  {
    problems.push_back({Severity::Warning, offset, Joined(parts...)});
  }

  /// Runs a step whose errors belong to this place, with `remark` behind their messages.
  bool AttemptAt(std::ptrdiff_t offset, const std::function<void()>& step,
                 const std::function<std::string(std::string_view)>& remark = {});

  /// Where the file gives an item last; kWholeFile when it does not.
  std::ptrdiff_t PlaceOf(ReadItem item, int number) const;
  std::ptrdiff_t PlaceOfKeyword(std::string_view name) const;
  bool UsesUnits(const std::string& name) const { return usedUnits.contains(name); }
  bool HasErrors() const { return errors > 0; }
  /// Whether the blocks of this keyword have been read without errors.
  bool IsWhole(const std::string& name) const { return !broken.contains(name); }
  /// Whether every keyword of the top level is known.
  bool KnowsAll() const { return !unknownKeyword; }
  const std::vector<Problem>& Problems() const { return problems; }

private:
  bool Run(const std::function<void()>& step);
  void SkipBrokenRecord(TextScan& text, std::ptrdiff_t start);
  void Refused(std::string_view message);
  void EnterKeyword(std::string_view word, std::ptrdiff_t offset);
  void NoteSkipped(std::ptrdiff_t offset, std::string_view skipped, std::string_view wanted);
  std::ptrdiff_t RecordStart(std::ptrdiff_t offset) const;
  int LineNumber(std::ptrdiff_t offset) const;

  static constexpr int kItems = 4;

  std::string_view content;
  std::vector<std::ptrdiff_t> newlines;  ///< their offsets, ascending
  TextScan& scan;
  ErrorWriter::EndOfRun previousEnd;
  std::vector<Problem> problems;
  int errors = 0;
  std::ptrdiff_t start = kWholeFile;  ///< of the running step
  std::ptrdiff_t lost = kWholeFile;   ///< where a search began that has failed
  std::ptrdiff_t fixedPlace = kWholeFile;
  std::function<std::string(std::string_view)> remarkOn;
  bool keywordSeen = false;   ///< in the running step of the top level
  bool unknownWords = false;  ///< the words behind an unknown keyword belong to it
  bool unknownKeyword = false;
  int depth = 0;
  std::string keyword;  ///< read last, in lower case
  std::set<std::string> broken;
  std::unordered_map<int, std::ptrdiff_t> places[kItems];
  std::unordered_map<std::string, std::ptrdiff_t> keywords;  ///< in lower case
  std::set<std::string> usedUnits;
};

}  // namespace morlen::check
