#include "data/VXRAMSort.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <limits>
#include <string>

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

// -- Packed keys ------------------------------------------------------------------------------------------------------

constexpr std::uint64_t kNullKey = std::numeric_limits<std::uint64_t>::max();
constexpr std::uint64_t kSignBit = std::uint64_t{1} << 63;

/// Order-preserving bits of a double: both zeros alike, NaN behind infinity, below kNullKey.
std::uint64_t KeyOf(double value) {
  if (std::isnan(value)) return kNullKey - 1;
  const auto bits = std::bit_cast<std::uint64_t>(value == 0 ? 0.0 : value);
  return (bits & kSignBit) != 0 ? ~bits : bits | kSignBit;
}

std::uint64_t KeyOf(std::int64_t value) { return static_cast<std::uint64_t>(value) ^ kSignBit; }

std::uint64_t NumberKey(const TVXRAMRow* row, const TVXRAMFieldSlot& slot) {
  switch (slot.type) {
    case vxrftBoolean:
      return KeyOf(std::int64_t{RowValue<std::uint8_t>(row, slot)});
    case vxrftDuration:
    case vxrftInteger:
      return KeyOf(std::int64_t{RowValue<std::int32_t>(row, slot)});
    case vxrftSmallint:
      return KeyOf(std::int64_t{RowValue<std::int16_t>(row, slot)});
    case vxrftWord:
      return KeyOf(std::int64_t{RowValue<std::uint16_t>(row, slot)});
    default:
      return KeyOf(RowValue<double>(row, slot));
  }
}

/// Eight bytes from `at` on as a number, the first byte highest; zeros behind the text's end.
std::uint64_t WordAt(std::string_view text, std::size_t at) {
  std::uint64_t word = 0;
  for (std::size_t i = at; i < at + 8; ++i)
    word = word << 8 | (i < text.size() ? static_cast<std::uint8_t>(text[i]) : 0);
  return word;
}

/// What a sort moves: two words that decide most compares, and the row.
struct TSortItem {
  std::uint64_t first;
  std::uint64_t second;
  TVXRAMRow* row;
};

/// How the columns are packed: `first` and `second` are two numbers, a number and the beginning of a text, or a text's
/// beginning.
class TSortKeys {
 public:
  explicit TSortKeys(const std::vector<TSortColumn>& columns) : columns_(columns) {}

  TSortItem Pack(TVXRAMRow* row) const {
    TSortItem item{0, 0, row};
    const std::size_t next = PackColumn(row, 0, item.first, &item.second) ? 1 : columns_.size();
    if (next < columns_.size()) PackColumn(row, next, item.second, nullptr);
    return item;
  }

  std::int32_t Compare(const TSortItem& a, const TSortItem& b) const {
    if (a.first != b.first) return a.first < b.first ? -1 : 1;
    if (a.second != b.second) return a.second < b.second ? -1 : 1;
    return CompareRest(a.row, b.row);
  }

 private:
  static bool IsText(const TSortColumn& column) { return column.slot.type == vxrftString; }

  /// Packs a column into `key`, a text's next eight bytes into `more` if there is room. True if `more` is still free.
  bool PackColumn(const TVXRAMRow* row, std::size_t at, std::uint64_t& key, std::uint64_t* more) const {
    const TSortColumn& column = columns_[at];
    const std::uint64_t flip = column.descending ? kNullKey : 0;
    const bool text = IsText(column);
    if (RowStatus(row, column.slot) != vxfsAssigned) {
      key = kNullKey ^ flip;
      if (text && more != nullptr) *more = key;
    } else if (text) {
      PackText(RowText(row, column.slot), key, more);
      key ^= flip;
      if (more != nullptr) *more ^= flip;
    } else {
      key = NumberKey(row, column.slot) ^ flip;
    }
    return !text;
  }

  static void PackText(std::string_view text, std::uint64_t& key, std::uint64_t* more) {
    if (more == nullptr) {
      key = std::min(FoldPrefix8(text), kNullKey - 1);
    } else if (IsAscii(text.substr(0, 16))) {
      key = FoldPrefix8(text);
      *more = text.size() > 8 ? FoldPrefix8(text.substr(8)) : 0;
    } else {  // folding may change lengths: the ninth byte isn't where it seems
      const std::string folded = FoldCase(text);
      key = WordAt(folded, 0);
      *more = WordAt(folded, 8);
      if (key == kNullKey) {
        key = kNullKey - 1;
        *more = kNullKey;
      }
    }
  }

  std::int32_t CompareRest(const TVXRAMRow* a, const TVXRAMRow* b) const {
    for (std::size_t i = FirstUndecided(); i < columns_.size(); ++i) {
      const std::int32_t order = CompareRows(a, b, columns_[i].slot);
      if (order != 0) return columns_[i].descending ? -order : order;
    }
    return 0;
  }

  /// The first column that equal keys don't settle.
  std::size_t FirstUndecided() const {
    if (IsText(columns_[0])) return 0;
    return columns_.size() > 1 && IsText(columns_[1]) ? 1 : 2;
  }

  const std::vector<TSortColumn>& columns_;
};

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
  const TSortKeys keys(columns);
  std::vector<TSortItem> items(static_cast<std::size_t>(count));
  for (std::size_t i = 0; i < items.size(); ++i) items[i] = keys.Pack(static_cast<TVXRAMRow*>(rows[i]));
  QuickSort(TPlainItems<TSortItem>{items.data()}, count,
            [&keys](const TSortItem& a, const TSortItem& b) { return keys.Compare(a, b); });
  for (std::size_t i = 0; i < items.size(); ++i) rows[i] = items[i].row;
}

}  // namespace vx
