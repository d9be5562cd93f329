#pragma once

#include <fstream>
#include <string>

#include "base/descriptor.h"
#include "base/temporary_file.h"
#include "base/unfinished_files.h"

namespace morlen {

/// Opens a file for writing; it is created or emptied. Fatal when that fails.
void OpenOutput(std::ofstream& file, const std::string& name);

/// Flushes and closes the file. Fatal when anything written to it has been lost, for example
/// because the disk is full.
void CloseOutput(std::ofstream& file);

/// Ends the run because the file cannot be opened; `error`, the number of the system's error, is
/// the hint.
[[noreturn]] void CannotOpen(const std::string& name, int error);

/// A file of results. Its constructor tests that it can be written and changes nothing under its
/// name; Commit finishes it.
///
/// In between the content is in a TemporaryFile, so that under its name the file is as before,
/// empty or complete. It keeps its owner and its permissions, and links to it stay links. Written
/// in place are devices and pipes; descriptors that have a name ("/dev/stdout"); files with several
/// hard links; and files in folders that take no new file, or whose owner cannot be kept. A
/// file written in place is emptied when the run ends early, but not when it is killed.
class OutputFile
{
public:
  /// Fatal when the file cannot be written, or another process is writing it.
  explicit OutputFile(const std::string& name);
  OutputFile(const OutputFile&) = delete;
  OutputFile& operator=(const OutputFile&) = delete;

  /// Removes the content of a file that exists.
  void Empty();

  /// The name under which the content is written, for a writer that opens the file itself.
  const std::string& WrittenName() const { return temporary.IsCreated() ? temporary.Name() : name; }
  /// Opened for writing by the first call. Fatal when that fails.
  std::ofstream& Stream();

  /// Closes the stream and waits until the content is on the disk; then only the name is missing.
  /// Fatal when anything written has been lost.
  void Complete();
  /// Completes the file and puts the content under its name. Fatal as Complete.
  void Commit();

private:
  void OpenPresent(const struct stat& present);
  void EmptyUnlessCommitted();

  std::string name;
  Descriptor present;         ///< of a regular file that exists
  UnfinishedFile unfinished;  ///< the present file when it is written in place
  TemporaryFile temporary;    ///< not created for a file written in place
  std::ofstream stream;
};

}  // namespace morlen
