#include "host/cairo/FileOutput.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstring>

#include "host/cairo/CairoDevice.h"

namespace vx {
namespace {

constexpr int kNamesTried = 100;

[[noreturn]] void RaiseCantWrite(const std::string& path, int error) {
  throw EGraphicError("Cannot write " + path + ": " + std::strerror(error));
}

bool IsNoPlainFile(const std::string& path) {
  struct stat status;
  return stat(path.c_str(), &status) == 0 && !S_ISREG(status.st_mode) && !S_ISDIR(status.st_mode);
}

/// 0, or the error number of the first write that failed.
int WriteAll(int file, std::string_view content) {
  while (!content.empty()) {
    const ssize_t written = write(file, content.data(), content.size());
    if (written < 0 && errno != EINTR) return errno;
    if (written > 0) content.remove_prefix(static_cast<std::size_t>(written));
  }
  return 0;
}

void WriteDirectly(const std::string& path, std::string_view content) {
  const int file = open(path.c_str(), O_WRONLY | O_CLOEXEC);
  if (file < 0) RaiseCantWrite(path, errno);
  const int error = WriteAll(file, content);
  close(file);
  if (error != 0) RaiseCantWrite(path, error);
}

/// Opens a new file beside `path` and tells its name; -1 with the reason in errno.
int OpenBeside(const std::string& path, std::string& name) {
  for (int i = 0; i < kNamesTried; ++i) {
    name = path + ".part" + std::to_string(getpid()) + "-" + std::to_string(i);
    const int file = open(name.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
    if (file >= 0 || errno != EEXIST) return file;
  }
  return -1;
}

}  // namespace

void WriteFileAtomically(const std::string& path, std::string_view content) {
  if (IsNoPlainFile(path)) return WriteDirectly(path, content);
  std::string beside;
  const int file = OpenBeside(path, beside);
  if (file < 0) RaiseCantWrite(path, errno);
  int error = WriteAll(file, content);
  if (close(file) != 0 && error == 0) error = errno;
  if (error == 0 && std::rename(beside.c_str(), path.c_str()) != 0) error = errno;
  if (error == 0) return;
  unlink(beside.c_str());
  RaiseCantWrite(path, error);
}

}  // namespace vx
