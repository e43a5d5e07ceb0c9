// Command.h: a command as the command line knows it.
//
// A command adds itself to the parser, with its options and their help, and gives back what is to be done when it was
// called. The options live in that function; nothing is looked up before the whole line is read.
//
//   TRunCommand AddTable(CLI::App& app);         // TableCommand.h; the list of all is in CommandLine.cpp
#pragma once

#include <functional>

#include "Inputs.h"

namespace CLI {
class App;
}

namespace vx::kestrix {

/// Exit codes.
inline constexpr int kSuccess = 0;
inline constexpr int kInternalError = 1;
inline constexpr int kUserError = 2;
inline constexpr int kInterrupted = 130;

/// Does a command's work and answers the exit code. Raises EUserError and EInterrupted.
using TRunCommand = std::function<int(const TStreams&)>;

}  // namespace vx::kestrix
