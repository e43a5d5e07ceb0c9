#include "support/Golden.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <optional>
#include <sstream>
#include <vector>

namespace vx::test {
namespace {

constexpr std::size_t kShown = 8;

std::vector<std::string> Lines(std::string_view text) {
  std::vector<std::string> lines;
  while (!text.empty()) {
    const std::size_t length = std::min(text.find('\n'), text.size());
    lines.emplace_back(text.substr(0, length));
    text.remove_prefix(std::min(length + 1, text.size()));
  }
  return lines;
}

std::optional<std::string> ReadFile(const std::filesystem::path& path) {
  std::ifstream file(path, std::ios::binary);
  if (!file) return std::nullopt;
  std::ostringstream content;
  content << file.rdbuf();
  return content.str();
}

void WriteFile(const std::filesystem::path& path, std::string_view text) {
  std::filesystem::create_directories(path.parent_path());
  std::ofstream(path, std::ios::binary) << text;
}

void AppendLines(std::string& to, char mark, const std::vector<std::string>& lines, std::size_t from) {
  for (std::size_t i = from; i < std::min(from + kShown, lines.size()); ++i)
    to.append(std::to_string(i + 1)).append({' ', mark, ' '}).append(lines[i]).append("\n");
}

}  // namespace

std::string FirstDifferences(std::string_view wanted, std::string_view given) {
  if (wanted == given) return {};
  const std::vector<std::string> old = Lines(wanted);
  const std::vector<std::string> now = Lines(given);
  const auto at = std::mismatch(old.begin(), old.end(), now.begin(), now.end());
  const auto from = static_cast<std::size_t>(at.first - old.begin());
  std::string text;
  AppendLines(text, '-', old, from);
  AppendLines(text, '+', now, from);
  return text.empty() ? "only the line feed at the end differs\n" : text;
}

testing::AssertionResult MatchesGolden(const std::string& name, std::string_view text) {
  const std::filesystem::path golden = std::filesystem::path(KESTRIX_GOLDEN_DIR) / name;
  const std::optional<std::string> wanted = ReadFile(golden);
  if (wanted && *wanted == text) return testing::AssertionSuccess();
  WriteFile(golden.string() + ".new", text);
  if (!wanted) return testing::AssertionFailure() << "there is no golden " << name << "; wrote " << name << ".new";
  return testing::AssertionFailure() << name << " differs; wrote " << name << ".new\n"
                                     << FirstDifferences(*wanted, text);
}

}  // namespace vx::test
