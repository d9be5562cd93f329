#include "base/signals_held.h"

namespace morlen {

SignalsHeld::SignalsHeld()
{
  sigset_t all;
  sigfillset(&all);
  pthread_sigmask(SIG_BLOCK, &all, &before);
}

SignalsHeld::~SignalsHeld()
{
  pthread_sigmask(SIG_SETMASK, &before, nullptr);
}

}  // namespace morlen
