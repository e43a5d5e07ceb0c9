// TestFolder.h: files for one test.
#pragma once

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

namespace vx::test {

/// All bytes of a file; none of one that can't be read.
inline std::string ReadFile(const std::filesystem::path& path) {
  std::ostringstream bytes;
  bytes << std::ifstream(path, std::ios::binary).rdbuf();
  return bytes.str();
}

/// A folder that is there for one test.
class TTestFolder {
 public:
  TTestFolder() {
    std::string name = std::filesystem::temp_directory_path() / "kestrix-test-XXXXXX";
    if (mkdtemp(name.data()) == nullptr) throw std::runtime_error("no folder for the test");
    path_ = name;
  }
  ~TTestFolder() {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
  }
  TTestFolder(const TTestFolder&) = delete;
  TTestFolder& operator=(const TTestFolder&) = delete;

  std::string Path(const std::string& name) const { return (path_ / name).string(); }
  std::string Write(const std::string& name, const std::string& bytes) const {
    std::ofstream(path_ / name, std::ios::binary) << bytes;
    return Path(name);
  }
  std::string Read(const std::string& name) const { return ReadFile(path_ / name); }
  /// Names of all files, sorted and separated by blanks.
  std::string List() const {
    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(path_))
      names.push_back(entry.path().filename().string());
    std::sort(names.begin(), names.end());
    std::string list;
    for (const std::string& name : names) list += (list.empty() ? "" : " ") + name;
    return list;
  }

 private:
  std::filesystem::path path_;
};

}  // namespace vx::test
