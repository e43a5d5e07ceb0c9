#include "data/VXRAMSort.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <memory>
#include <span>
#include <type_traits>
#include <utility>

#include "data/VXRAMSortKeys.h"
#include "platform/runtime/QuickSortRanked.h"
#include "platform/runtime/Text.h"

namespace vx {

namespace {

template <class T>
std::int32_t CompareRowsAs(const TVXRAMRow* first, const TVXRAMRow* second, const TVXRAMFieldSlot& slot) {
  return CompareValues(RowValue<T>(first, slot), RowValue<T>(second, slot));
}

std::int32_t CompareAssigned(const TVXRAMRow* first, const TVXRAMRow* second, const TVXRAMFieldSlot& slot) {
  switch (slot.type) {
    case vxrftBoolean:
      return CompareRowsAs<std::uint8_t>(first, second, slot);
    case vxrftCurrency:
    case vxrftDateTime:
    case vxrftFloat:
      return CompareRowsAs<double>(first, second, slot);
    case vxrftDuration:
    case vxrftInteger:
      return CompareRowsAs<std::int32_t>(first, second, slot);
    case vxrftSmallint:
      return CompareRowsAs<std::int16_t>(first, second, slot);
    case vxrftString:
      return AnsiCompareText(RowText(first, slot), RowText(second, slot));
    case vxrftWord:
      return CompareRowsAs<std::uint16_t>(first, second, slot);
  }
  return 0;
}

template <class T>
std::int32_t CompareWithKeyAs(const TVXRAMRow* row, const TVXRAMFieldSlot& slot, const void* key) {
  T value;
  std::memcpy(&value, key, sizeof value);
  return CompareValues(RowValue<T>(row, slot), value);
}

// -- Sorting by keys --------------------------------------------------------------------------------------------------

constexpr std::size_t kFewItems = 24;      // so many are compared row by row
constexpr std::size_t kDeepest = 256;      // bytes of text for which keys are packed anew
constexpr std::size_t kRadixItems = 1024;  // from so many on digits beat compares
constexpr std::int32_t kDigitBits = 11;
constexpr std::int32_t kDigits = 3;

/// Calls `visit(first, end)` for each run of items with equal keys, low bits left out.
template <class Visit>
void ForEachRun(std::span<TSortItem> items, std::int32_t lowBits, const Visit& visit) {
  for (std::size_t first = 0, end = 0; first < items.size(); first = end) {
    const std::uint64_t key = items[first].key >> lowBits;
    for (end = first + 1; end < items.size() && items[end].key >> lowBits == key;) ++end;
    visit(first, end);
  }
}

std::ptrdiff_t Offset(std::size_t at) { return static_cast<std::ptrdiff_t>(at); }

/// Counts, then distributes by eleven bits of the key.
void Distribute(std::span<const TSortItem> from, std::span<TSortItem> to, std::int32_t shift) {
  std::array<std::uint32_t, std::size_t{1} << kDigitBits> places{};
  const auto digit = [&](const TSortItem& item) { return item.key >> shift & (places.size() - 1); };
  for (const TSortItem& item : from) ++places[digit(item)];
  std::uint32_t sum = 0;
  for (std::uint32_t& place : places) sum += std::exchange(place, sum);
  for (const TSortItem& item : from) to[places[digit(item)]++] = item;
}

void SortByDigits(std::span<TSortItem> items, std::span<TSortItem> spare, std::int32_t low, std::int32_t bits) {
  std::span<TSortItem> from = items;
  std::span<TSortItem> to = spare.first(items.size());
  for (std::int32_t shift = low; shift < bits; shift += kDigitBits) {
    Distribute(from, to, shift);
    std::swap(from, to);
  }
  if (from.data() != items.data()) std::copy(from.begin(), from.end(), items.begin());
}

/// Sorts items by keys of `bits` bits: many by the digits of the highest bits, which leave little open. `spare` has
/// room for as many.
void SortByKey(std::span<TSortItem> items, std::span<TSortItem> spare, std::int32_t bits) {
  const auto isBelow = [](const TSortItem& a, const TSortItem& b) { return a.key < b.key; };
  const auto isAbove = [](const TSortItem& a, const TSortItem& b) { return a.key > b.key; };
  if (std::is_sorted(items.begin(), items.end(), isBelow)) return;
  if (std::is_sorted(items.begin(), items.end(), isAbove)) return std::reverse(items.begin(), items.end());
  if (items.size() < kRadixItems) return std::sort(items.begin(), items.end(), isBelow);
  const std::int32_t low = std::max(bits - kDigits * kDigitBits, 0);
  SortByDigits(items, spare, low, bits);
  if (low == 0) return;
  ForEachRun(items, low, [&](std::size_t first, std::size_t end) {
    if (end - first > 1) std::sort(items.begin() + Offset(first), items.begin() + Offset(end), isBelow);
  });
}

/// The memory of a sort: 32 bytes a row in one block. The second half serves one thing after the other.
class TSortScratch {
 public:
  explicit TSortScratch(std::size_t count)
      : count_(count), bytes_(std::make_unique_for_overwrite<std::byte[]>(2 * count * sizeof(TSortItem))) {}

  std::span<TSortItem> Items() { return Part<TSortItem>(0); }
  std::span<TSortItem> Spare() { return Part<TSortItem>(2); }
  std::span<std::uint64_t> Words() { return Part<std::uint64_t>(2); }
  std::span<TRankedItem> Sorted() { return Part<TRankedItem>(2); }
  std::span<TRankedItem> Before() { return Part<TRankedItem>(3); }
  std::span<void*> Rows() { return Part<void*>(0); }  ///< once the items aren't needed any more

