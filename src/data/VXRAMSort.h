// VXRAMSort.h: the engine's quicksort, and the order of rows that it is run with.
//
// The sort is not stable, and the order in which it leaves equal rows is part of what a planner sees. So its moves are
// fixed: pivot in the middle, two indexes that run towards each other and swap what stands on the wrong side, then the
// left part, then the right. Whatever is sorted in its place (pointers, or pointers with packed keys) takes the same
// moves and ends in the same order.
//
// A row's key packs what decides most compares into two words, so that a sort seldom follows a pointer.
#pragma once

#include <cstdint>
#include <utility>
#include <vector>

#include "data/VXRAMRowPool.h"

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

// -- The order of values ----------------------------------------------------------------------------------------------

/// -1, 0 or 1. NaN stands behind every other number, beside itself: an order needs a place for each value.
template <class T>
constexpr std::int32_t CompareValues(T first, T second) {
  if (first < second) return -1;
  if (first > second) return 1;
  if (first == second) return 0;
  return (first == first ? 0 : 1) - (second == second ? 0 : 1);
}

/// -1, 0 or 1 of two rows by one field, ascending: nulls stand behind all values, beside each other. `slot.type` must
/// be a type.
std::int32_t CompareRows(const TVXRAMRow* first, const TVXRAMRow* second, const TVXRAMFieldSlot& slot);

/// -1, 0 or 1 of a row's value, null or not, and a value in row encoding (text: ended by a zero byte).
std::int32_t CompareRowWithKey(const TVXRAMRow* row, const TVXRAMFieldSlot& slot, const void* key);

// -- Sorting rows -----------------------------------------------------------------------------------------------------

struct TSortColumn {
  TVXRAMFieldSlot slot;
  bool descending = false;
};

/// Sorts `rows` by the columns, the first deciding first; the same order as QuickSort over the pointers with a compare
/// of rows.
/// Scratch: 24 bytes a row. O(n log n) but for inputs made to defeat a middle pivot.
void SortRows(void** rows, std::int32_t count, const std::vector<TSortColumn>& columns);

}  // namespace vx
