// VXRAMSort.h: the order of rows, and the sort that brings them into it, as the moves of QuickSort.h would.
//
// Rows are sorted by packed keys (VXRAMSortKeys.h), mostly digit by digit, without following a pointer. Rows that all
// differ have but one order, so that is all. Where some are equal, the moves are made over ranks (QuickSortRanked.h),
// since the order of equal rows is part of what a planner sees.
#pragma once

#include <cstdint>
#include <utility>
#include <vector>

#include "data/VXRAMRowPool.h"
#include "platform/runtime/QuickSort.h"

namespace vx {

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

  bool operator==(const TSortColumn&) const = default;
};

/// Sorts `rows` by the columns, the first deciding first; the same order as QuickSort over the pointers with a compare
/// of rows.
/// Cost: O(n log n), near O(n) where keys hold all that decides. Scratch: 32 bytes a row. Only where rows are equal can
/// an input made to defeat a middle pivot (the greatest in the middle of every part) make it quadratic: 6 s for 100,000
/// such rows (./dev bench edits/sorts), stack and scratch as ever.
void SortRows(void** rows, std::int32_t count, const std::vector<TSortColumn>& columns);

}  // namespace vx