 private:
  /// Begins at a quarter of the block. What was there before is lost.
  template <class T>
  std::span<T> Part(std::size_t quarter) {
    static_assert(std::is_trivially_copyable_v<T> && sizeof(T) <= sizeof(TSortItem));
    return {reinterpret_cast<T*>(bytes_.get() + quarter * count_ * sizeof(TSortItem) / 2), count_};
  }

  std::size_t count_;
  std::unique_ptr<std::byte[]> bytes_;
};

/// Brings rows into some order that is right, and gives each its rank. Runs of rows that are equal so far wait to be
/// sorted by what follows in their columns.
class TRanking {
 public:
  TRanking(TSortScratch& scratch, std::span<void* const> rows, const std::vector<TSortColumn>& columns)
      : scratch_(scratch), keys_(rows, columns), items_(scratch.Items()) {}

  /// True if some rows are equal.
  bool Run() {
    for (std::size_t i = 0; i < items_.size(); ++i) items_[i].row = static_cast<std::uint32_t>(i);
    waiting_.push_back({0, items_.size(), {}});
    while (!waiting_.empty()) {
      const TRun run = waiting_.back();
      waiting_.pop_back();
      if (run.Count() <= kFewItems || run.place.at >= kDeepest)
        SortByRows(run);
      else
        SortByKeys(run);
    }
    return hasEquals_;
  }

 private:
  struct TRun {
    std::size_t first, end;
    TKeyPlace place;
    std::size_t Count() const { return end - first; }
  };

  void SortByRows(const TRun& run) {
    const std::span<TSortItem> items = items_.subspan(run.first, run.Count());
    const auto compare = [&](const TSortItem& a, const TSortItem& b) { return keys_.Compare(a, b, run.place.column); };
    std::sort(items.begin(), items.end(), [&](const auto& a, const auto& b) { return compare(a, b) < 0; });
    for (std::size_t first = 0, end = 0; first < items.size(); first = end) {
      for (end = first + 1; end < items.size() && compare(items[first], items[end]) == 0;) ++end;
      SetRank(run.first + first, run.first + end);
    }
  }

  void SortByKeys(const TRun& run) {
    const std::span<TSortItem> items = items_.subspan(run.first, run.Count());
    std::int32_t bits = 0;
    const TKeyPlace open = keys_.Pack(items, scratch_.Words(), run.place, bits);
    SortByKey(items, scratch_.Spare(), bits);
    ForEachRun(items, 0, [&](std::size_t first, std::size_t end) {
      if (end - first == 1 || keys_.IsEnd(open))
        SetRank(run.first + first, run.first + end);
      else
        waiting_.push_back({run.first + first, run.first + end, open});
    });
  }

  void SetRank(std::size_t first, std::size_t end) {
    for (std::size_t i = first; i < end; ++i) items_[i].rank = static_cast<std::uint32_t>(first);
    hasEquals_ = hasEquals_ || end - first > 1;
  }

  TSortScratch& scratch_;
  TSortKeys keys_;
  std::span<TSortItem> items_;
  std::vector<TRun> waiting_;
  bool hasEquals_ = false;
};

/// The ranked items in sorted order; equal rows where the moves of the quicksort leave them.
std::span<TRankedItem> RankedRows(TSortScratch& scratch, std::span<void* const> rows,
                                  const std::vector<TSortColumn>& columns) {
  const bool hasEquals = TRanking(scratch, rows, columns).Run();
  const std::span<TRankedItem> sorted = scratch.Sorted();
  std::size_t at = 0;
  for (const TSortItem& item : scratch.Items()) sorted[at++] = {item.rank, item.row};
  if (!hasEquals) return sorted;
  const std::span<TRankedItem> before = scratch.Before();
  for (const TRankedItem& item : sorted) before[item.item] = item;
  QuickSortRanked(before, sorted);
  return sorted;
}

}  // namespace

std::int32_t CompareRows(const TVXRAMRow* first, const TVXRAMRow* second, const TVXRAMFieldSlot& slot) {
  const bool firstNull = RowStatus(first, slot) != vxfsAssigned;
  const bool secondNull = RowStatus(second, slot) != vxfsAssigned;
  if (firstNull || secondNull) return (firstNull ? 1 : 0) - (secondNull ? 1 : 0);
  return CompareAssigned(first, second, slot);
}

std::int32_t CompareRowWithKey(const TVXRAMRow* row, const TVXRAMFieldSlot& slot, const void* key) {
  switch (slot.type) {
    case vxrftBoolean:
      return CompareWithKeyAs<std::uint8_t>(row, slot, key);
    case vxrftCurrency:
    case vxrftDateTime:
    case vxrftFloat:
      return CompareWithKeyAs<double>(row, slot, key);
    case vxrftDuration:
    case vxrftInteger:
      return CompareWithKeyAs<std::int32_t>(row, slot, key);
    case vxrftSmallint:
      return CompareWithKeyAs<std::int16_t>(row, slot, key);
    case vxrftString:
      return AnsiCompareText(RowText(row, slot), static_cast<const char*>(key));
    case vxrftWord:
      return CompareWithKeyAs<std::uint16_t>(row, slot, key);
  }
  return 0;
}

void SortRows(void** rows, std::int32_t count, const std::vector<TSortColumn>& columns) {
  TSortScratch scratch(static_cast<std::size_t>(count));
  const std::span<void*> target(rows, static_cast<std::size_t>(count));
  for (const void* const row : target) Need(static_cast<const std::uint8_t*>(row), "row");
  const std::span<TRankedItem> sorted = RankedRows(scratch, target, columns);
  const std::span<void*> before = scratch.Rows();
  std::copy(target.begin(), target.end(), before.begin());
  for (std::size_t i = 0; i < sorted.size(); ++i) target[i] = before[sorted[i].item];
}

}  // namespace vx
