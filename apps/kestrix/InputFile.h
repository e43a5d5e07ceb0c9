// InputFile.h: reading whole inputs.
#pragma once

#include <cstddef>
#include <iosfwd>
#include <limits>
#include <string>

namespace vx::kestrix {

/// The name that stands for standard input, and what messages call it.
inline constexpr const char* kStandardInput = "-";
inline constexpr const char* kStandardInputName = "standard input";

/// What messages call the input of that path.
std::string InputName(const std::string& path);

/// All bytes of the file, or of `standardInput` for "-". Raises EUserError for what can't be read, directories
/// included, and for more than `most` bytes; EInterrupted.
std::string ReadInput(const std::string& path, std::istream& standardInput,
                      std::size_t most = std::numeric_limits<std::size_t>::max());

}  // namespace vx::kestrix
