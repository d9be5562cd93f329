#pragma once

#include <cstdio>
#include <filesystem>
#include <iosfwd>
#include <optional>
#include <span>
#include <string_view>

#include "base/output_file.h"

namespace morlen {

/// An OutputFile of a companion: Commit tells the user its name.
///
/// Until Commit a regular target keeps its old content. Without Commit no file remains, also after
/// a signal. Devices and pipes are written in place. Fatal: a target that RefuseSources refuses, or
/// a folder; a folder or a disk where the file cannot be written.
class AtomicFile
{
public:
  /// Who writes.
  enum class By
  {
    Program,  ///< Commit prints a note on standard output
    Filter    ///< a program whose standard output has data: notes go to standard error
  };

  explicit AtomicFile(const std::filesystem::path& name, By writer = By::Program);

  void Write(std::string_view text);
  /// The stream of the file, or of the standard output.
  std::ostream& Stream();

  /// Finishes the file and notes "wrote" and its name; nothing for the standard output. Fatal when
  /// something written to the file is lost.
  void Commit();

private:
  std::filesystem::path name;
  std::optional<OutputFile> file;  ///< none for the standard output
  By by;
};

/// Filter when one of the outputs of a program is the standard output, else Program.
AtomicFile::By WriterOf(std::span<const std::optional<std::filesystem::path>> outputs);

/// Where a program prints its notes.
std::FILE* NotesOf(AtomicFile::By writer);

}  // namespace morlen
