// Process.h: other programs, started and waited for.
//
//   TProcessInformation information;
//   RunProcess("\"my tool\" --out \"a b.png\"", information);     // the exit code
//
// A command line is words between blanks; the first is the program, looked for in PATH unless it has a "/". No shell
// reads it: "*", "$" and ">" are letters.
//
//   "a b" c         a b, c          quotes keep blanks together, and may stand within a word
//   say \"hi\"      say, "hi"       a backslash before a quote makes it a letter
//   "a\\" b\c       a\, b\c         of backslashes before a quote each pair is one; elsewhere they are letters
//   "a""b"          a"b             two quotes within quotes are one
//   ""              (empty word)
//
// Errors. EOSError, which names the program and what the system says, for a program that can't be started.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace vx {

/// What is known of a started program.
struct TProcessInformation {
  std::int32_t ProcessId = 0;
};

/// The words of a command line.
std::vector<std::string> CommandLineWords(std::string_view commandLine);

/// Starts a program with the environment, folder and streams of this one, and waits for its end, however long that
/// takes. Answers its exit code, or 128 and the number of the signal that ended it. `information` is set as soon as it
/// runs.
std::int32_t RunProcess(std::string_view commandLine, TProcessInformation& information);

}  // namespace vx
