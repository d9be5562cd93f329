#pragma once

namespace morlen {

/// Removes or empties a file, or removes a folder, unless Release says that it is finished.
///
/// The destructor does it; so does the end of the process by exit (an error calls it, which runs no
/// destructors of local objects) and by the signals of CleanUpOnSignals.
class UnfinishedFile
{
public:
  UnfinishedFile() = default;
  UnfinishedFile(const UnfinishedFile&) = delete;
  UnfinishedFile& operator=(const UnfinishedFile&) = delete;
  ~UnfinishedFile() { CleanUp(); }

  /// The file of this name is removed. The text is borrowed until Release or CleanUp.
  void Remove(const char* name);
  /// The folder of this name is removed with the files in it. The text is borrowed as above.
  void RemoveFolder(const char* name);
  /// The open file is emptied. The descriptor is borrowed until Release or CleanUp.
  void Empty(int descriptor);

  void Release();  ///< the file stays as it is
  void CleanUp();  ///< removes or empties the file now

private:
  void EnterInRegister();

  const char* removed = nullptr;  ///< null: no file or folder is removed
  bool isFolder = false;          ///< removed is the name of a folder
  int emptied = -1;               ///< -1: no file is emptied
  int slot = -1;                  ///< place in the register of the process; -1 when it is full
};

/// Lets the signals that end the process clean up the unfinished files first; then the process ends
/// by the signal as before. Signals that are ignored, or that have a handler, are left alone.
/// SIGKILL, and the signals of faults in the program, cannot or do not clean up.
void CleanUpOnSignals();

/// Between the two, in any thread, the signals of CleanUpOnSignals neither clean up nor end the
/// process. AllowEnd makes up for the last of them. Calls can be nested. Use SignalsHeld.
void PostponeEnd();
void AllowEnd();

}  // namespace morlen
