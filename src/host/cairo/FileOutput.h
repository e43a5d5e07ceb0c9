// FileOutput.h: puts a file in place in one step.
//
// The content goes to a new file in the same folder, which then takes the name over. Whoever reads `path` sees the old
// file or the new one, never a part; after a failure the old one stands as it was and nothing else is left behind. A
// `path` that is no plain file (a device, a pipe) is written directly.
//
// A file that can't be written raises EGraphicError with its name and the system's reason.
#pragma once

#include <string>
#include <string_view>

namespace vx {

void WriteFileAtomically(const std::string& path, std::string_view content);

}  // namespace vx
