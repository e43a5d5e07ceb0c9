#include "support/Golden.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <vector>

#include "support/TestFolder.h"
#include "support/TestKit.h"

namespace vx::test {
namespace {

constexpr std::size_t kShown = 8;

void AppendLines(std::string& to, char mark, const std::vector<std::string>& lines, std::size_t from) {
  for (std::size_t i = from; i < std::min(from + kShown, lines.size()); ++i)
    to.append(std::to_string(i + 1)).append({' ', mark, ' '}).append(lines[i]).append("\n");
}

/// The first lines in which two texts differ, numbered, "-" for the wanted and "+" for the given; empty if equal.
std::string FirstDifferences(std::string_view wanted, std::string_view given) {
  if (wanted == given) return {};
  const std::vector<std::string> old = Cut(wanted, '\n');
  const std::vector<std::string> now = Cut(given, '\n');
  const auto at = std::mismatch(old.begin(), old.end(), now.begin(), now.end());
  const auto from = static_cast<std::size_t>(at.first - old.begin());
  std::string text;
  AppendLines(text, '-', old, from);
  AppendLines(text, '+', now, from);
  return text.empty() ? "only the line feed at the end differs\n" : text;
}

}  // namespace

testing::AssertionResult MatchesGolden(const std::string& name, std::string_view text) {
  const std::filesystem::path golden = std::filesystem::path(KESTRIX_GOLDEN_DIR) / name;
  const bool isThere = std::filesystem::exists(golden);
  const std::string wanted = ReadFile(golden);
  if (isThere && wanted == text) return testing::AssertionSuccess();
  std::filesystem::create_directories(golden.parent_path());
  std::ofstream(golden.string() + ".new", std::ios::binary) << text;
  if (!isThere) return testing::AssertionFailure() << "there is no golden " << name << "; wrote " << name << ".new";
  return testing::AssertionFailure() << name << " differs; wrote " << name << ".new\n"
                                     << FirstDifferences(wanted, text);
}

}  // namespace vx::test
