// Interrupt.h: Ctrl-C as an exception at a safe place.
//
// The signal only raises a flag. Whoever works long asks for it now and then and leaves by EInterrupted, so that
// everything is undone on the way: no half-written file stays behind. A second Ctrl-C ends the process at once, should
// it hang.
#pragma once

namespace vx::kestrix {

/// From now on SIGINT and SIGTERM raise the flag. Called once by main.
void CatchInterrupts();

/// Raises EInterrupted if the flag is up, and takes the flag down.
void CheckInterrupt();

/// Raises the flag, as the signal does.
void RaiseInterrupt();

}  // namespace vx::kestrix
