#include "Suggest.h"

#include <algorithm>
#include <utility>

#include "UserError.h"
#include "platform/runtime/Text.h"

namespace vx::kestrix {

namespace {

constexpr std::size_t kLongestCompared = 100;  // letters; the compare is quadratic

std::u32string Letters(std::string_view text) {
  const std::string folded = FoldCase(text);
  std::u32string letters;
  for (std::size_t at = 0; at < folded.size() && letters.size() < kLongestCompared;)
    letters.push_back(NextCodePoint(folded, at));
  return letters;
}

/// Three rows of the table of distances at a time: row i answers the first i letters of `a` against all beginnings of
/// `b`.
std::size_t Distance(const std::u32string& a, const std::u32string& b) {
  std::vector<std::size_t> before(b.size() + 1), above(b.size() + 1), row(b.size() + 1);
  for (std::size_t j = 0; j <= b.size(); ++j) row[j] = j;
  for (std::size_t i = 1; i <= a.size(); ++i) {
    before = std::exchange(above, std::exchange(row, before));
    row[0] = i;
    for (std::size_t j = 1; j <= b.size(); ++j) {
      const std::size_t changed = above[j - 1] + (a[i - 1] == b[j - 1] ? 0 : 1);
      row[j] = std::min({changed, above[j] + 1, row[j - 1] + 1});
      const bool isSwapped = i > 1 && j > 1 && a[i - 1] == b[j - 2] && a[i - 2] == b[j - 1];
      if (isSwapped) row[j] = std::min(row[j], before[j - 2] + 1);
    }
  }
  return row[b.size()];
}

}  // namespace

std::optional<std::string> Nearest(std::string_view wrong, const std::vector<std::string>& names) {
  const std::u32string letters = Letters(wrong);
  std::optional<std::string> nearest;
  std::size_t least = 0;
  for (const std::string& name : names) {
    const std::u32string known = Letters(name);
    const std::size_t distance = Distance(letters, known);
    const bool isNear = distance * 3 <= std::max(letters.size(), known.size());
    if (!isNear || (nearest && distance >= least)) continue;
    nearest = name;
    least = distance;
  }
  return nearest;
}

std::string DidYouMean(std::string_view wrong, const std::vector<std::string>& names) {
  const auto nearest = Nearest(wrong, names);
  return nearest ? "; did you mean " + Quoted(*nearest) + "?" : std::string();
}

}  // namespace vx::kestrix
