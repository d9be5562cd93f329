#pragma once

#include <cstdio>
#include <filesystem>
#include <iosfwd>
#include <memory>
#include <optional>
#include <span>
#include <string_view>

#include "base/output_file.h"

namespace morlen {

class OutputSet;

/// Fatal for a target that a companion never replaces: one that RefuseSources refuses, or a folder.
void RequireReplaceable(const std::filesystem::path& name);

/// An OutputFile of a companion: Commit tells the user its name.
///
/// Until Commit a regular target keeps its old content. Without Commit no file remains, also after
/// a signal. Devices and pipes are written in place. Fatal: a target that is not replaceable; a
/// folder or a disk where the file cannot be written.
class AtomicFile
{
public:
  /// Who writes, and when the file gets its name.
  class By
  {
  public:
    /// Commit prints a note on standard output.
    static const By Program;
    /// A program whose standard output has data: notes go to standard error.
    static const By Filter;
    /// Commit hands the file to the set, which is borrowed and gives the name later.
    By(OutputSet& set_) : set(&set_) {}  // NOLINT: a set is given in the place of By

    /// Where the notes go; null for none.
    std::FILE* Notes() const;
    /// Null without a set.
    OutputSet* Set() const { return set; }
    bool operator==(const By&) const = default;

  private:
    constexpr explicit By(bool isFilter_) : isFilter(isFilter_) {}

    bool isFilter = false;
    OutputSet* set = nullptr;
  };

  explicit AtomicFile(const std::filesystem::path& name, By writer = By::Program);

  void Write(std::string_view text);
  /// The stream of the file, or of the standard output.
  std::ostream& Stream();

  /// Finishes the file, to which nothing may be written after it, and notes "wrote" and its name;
  /// nothing for the standard output. Fatal when something written to the file is lost.
  void Commit();

private:
  std::filesystem::path name;
  std::unique_ptr<OutputFile> file;  ///< none for the standard output
  By by;
};

inline constexpr AtomicFile::By AtomicFile::By::Program{false};
inline constexpr AtomicFile::By AtomicFile::By::Filter{true};

/// Filter when one of the outputs of a program is the standard output, else Program.
AtomicFile::By WriterOf(std::span<const std::optional<std::filesystem::path>> outputs);

}  // namespace morlen
