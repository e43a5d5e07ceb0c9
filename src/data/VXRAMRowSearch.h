// VXRAMRowSearch.h: where does a row stand in a list, without walking it?
//
// Lists of rows are mostly in the order of their ids, since rows are appended as they are made. The searches here try
// that and check what they find; a list in another order costs them a few steps in vain.
#pragma once

#include <algorithm>

#include "data/VXRAMLists.h"
#include "data/VXRAMRowPool.h"

namespace vx {

/// A position from 0 to `count` at which `isBefore` turns from true to false; the only one if it turns once. `isBefore`
/// is asked for positions below `count`. O(log n).
template <class F>
std::int32_t SearchPosition(std::int32_t count, const F& isBefore) {
  std::int32_t low = 0;
  while (low < count) {
    const std::int32_t middle = low + (count - low) / 2;
    if (isBefore(middle))
      low = middle + 1;
    else
      count = middle;
  }
  return low;
}

/// SearchPosition over `rows`. `belongsBefore` is given a row that may be null.
template <class F>
std::int32_t SearchRow(const TVXList& rows, const F& belongsBefore) {
  return SearchPosition(rows.Count(),
                        [&](std::int32_t at) { return belongsBefore(static_cast<const TVXRAMRow*>(rows.Items(at))); });
}

/// A position at which a row with this id stands; -1 if the search meets none, which in a list whose ids don't rise
/// says nothing.
inline std::int32_t SearchId(const TVXList& rows, std::int32_t id) {
  const auto idOf = [](const TVXRAMRow* row) { return row == nullptr ? kNoRecordId : RowId(row); };
  const std::int32_t at = SearchRow(rows, [&](const TVXRAMRow* row) { return idOf(row) < id; });
  return at < rows.Count() && idOf(static_cast<const TVXRAMRow*>(rows.Items(at))) == id ? at : -1;
}

/// IndexOf for a list in which the row stands once at most: looks at `hint` first, brought into the list.
inline std::int32_t FindRow(const TVXList& rows, const TVXRAMRow* row, std::int32_t hint) {
  if (rows.Count() == 0) return -1;
  hint = std::clamp(hint, 0, rows.Count() - 1);
  if (rows.Items(hint) == row) return hint;
  const std::int32_t at = SearchId(rows, RowId(row));
  return at >= 0 && rows.Items(at) == row ? at : rows.IndexOf(row);
}

}  // namespace vx
