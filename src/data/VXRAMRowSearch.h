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

/// Where `row` stands among those rows that `order`, below, at or above 0 for those before, beside and behind it, finds
/// beside it. -1 says nothing if `rows` aren't in that order.
template <class F>
std::int32_t SearchEqual(const TVXList& rows, const TVXRAMRow* row, const F& order) {
  constexpr std::int32_t kFewEquals = 64;
  const std::int32_t first = SearchRow(rows, [&](const TVXRAMRow* other) { return order(other) < 0; });
  const std::int32_t end = SearchRow(rows, [&](const TVXRAMRow* other) { return order(other) <= 0; });
  for (std::int32_t at = first; at < std::min(end, first + kFewEquals); ++at)
    if (rows.Items(at) == row) return at;
  // Many equal ones are walked as pointers, without a look at the rows.
  return end - first > kFewEquals ? rows.IndexOf(row, first) : -1;
}

/// The position nearest to `hint`, which is brought into the list, at most `reach` away, at which `stands` is true; -1
/// if there is none.
template <class F>
std::int32_t FindNear(std::int32_t count, std::int32_t hint, std::int32_t reach, const F& stands) {
  if (count == 0) return -1;
  hint = std::clamp(hint, 0, count - 1);
  for (std::int32_t away = 0; away <= reach && (away <= hint || away < count - hint); ++away) {
    if (away < count - hint && stands(hint + away)) return hint + away;
    if (away <= hint && stands(hint - away)) return hint - away;
  }
  return -1;
}

/// IndexOf for a list in which the row stands once at most: looks at `hint` first, brought into the list, and asks
/// `search` before it walks.
template <class F>
std::int32_t FindRow(const TVXList& rows, const TVXRAMRow* row, std::int32_t hint, const F& search) {
  const auto stands = [&](std::int32_t at) { return at >= 0 && rows.Items(at) == row; };
  if (rows.Count() == 0) return -1;
  hint = std::clamp(hint, 0, rows.Count() - 1);
  if (stands(hint)) return hint;
  if (const std::int32_t at = SearchId(rows, RowId(row)); stands(at)) return at;
  if (const std::int32_t at = search(); stands(at)) return at;
  return rows.IndexOf(row);
}
inline std::int32_t FindRow(const TVXList& rows, const TVXRAMRow* row, std::int32_t hint) {
  return FindRow(rows, row, hint, [] { return -1; });
}

}  // namespace vx
