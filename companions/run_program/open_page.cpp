#include "run_program/open_page.h"

#include <fcntl.h>
#include <spawn.h>
#include <unistd.h>

#include <csignal>
#include <cstring>
#include <iostream>
#include <string>

namespace morlen::run {

namespace {

constexpr const char* kOpener = "xdg-open";

// The words of the browser would mix with those of the run. The signals of this process, which it
// blocks or ignores, are not those of the browser.
class SilentStart
{
public:
  SilentStart()
  {
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(&actions, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
    posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, "/dev/null", O_WRONLY, 0);
    posix_spawn_file_actions_adddup2(&actions, STDOUT_FILENO, STDERR_FILENO);
    posix_spawnattr_init(&attributes);
    posix_spawnattr_setflags(&attributes, kFlags);
    sigset_t signals;
    sigemptyset(&signals);
    posix_spawnattr_setsigmask(&attributes, &signals);
    sigfillset(&signals);
    posix_spawnattr_setsigdefault(&attributes, &signals);
  }
  SilentStart(const SilentStart&) = delete;
  SilentStart& operator=(const SilentStart&) = delete;
  ~SilentStart()
  {
    posix_spawn_file_actions_destroy(&actions);
    posix_spawnattr_destroy(&attributes);
  }

  // Returns 0 or the number of the error.
  int Start(char* const* words) const
  {
    pid_t process = 0;
    return posix_spawnp(&process, words[0], &actions, &attributes, words, environ);
  }

private:
  static constexpr int kFlags = POSIX_SPAWN_SETSID | POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSIGDEF;

  posix_spawn_file_actions_t actions;
  posix_spawnattr_t attributes;
};

}  // namespace

void OpenPage(const std::filesystem::path& page)
{
  std::string opener = kOpener;
  std::string name = std::filesystem::absolute(page).string();
  char* const words[] = {opener.data(), name.data(), nullptr};
  if (const int error = SilentStart().Start(words))
    std::cerr << "can't open " << page.string() << ": " << kOpener << ": " << std::strerror(error)
              << ". Open it in a browser\n";
}

}  // namespace morlen::run
