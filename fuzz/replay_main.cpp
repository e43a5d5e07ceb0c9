// The main of a fuzz target where there is no libFuzzer: runs the target on files, with any compiler.
//   fuzz_csv_reader FILE|FOLDER...
// Each file is run as it stands, each beginning of it, and it with each byte changed in turn. Nothing is random.
#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <vector>

#include "Property.h"

namespace {

using TBytes = std::vector<std::uint8_t>;

std::size_t runs = 0;

/// Runs a copy of exactly that size, so that a sanitizer sees each byte read behind it.
void Run(const TBytes& bytes, std::size_t size) {
  const TBytes copy(bytes.begin(), bytes.begin() + static_cast<std::ptrdiff_t>(size));
  LLVMFuzzerTestOneInput(copy.data(), copy.size());
  ++runs;
}

void RunFile(const std::filesystem::path& path) {
  std::ifstream file(path, std::ios::binary);
  TBytes bytes{std::istreambuf_iterator<char>(file), {}};
  std::printf("%s\n", path.string().c_str());
  std::fflush(stdout);  // the last name is the culprit's
  for (std::size_t size = bytes.size() + 1; size-- > 0;) Run(bytes, size);
  for (std::uint8_t& byte : bytes) {
    const std::uint8_t was = byte;
    for (const int other : {0x00, 0x20, 0xFF, was ^ 0x01, was ^ 0x80}) {
      byte = static_cast<std::uint8_t>(other);
      Run(bytes, bytes.size());
    }
    byte = was;
  }
}

std::vector<std::filesystem::path> FilesIn(const std::filesystem::path& place) {
  if (!std::filesystem::is_directory(place)) return {place};
  std::vector<std::filesystem::path> files;
  for (const auto& entry : std::filesystem::recursive_directory_iterator(place))
    if (entry.is_regular_file()) files.push_back(entry.path());
  std::sort(files.begin(), files.end());
  return files;
}

}  // namespace

int main(int count, char** arguments) {
  std::size_t files = 0;
  for (int i = 1; i < count; ++i) {
    for (const auto& file : FilesIn(arguments[i])) {
      RunFile(file);
      ++files;
    }
  }
  std::printf("%zu files, %zu runs\n", files, runs);
  return files > 0 ? 0 : 1;  // a corpus that is gone must not pass for a clean one
}
