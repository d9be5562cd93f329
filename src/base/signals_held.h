#pragma once

#include <csignal>

namespace morlen {

/// Holds back the signals that end the process, for this thread, until the scope ends: a file
/// appears and enters the register of unfinished files in one step, for example.
class SignalsHeld
{
public:
  SignalsHeld();
  SignalsHeld(const SignalsHeld&) = delete;
  SignalsHeld& operator=(const SignalsHeld&) = delete;
  ~SignalsHeld();

private:
  sigset_t before;
};

}  // namespace morlen
