// The quicksort's moves over ranks against the moves themselves, and the input that is worst for them.

#include "platform/runtime/QuickSortRanked.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <numeric>
#include <random>
#include <string>
#include <vector>

#include "platform/runtime/QuickSort.h"

namespace vx {
namespace {

struct TNumbered {
  std::int32_t value;
  std::uint32_t item;
  bool operator==(const TNumbered&) const = default;
};

std::vector<TNumbered> Number(const std::vector<std::int32_t>& values) {
  std::vector<TNumbered> items;
  for (const std::int32_t value : values) items.push_back({value, static_cast<std::uint32_t>(items.size())});
  return items;
}

std::vector<TNumbered> ByMoves(std::vector<TNumbered> items) {
  QuickSort(TPlainItems<TNumbered>{items.data()}, static_cast<std::int32_t>(items.size()),
            [](const TNumbered& a, const TNumbered& b) { return (a.value > b.value) - (a.value < b.value); });
  return items;
}

std::vector<TNumbered> ByRanks(const std::vector<TNumbered>& items) {
  std::vector<TNumbered> order = items;
  std::stable_sort(order.begin(), order.end(), [](const auto& a, const auto& b) { return a.value < b.value; });
  std::vector<TRankedItem> sorted, before(items.size());
  for (std::size_t i = 0; i < order.size(); ++i) {
    const bool isNew = i == 0 || order[i - 1].value != order[i].value;
    sorted.push_back({isNew ? static_cast<std::uint32_t>(i) : sorted.back().rank, order[i].item});
    before[order[i].item] = sorted.back();
  }
  QuickSortRanked(before, sorted);
  for (std::size_t i = 0; i < order.size(); ++i) order[i] = items[sorted[i].item];
  return order;
}

TEST(QuickSortRanked, LeavesEqualItemsWhereTheMovesDo) {
  for (std::uint32_t seed = 1; seed <= 1500; ++seed) {
    SCOPED_TRACE("seed " + std::to_string(seed));
    std::mt19937 random(seed);
    std::vector<std::int32_t> values(random() % (seed % 10 == 0 ? 3000 : 40));
    const std::uint_fast32_t distinct = 1 + random() % (1u << random() % 13);  // from all equal to nearly all different
    for (std::int32_t& value : values) value = static_cast<std::int32_t>(random() % distinct);
    if (seed % 4 == 0) std::sort(values.begin(), values.end());
    if (seed % 8 == 0) std::reverse(values.begin(), values.end());
    ASSERT_EQ(ByRanks(Number(values)), ByMoves(Number(values)));
  }
}

// The greatest of every part stands in its middle, so that each partition takes off one item.
TEST(QuickSortRanked, TheWorstInputEndsInOrder) {
  std::vector<std::int32_t> values(20'000);
  std::iota(values.begin(), values.end(), 0);
  for (std::size_t last = 1; last < values.size(); ++last) std::swap(values[last / 2], values[last]);
  values[0] = values[1] = std::min(values[0], values[1]);  // the least twice: no part differs throughout
  const std::vector<TNumbered> sorted = ByMoves(Number(values));
  EXPECT_TRUE(std::is_sorted(sorted.begin(), sorted.end(), [](auto& a, auto& b) { return a.value < b.value; }));
  EXPECT_EQ(ByRanks(Number(values)), sorted);
}

}  // namespace
}  // namespace vx
