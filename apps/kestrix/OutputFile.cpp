#include "OutputFile.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <optional>
#include <utility>

#include "InputFile.h"
#include "Interrupt.h"
#include "UserError.h"

namespace vx::kestrix {

namespace {

constexpr std::size_t kBlock = std::size_t{1} << 20;
constexpr std::size_t kMostLinks = 40;  // in a row, as the system has it

[[noreturn]] void FailWriting(const std::string& path) {
  if (errno == EINTR) CheckInterrupt();
  throw EUserError({path, 0, {}}, "cannot be written: " + std::string(std::strerror(errno)));
}

std::optional<struct stat> StatusOf(const std::string& path) {
  struct stat status = {};
  const int result = path == kStandardInput ? fstat(STDIN_FILENO, &status) : stat(path.c_str(), &status);
  return result == 0 ? std::optional(status) : std::nullopt;
}

/// The file that a chain of links ends at, also one that isn't there yet, so that the links stay.
std::string BehindLinks(const std::string& path) {
  std::filesystem::path target = path;
  std::error_code error;
  for (std::size_t link = 0; link < kMostLinks; ++link) {
    if (!std::filesystem::is_symlink(target, error)) return target.string();
    target = target.parent_path() / std::filesystem::read_symlink(target, error);
  }
  errno = ELOOP;
  FailWriting(path);
}

std::string FolderOf(const std::string& path) {
  const std::filesystem::path folder = std::filesystem::path(path).parent_path();
  return folder.empty() ? "." : folder.string();
}

/// An open descriptor that closes itself.
class TDescriptor {
 public:
  explicit TDescriptor(int number) : number_(number) {}
  ~TDescriptor() {
    if (number_ >= 0) close(number_);
  }
  TDescriptor(const TDescriptor&) = delete;
  TDescriptor& operator=(const TDescriptor&) = delete;

  bool IsOpen() const { return number_ >= 0; }
  int Number() const { return number_; }
  bool Write(std::string_view bytes) const {
    while (!bytes.empty()) {
      CheckInterrupt();
      const ssize_t count = write(number_, bytes.data(), std::min(bytes.size(), kBlock));
      if (count < 0 && errno != EINTR) return false;
      if (count > 0) bytes.remove_prefix(static_cast<std::size_t>(count));
    }
    return true;
  }
  /// Some systems tell of a full disk only here.
  bool Close() { return close(std::exchange(number_, -1)) == 0; }

 private:
  int number_;
};

/// Removes the file unless it was given up.
class TTemporaryFile {
 public:
  explicit TTemporaryFile(std::string path) : path_(std::move(path)) {}
  ~TTemporaryFile() {
    if (!path_.empty()) unlink(path_.c_str());
  }
  TTemporaryFile(const TTemporaryFile&) = delete;
  TTemporaryFile& operator=(const TTemporaryFile&) = delete;

  bool MoveTo(const std::string& target) {
    if (rename(path_.c_str(), target.c_str()) != 0) return false;
    path_.clear();
    return true;
  }

 private:
  std::string path_;
};

/// Those of the file that is replaced, or those that a new file would get.
mode_t PermissionsFor(const std::string& target) {
  if (const auto status = StatusOf(target)) return status->st_mode & 07777;
  const mode_t mask = umask(0);
  umask(mask);
  return 0666 & ~mask;
}

void Replace(const std::string& path, std::string_view bytes) {
  const std::string target = BehindLinks(path);
  std::string name = target + ".XXXXXX";
  TDescriptor file(mkstemp(name.data()));
  if (!file.IsOpen()) FailWriting(path);
  TTemporaryFile temporary(name);
  const bool isWritten = fchmod(file.Number(), PermissionsFor(target)) == 0 && file.Write(bytes) && file.Close();
  if (!isWritten) FailWriting(path);
  CheckInterrupt();
  if (!temporary.MoveTo(target)) FailWriting(path);
}

void WriteDirectly(const std::string& path, std::string_view bytes) {
  TDescriptor file(open(path.c_str(), O_WRONLY));
  if (!file.IsOpen() || !file.Write(bytes) || !file.Close()) FailWriting(path);
}

}  // namespace

void CheckOutput(const std::string& path, const std::vector<std::string>& inputs) {
  const auto target = StatusOf(path);
  if (target && S_ISDIR(target->st_mode)) throw EUserError({path, 0, {}}, "is a directory");
  if (!target && access(FolderOf(path).c_str(), W_OK) != 0) FailWriting(path);
  if (!target || !S_ISREG(target->st_mode)) return;
  for (const std::string& input : inputs) {
    const auto source = StatusOf(input);
    if (source && source->st_dev == target->st_dev && source->st_ino == target->st_ino)
      throw EUserError({path, 0, {}}, "is also the input; nothing was written");
  }
}

void WriteOutput(const std::string& path, std::string_view bytes) {
  const auto status = StatusOf(path);
  if (status && !S_ISREG(status->st_mode))
    WriteDirectly(path, bytes);
  else
    Replace(path, bytes);
}

}  // namespace vx::kestrix
