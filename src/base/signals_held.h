#pragma once

#include <csignal>

namespace morlen {

/// Holds back the signals that end the process until the scope ends: a file appears and enters the
/// register of unfinished files in one step, for example. A signal that another thread takes is
/// held back too where CleanUpOnSignals handles it.
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
