// The register of unfinished files. It is a fixed table of atomic values, because a signal may
// arrive at any time and its handler may only use lock-free values and calls such as unlink and
// ftruncate (POSIX.1-2017, System Interfaces, 2.4.3: async-signal-safe functions).

#include "base/unfinished_files.h"

#include <dirent.h>
#include <fcntl.h>
#include <sched.h>
#include <unistd.h>

#include <array>
#include <atomic>
#include <csignal>

namespace morlen {

namespace {

// By system calls alone: opendir would allocate memory. The entries "." and ".." stay.
void RemoveFolderNow(const char* name)
{
  const int folder = open(name, O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC);
  if (folder < 0)
    return;
  alignas(dirent64) char entries[4096];
  for (ssize_t size = 0; (size = getdents64(folder, entries, sizeof entries)) > 0;) {
    for (ssize_t at = 0; at < size;) {
      const auto* entry = reinterpret_cast<const dirent64*>(entries + at);
      unlinkat(folder, entry->d_name, 0);
      at += entry->d_reclen;
    }
  }
  close(folder);
  rmdir(name);
}

void CleanUpFile(const char* removed, bool isFolder, int emptied)
{
  if (removed && isFolder)
    RemoveFolderNow(removed);
  else if (removed)
    unlink(removed);
  // The result is of no use: the process ends, or reports the error that led here.
  if (emptied >= 0 && ftruncate(emptied, 0) != 0)
    return;
}

class Register
{
public:
  ~Register() { CleanUp(); }

  // Returns the slot; -1 when all are taken.
  int Enter(const char* removed, bool isFolder, int emptied)
  {
    for (int i = 0; i < kSlots; ++i) {
      if (slots[i].taken.exchange(true))
        continue;
      slots[i].emptied = emptied;
      slots[i].isFolder = isFolder;
      slots[i].removed = removed;
      return i;
    }
    return -1;
  }

  void Leave(int slot)
  {
    slots[slot].removed = nullptr;
    slots[slot].emptied = -1;
    slots[slot].taken = false;
  }

  // True for the first caller, who cleans up and ends the process. False while the end is
  // postponed: the signal is noted then. AllowEnd may miss a signal that is noted at the same
  // moment, so that this function looks again.
  bool BeginEnd(int signal)
  {
    do {
      if (ends.exchange(true))
        return false;
      if (postponed == 0)
        return true;
      noted = signal;
      ends = false;
    } while (postponed == 0 && noted.exchange(0) != 0);
    return false;
  }

  // An end that has begun is waited for: it does not return. See BeginEnd for the other order.
  void PostponeEnd()
  {
    ++postponed;
    while (ends)
      sched_yield();
  }

  // Returns the signal that was noted, or 0.
  int AllowEnd() { return --postponed == 0 ? noted.exchange(0) : 0; }

  void CleanUp()
  {
    for (Slot& slot : slots)
      CleanUpFile(slot.removed.exchange(nullptr), slot.isFolder, slot.emptied.exchange(-1));
  }

private:
  static constexpr int kSlots = 1024;
  struct Slot
  {
    std::atomic<bool> taken = false;
    std::atomic<const char*> removed = nullptr;
    std::atomic<bool> isFolder = false;
    std::atomic<int> emptied = -1;
  };
  static_assert(std::atomic<const char*>::is_always_lock_free);
  static_assert(std::atomic<int>::is_always_lock_free);

  std::array<Slot, kSlots> slots;
  std::atomic<bool> ends = false;
  std::atomic<int> postponed = 0;  ///< calls of PostponeEnd without AllowEnd
  std::atomic<int> noted = 0;      ///< the last signal since then
};

constinit Register unfinishedFiles;

// A second signal may arrive in another thread while the first one cleans up: a terminal and a
// parent process both send Ctrl-C. It must not end the process early.
extern "C" void CleanUpAndEnd(int signal)
{
  if (!unfinishedFiles.BeginEnd(signal))
    return;
  unfinishedFiles.CleanUp();
  std::signal(signal, SIG_DFL);
  raise(signal);  // the signal is blocked here: the default action follows on return
}

}  // namespace

void UnfinishedFile::Remove(const char* name)
{
  removed = name;
  isFolder = false;
  EnterInRegister();
}

void UnfinishedFile::RemoveFolder(const char* name)
{
  removed = name;
  isFolder = true;
  EnterInRegister();
}

void UnfinishedFile::Empty(int descriptor)
{
  emptied = descriptor;
  EnterInRegister();
}

void UnfinishedFile::EnterInRegister()
{
  if (slot >= 0)
    unfinishedFiles.Leave(slot);
  slot = unfinishedFiles.Enter(removed, isFolder, emptied);
}

void UnfinishedFile::Release()
{
  if (slot >= 0)
    unfinishedFiles.Leave(slot);
  slot = -1;
  removed = nullptr;
  emptied = -1;
}

void UnfinishedFile::CleanUp()
{
  CleanUpFile(removed, isFolder, emptied);
  Release();
}

void PostponeEnd()
{
  unfinishedFiles.PostponeEnd();
}

void AllowEnd()
{
  if (const int signal = unfinishedFiles.AllowEnd())
    raise(signal);
}

void CleanUpOnSignals()
{
  for (const int signal :
       {SIGHUP, SIGINT, SIGQUIT, SIGTERM, SIGALRM, SIGVTALRM, SIGPROF, SIGUSR1, SIGUSR2, SIGXCPU}) {
    struct sigaction action = {};
    if (sigaction(signal, nullptr, &action) != 0 || action.sa_handler != SIG_DFL)
      continue;
    action.sa_handler = CleanUpAndEnd;
    action.sa_flags = 0;
    sigfillset(&action.sa_mask);
    sigaction(signal, &action, nullptr);
  }
}

}  // namespace morlen
