#include "base/signals_held.h"

#include "base/unfinished_files.h"

namespace morlen {

SignalsHeld::SignalsHeld()
{
  sigset_t all;
  sigfillset(&all);
  pthread_sigmask(SIG_BLOCK, &all, &before);
  PostponeEnd();
}

SignalsHeld::~SignalsHeld()
{
  AllowEnd();
  pthread_sigmask(SIG_SETMASK, &before, nullptr);
}

}  // namespace morlen
