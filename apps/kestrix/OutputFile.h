// OutputFile.h: results reach their file whole or not at all.
//
// The bytes go to a temporary file beside the target, which takes the target's place when all is written. Until then a
// file that was there is untouched; whatever goes wrong, the temporary file is removed and nothing else has happened. A
// target that is no ordinary file (a terminal, a pipe, /dev/null) is written directly.
//
//   CheckOutput("out.png", {"orders.csv"});     // before the work: is it one of the inputs? can it be written?
//   WriteOutput("out.png", bytes);
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace vx::kestrix {

/// Raises EUserError if `path` is one of the inputs ("-" is standard input), by any name or link, or a directory, or in
/// none.
void CheckOutput(const std::string& path, const std::vector<std::string>& inputs);

/// Writes `bytes` as the new content of `path`. Raises EUserError with the system's reason, EInterrupted.
void WriteOutput(const std::string& path, std::string_view bytes);

}  // namespace vx::kestrix
