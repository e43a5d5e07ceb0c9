#include "Interrupt.h"

#include <csignal>

#include "UserError.h"

namespace vx::kestrix {

namespace {

// The one mutable global of the program: a signal handler can reach nothing else.
volatile std::sig_atomic_t interruptIsRaised = 0;

extern "C" void OnInterrupt(int) { interruptIsRaised = 1; }

}  // namespace

void CatchInterrupts() {
  struct sigaction action = {};
  action.sa_handler = OnInterrupt;
  action.sa_flags = static_cast<int>(SA_RESETHAND);  // no SA_RESTART: a read of standard input ends
  sigaction(SIGINT, &action, nullptr);
  sigaction(SIGTERM, &action, nullptr);
}

void RaiseInterrupt() { interruptIsRaised = 1; }

void CheckInterrupt() {
  if (interruptIsRaised == 0) return;
  interruptIsRaised = 0;
  throw EInterrupted();
}

}  // namespace vx::kestrix
