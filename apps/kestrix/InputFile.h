// InputFile.h: reading whole inputs.
#pragma once

#include <iosfwd>
#include <string>

namespace vx::kestrix {

/// The name that stands for standard input, and what messages call it.
inline constexpr const char* kStandardInput = "-";
inline constexpr const char* kStandardInputName = "standard input";

/// What messages call the input of that path.
std::string InputName(const std::string& path);

/// All bytes of the file, or of `standardInput` for "-". Raises EUserError for what can't be read, directories
/// included, and EInterrupted.
std::string ReadInput(const std::string& path, std::istream& standardInput);

}  // namespace vx::kestrix
