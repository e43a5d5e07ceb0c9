#include "host/cairo/PictureFile.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <memory>
#include <vector>

#include "platform/canvas/Bitmap.h"

namespace vx {

namespace {

constexpr std::size_t kBlock = std::size_t{1} << 16;

/// A device or a pipe is written to; only a plain file gives way to a new one.
bool IsPlainOrMissing(const std::string& path) {
  std::error_code ignored;
  const auto type = std::filesystem::status(path, ignored).type();
  return type == std::filesystem::file_type::regular || type == std::filesystem::file_type::not_found;
}

/// A link stays; what it points to gives way.
std::string WithoutLinks(const std::string& path) {
  std::error_code error;
  if (!std::filesystem::is_symlink(path, error)) return path;
  const auto target = std::filesystem::canonical(path, error);
  return error ? path : target.string();
}

/// Nobody's file yet.
std::string NameBeside(const std::string& path) {
  std::error_code ignored;
  std::string name = path + ".part";
  for (int i = 2; std::filesystem::exists(std::filesystem::symlink_status(name, ignored)); ++i)
    name = path + ".part" + std::to_string(i);
  return name;
}

struct TCloseFile {
  void operator()(std::FILE* file) const { std::fclose(file); }
};

[[noreturn]] void FailReading(const std::string& path, std::string_view reason) {
  throw EGraphicError("Cannot read " + path + ": " + std::string(reason));
}

}  // namespace

void WritePictureFile(const std::string& path, std::string_view bytes) {
  const bool replaces = IsPlainOrMissing(path);
  const std::string target = replaces ? WithoutLinks(path) : path;
  const std::string beside = replaces ? NameBeside(target) : target;
  errno = 0;
  std::ofstream file(beside, std::ios::binary);
  file.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
  const bool wasOpen = file.is_open();
  file.close();
  if (file && (!replaces || std::rename(beside.c_str(), target.c_str()) == 0)) return;
  const std::string reason = std::strerror(errno);
  if (replaces && wasOpen) std::remove(beside.c_str());
  throw EGraphicError("Cannot write " + path + ": " + reason);
}

std::string ReadPictureFile(const std::string& path, std::string_view signature, std::string_view unlike,
                            std::size_t limit) {
  const std::unique_ptr<std::FILE, TCloseFile> file(std::fopen(path.c_str(), "rb"));
  if (!file) FailReading(path, std::strerror(errno));
  std::string bytes;
  std::vector<char> block(kBlock);
  while (const std::size_t count = std::fread(block.data(), 1, block.size(), file.get())) {
    bytes.append(block.data(), count);
    if (!bytes.starts_with(signature)) FailReading(path, unlike);
    if (bytes.size() > limit) FailReading(path, "it is longer than " + std::to_string(limit) + " bytes");
  }
  if (std::ferror(file.get()) != 0) FailReading(path, std::strerror(errno));
  return bytes;
}

}  // namespace vx
