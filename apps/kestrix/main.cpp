#include <unistd.h>

#include <iostream>

#include "CommandLine.h"
#include "Interrupt.h"

int main(int argc, char** argv) {
  using namespace vx::kestrix;
  CatchInterrupts();
  return RunKestrix({argv + (argc > 0 ? 1 : 0), argv + argc},
                    {.in = std::cin, .out = std::cout, .err = std::cerr, .errIsTerminal = isatty(STDERR_FILENO) == 1});
}
