#include "InputFile.h"

#include <cerrno>
#include <cstring>
#include <filesystem>
#include <fstream>

#include "Interrupt.h"
#include "UserError.h"

namespace vx::kestrix {

namespace {

constexpr std::size_t kBlock = std::size_t{256} * 1024;

std::string ReadAll(std::istream& in, const std::string& name, std::size_t most) {
  std::string bytes;
  std::string block(kBlock, '\0');
  do {
    CheckInterrupt();
    in.read(block.data(), static_cast<std::streamsize>(block.size()));
    bytes.append(block, 0, static_cast<std::size_t>(in.gcount()));
    if (bytes.size() > most) throw EUserError({name, 0, {}}, "is larger than " + std::to_string(most >> 20u) + " MiB");
  } while (in);
  CheckInterrupt();
  if (in.bad()) throw EUserError({name, 0, {}}, "cannot be read");
  return bytes;
}

}  // namespace

std::string InputName(const std::string& path) { return path == kStandardInput ? kStandardInputName : path; }

std::string ReadInput(const std::string& path, std::istream& standardInput, std::size_t most) {
  if (path == kStandardInput) return ReadAll(standardInput, kStandardInputName, most);
  std::error_code unknown;
  if (std::filesystem::is_directory(path, unknown)) throw EUserError({path, 0, {}}, "is a directory");
  errno = 0;
  std::ifstream file(path, std::ios::binary);
  if (!file) throw EUserError({path, 0, {}}, "cannot be read: " + std::string(std::strerror(errno)));
  return ReadAll(file, path, most);
}

}  // namespace vx::kestrix
