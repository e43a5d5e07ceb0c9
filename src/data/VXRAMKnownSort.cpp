#include "data/VXRAMKnownSort.h"

#include "data/VXRAMRowSearch.h"

namespace vx {

namespace {

const TVXRAMRow* RowAt(const TVXList& rows, std::int32_t index) {
  return static_cast<const TVXRAMRow*>(rows.Items(index));
}

}  // namespace

void TVXRAMKnownSort::Sort(TVXList& rows, const std::vector<TSortColumn>& columns, std::uint64_t stamp,
                           const TVXRAMRow* touched) {
  const bool known = IsKnown(rows, columns, stamp);
  if (!known || !Replace(rows, touched)) {
    SortRows(rows.Data(), rows.Count(), columns);
    // Rows of which two were equal before another one came still are not all different.
    if (!known || rows.Count() == count_ || differ_ == true) differ_.reset();
  }
  list_ = &rows;
  columns_ = columns;
  stamp_ = stamp;
  changes_ = rows.Changes();
  rewrites_ = rows.Rewrites();
  count_ = rows.Count();
}

/// Whether the list is as it was left, but for one row that was added.
bool TVXRAMKnownSort::IsKnown(const TVXList& rows, const std::vector<TSortColumn>& columns, std::uint64_t stamp) const {
  const auto more = static_cast<std::uint64_t>(rows.Count() - count_);
  return list_ == &rows && stamp_ == stamp && more <= 1 && rows.Changes() == changes_ + more && columns_ == columns;
}

std::int32_t TVXRAMKnownSort::Compare(const TVXRAMRow* first, const TVXRAMRow* second) const {
  for (const TSortColumn& column : columns_)
    if (const std::int32_t order = CompareRows(first, second, column.slot)) return column.descending ? -order : order;
  return 0;
}

std::int32_t TVXRAMKnownSort::Search(const TVXList& rows, const TVXRAMRow* row) const {
  if (list_ != &rows) return -1;
  return SearchEqual(rows, row, [&](const TVXRAMRow* other) { return other == nullptr ? 1 : Compare(other, row); });
}

/// Whether each row stands before the next one, `but` left out.
bool TVXRAMKnownSort::Differ(const TVXList& rows, const TVXRAMRow* but) const {
  const TVXRAMRow* before = nullptr;
  for (std::int32_t i = 0; i < rows.Count(); ++i) {
    const TVXRAMRow* const row = RowAt(rows, i);
    if (row == but) continue;
    if (before != nullptr && Compare(before, row) >= 0) return false;
    before = row;
  }
  return true;
}

/// Where the row stands: at the end, where its values belong, or else by a walk.
std::int32_t TVXRAMKnownSort::Find(const TVXList& rows, const TVXRAMRow* row) const {
  if (rows.Last() == row) return rows.Count() - 1;
  if (rows.Count() > count_) return rows.IndexOf(row);
  const std::int32_t at = SearchRow(rows, [&](const TVXRAMRow* other) { return Compare(other, row) < 0; });
  return at < rows.Count() && rows.Items(at) == row ? at : rows.IndexOf(row);
}

/// The position that the row at `at` belongs to among the others, once it is taken out there; -1 if it equals one.
std::int32_t TVXRAMKnownSort::PlaceOf(const TVXList& rows, const TVXRAMRow* row, std::int32_t at) const {
  const auto other = [&](std::int32_t i) { return RowAt(rows, i < at ? i : i + 1); };
  const std::int32_t others = rows.Count() - 1;
  const std::int32_t place = SearchPosition(others, [&](std::int32_t i) { return Compare(other(i), row) < 0; });
  return place < others && Compare(other(place), row) == 0 ? -1 : place;
}

/// False if the whole list must be sorted.
bool TVXRAMKnownSort::Replace(TVXList& rows, const TVXRAMRow* row) {
  if (row == nullptr || rows.Count() == 0) return false;
  // A row that came elsewhere than at the end may be another one than we are told of.
  const bool strange = rows.Count() > count_ && (rows.Last() != row || rows.Rewrites() != rewrites_);
  if (!differ_ || (strange && differ_ == true)) differ_ = Differ(rows, row);
  if (differ_ == false) return false;
  const std::int32_t at = Find(rows, row);
  if (at < 0) return false;
  const std::int32_t place = PlaceOf(rows, row, at);
  if (place < 0) {
    differ_ = false;
    return false;
  }
  if (place != at) rows.Move(at, place);
  return true;
}

}  // namespace vx
