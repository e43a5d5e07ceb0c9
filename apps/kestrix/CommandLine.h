// CommandLine.h: the program as a function, so that tests run it without a process.
#pragma once

#include <string>
#include <vector>

#include "Command.h"

namespace vx::kestrix {

/// Runs the program with its arguments, the program's name left out; answers the exit code. Never raises: what goes
/// wrong is one line on the error output.
int RunKestrix(std::vector<std::string> arguments, const TStreams& streams);

}  // namespace vx::kestrix
