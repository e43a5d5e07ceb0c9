// CommandLine.h: the program as a function, so that tests run it without a process.
#pragma once

#include <string>
#include <vector>

#include "Inputs.h"

namespace vx::kestrix {

/// Exit codes.
inline constexpr int kSuccess = 0;
inline constexpr int kInternalError = 1;
inline constexpr int kUserError = 2;
inline constexpr int kInterrupted = 130;

/// Runs the program with its arguments, the program's name left out. Never raises: what goes wrong is one line on the
/// error output.
int RunKestrix(std::vector<std::string> arguments, const TStreams& streams);

}  // namespace vx::kestrix
