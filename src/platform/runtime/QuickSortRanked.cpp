#include "platform/runtime/QuickSortRanked.h"

#include <algorithm>
#include <array>
#include <utility>
#include <vector>

namespace vx {

namespace {

/// Where a partition's two indexes have got to: `left` stands behind all that it passed, `right` before.
struct TMeeting {
  TRankedItem* left;
  TRankedItem* right;
};

// -- Partition --------------------------------------------------------------------------------------------------------
//
// The moves swap the first item from the left that isn't below the pivot with the first from the right that isn't above
// it, then the second with the second, until the two sides meet. Passed items are never looked at again, so each side
// may collect a block of such items before they are swapped: without a branch for each item, which no processor could
// foresee.

constexpr std::int32_t kBlock = 64;

/// The items of a block that have to change sides and still wait for a partner, as distances from the block's outer
/// end.
struct TWaiting {
  std::array<std::uint8_t, kBlock> distances;
  std::int32_t first = 0;
  std::int32_t count = 0;

  template <class Wrong>
  void Collect(const Wrong& wrong) {
    first = count = 0;
    for (std::int32_t i = 0; i < kBlock; ++i) {
      distances[static_cast<std::size_t>(count)] = static_cast<std::uint8_t>(i);
      count += wrong(i) ? 1 : 0;
    }
  }
  std::int32_t Left() const { return count - first; }
  std::int32_t At(std::int32_t i) const { return distances[static_cast<std::size_t>(first + i)]; }
};

/// The moves as long as the sides are at least two blocks apart. Each index stops before what wasn't swapped.
TMeeting SwapBlocks(TMeeting at, std::uint32_t pivot) {
  TWaiting lefts, rights;
  while (at.right - at.left >= 2 * kBlock) {
    if (lefts.Left() == 0) lefts.Collect([&](std::int32_t i) { return at.left[i].rank >= pivot; });
    if (rights.Left() == 0) rights.Collect([&](std::int32_t i) { return at.right[-i].rank <= pivot; });
    const std::int32_t pairs = std::min(lefts.Left(), rights.Left());
    for (std::int32_t i = 0; i < pairs; ++i) std::swap(at.left[lefts.At(i)], at.right[-rights.At(i)]);
    lefts.first += pairs;
    rights.first += pairs;
    if (lefts.Left() == 0) at.left += kBlock;
    if (rights.Left() == 0) at.right -= kBlock;
  }
  if (lefts.Left() > 0) at.left += lefts.At(0);
  if (rights.Left() > 0) at.right -= rights.At(0);
  return at;
}

TMeeting Partition(TRankedItem* first, TRankedItem* last) {
  const std::uint32_t pivot = first[(last - first) / 2].rank;
  TMeeting at = SwapBlocks({first, last}, pivot);
  do {
    while (at.left->rank < pivot) ++at.left;
    while (at.right->rank > pivot) --at.right;
    if (at.left > at.right) break;
    std::swap(*at.left++, *at.right--);
  } while (at.left <= at.right);
  return at;
}

// -- Parts that need no more moves ------------------------------------------------------------------------------------

/// Where the moves leave equal items: a part is turned round and then each of its halves in the same way, which turns
/// every other level back. So halves change places on every other level, beginning with the first.
void LeaveEquals(const TRankedItem* from, TRankedItem* to, std::size_t count, bool exchange) {
  const std::size_t half = count / 2;
  const std::size_t rest = count - half;  // where the right half begins; a middle item stays
  if (half != rest) to[half].item = from[half].item;
  if (half == 0) return;
  LeaveEquals(exchange ? from + rest : from, to, half, !exchange);
  LeaveEquals(exchange ? from : from + rest, to + rest, half, !exchange);
}

/// The parts of the moves, over positions of both spans: a part holds the items that belong to its positions.
class TMoves {
 public:
  TMoves(TRankedItem* before, TRankedItem* sorted) : before_(before), sorted_(sorted) {}

  void Run(std::size_t count) {
    if (count > 0) waiting_.push_back({0, count - 1});
    while (!waiting_.empty()) {
      const TPart part = waiting_.back();
      waiting_.pop_back();
      if (!Settle(part)) Split(part);
    }
  }

 private:
  struct TPart {
    std::size_t first, last;
    std::size_t Count() const { return last - first + 1; }
  };

  bool Settle(const TPart& part) {
    if (sorted_[part.first].rank == sorted_[part.last].rank)
      LeaveEquals(before_ + part.first, sorted_ + part.first, part.Count(), /*exchange=*/true);
    else if (AllDiffer(part))
      Place(part);
    else
      return false;
    return true;
  }

  bool AllDiffer(const TPart& part) const {
    for (std::size_t i = part.first + 1; i <= part.last; ++i)
      if (sorted_[i].rank != i) return false;
    return true;
  }

  void Place(const TPart& part) {  // the first may have equals before the part
    for (std::size_t i = part.first; i <= part.last; ++i)
      sorted_[std::max<std::size_t>(before_[i].rank, part.first)].item = before_[i].item;
  }

  /// The smaller part first: fewer than 64 wait.
  void Split(const TPart& part) {
    const TMeeting met = Partition(before_ + part.first, before_ + part.last);
    const auto left = static_cast<std::size_t>(met.left - before_);
    const std::size_t end = static_cast<std::size_t>(met.right - before_ + 1);  // of the left part
    if (end < left) sorted_[end].item = before_[end].item;
    const bool leftIsSmaller = end - part.first < part.last + 1 - left;
    if (leftIsSmaller) Wait(left, part.last + 1);
    Wait(part.first, end);
    if (!leftIsSmaller) Wait(left, part.last + 1);
  }

  void Wait(std::size_t first, std::size_t end) {
    if (first < end) waiting_.push_back({first, end - 1});
  }

  TRankedItem* before_;
  TRankedItem* sorted_;
  std::vector<TPart> waiting_;
};

}  // namespace

void QuickSortRanked(std::span<TRankedItem> before, std::span<TRankedItem> sorted) {
  TMoves(before.data(), sorted.data()).Run(before.size());
}

}  // namespace vx
