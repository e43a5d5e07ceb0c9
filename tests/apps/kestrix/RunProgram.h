// RunProgram.h: the program run within the test, with its files in a folder of its own.
#pragma once

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include "CommandLine.h"

namespace vx::kestrix {

struct TRun {
  int code = -1;
  std::string out;
  std::string err;
};

/// Runs the program; `input` is its standard input.
inline TRun RunProgram(const std::vector<std::string>& arguments, const std::string& input = {}) {
  std::istringstream in(input);
  std::ostringstream out, err;
  TRun run;
  run.code = RunKestrix(arguments, {.in = in, .out = out, .err = err});
  run.out = out.str();
  run.err = err.str();
  return run;
}

/// A folder that is there for one test.
class TTestFolder {
 public:
  TTestFolder() {
    const auto* const test = testing::UnitTest::GetInstance()->current_test_info();
    std::string name = std::filesystem::temp_directory_path() /
                       (std::string("kestrix-") + test->test_suite_name() + test->name() + "-XXXXXX");
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
  std::string Read(const std::string& name) const {
    std::ostringstream bytes;
    bytes << std::ifstream(path_ / name, std::ios::binary).rdbuf();
    return bytes.str();
  }
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

}  // namespace vx::kestrix
