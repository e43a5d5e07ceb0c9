// QuickSort.h: the house's quicksort.
//
// A quicksort isn't stable, and the order in which it leaves equal items is part of what a planner sees. So its moves
// are fixed: pivot in the middle, two indexes that run towards each other and swap what stands on the wrong side, then
// the left part, then the right. Whatever is sorted (pointers, pointers with packed keys, numbers) takes the same moves
// and ends in the same order, and the compare is called as often and in the order of those moves.
//
// Who sorts brings the items, as a small value with Get and Swap by index. Items that a stranger's compare orders must
// check the index, since answers that contradict each other lead beyond either end.
//
// Cost: O(n log n). An input whose middle is its greatest, again in each part, makes it quadratic, never deeper: one
// made for that, or values that rise to the middle and then fall.
//
//   QuickSort(TPlainItems<double>{values.data()}, 3, [](double a, double b) { return a < b ? -1 : a > b; });
#pragma once

#include <cstdint>
#include <utility>
#include <vector>

namespace vx {

/// Items as an array that the caller knows to be compared consistently.
template <class T>
struct TPlainItems {
  T* items;
  T Get(std::int32_t i) const { return items[i]; }
  void Swap(std::int32_t i, std::int32_t j) const { std::swap(items[i], items[j]); }
};

/// The fixed moves over items 0 to count - 1. `compare` answers below, at or above 0. Parts that wait for their turn
/// are kept on the heap, at most one for two items, so that no input can exhaust the call stack.
template <class Items, class Compare>
void QuickSort(const Items& items, std::int32_t count, const Compare& compare) {
  struct TPart {
    std::int32_t left, right;
  };
  std::vector<TPart> waiting;
  if (count > 0) waiting.push_back({0, count - 1});
  while (!waiting.empty()) {
    auto [left, right] = waiting.back();
    waiting.pop_back();
    for (;;) {
      std::int32_t i = left;
      std::int32_t j = right;
      const auto pivot = items.Get(left + (right - left) / 2);
      bool swapped = false;
      do {
        while (compare(items.Get(i), pivot) < 0) ++i;
        while (compare(items.Get(j), pivot) > 0) --j;
        if (i > j) break;
        items.Swap(i++, j--);
        swapped = true;
      } while (i <= j);
      if (!swapped) break;  // both have passed the pivot itself: such answers could go on for ever
      if (left < j && i < right) waiting.push_back({i, right});
      if (left < j)
        right = j;
      else if (i < right)
        left = i;
      else
        break;
    }
  }
}

}  // namespace vx
