#pragma once

namespace morlen {

/// Asks whether the run of a thread shall end early. It returns, or throws to end the run.
using InterruptionTest = void (*)();

/// The test of this thread; null when nothing interrupts it, as in the program.
extern constinit thread_local InterruptionTest interruptionTest;

/// Called in all long loops, many times a second: a program that embeds the library can end a run.
/// The test may throw. As with fatal errors, each function on the way frees its memory and files by
/// destructors.
inline void CheckInterruption()
{
  if (interruptionTest)
    interruptionTest();
}

}  // namespace morlen
