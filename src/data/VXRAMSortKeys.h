// VXRAMSortKeys.h: rows' columns packed into 64-bit keys, for the sort of rows.
//
// A column is read word by word: a number is one word, a text as many as it has, folded, eight bytes each. Of each word
// only the bits that differ among the rows go into the key: of a date in some years a dozen, of eight letters forty. So
// a key often holds all that the sort asks for. Where it doesn't, rows of equal keys are packed again from the place
// where the key ended.
#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "data/VXRAMSort.h"

namespace vx {

/// What a sort moves.
struct TSortItem {
  std::uint64_t key;
  std::uint32_t row;   ///< position in the list before the sort
  std::uint32_t rank;  ///< once settled: position of the first of its equals in the sorted list
};

/// How far the columns were taken into account: up to a byte of a column's folded text.
struct TKeyPlace {
  std::size_t column = 0;
  std::size_t at = 0;
};

class TSortKeys {
 public:
  /// Refers to both.
  TSortKeys(std::span<void* const> rows, const std::vector<TSortColumn>& columns) : rows_(rows), columns_(columns) {}

  /// Packs a key for each item, of `bits` bits, which orders the rows as far as it goes: from `place` on, where they
  /// are equal so far. Answers the place that equal keys leave open; the one behind the last column if they are equal.
  /// `words` is scratch, one for each item.
  TKeyPlace Pack(std::span<TSortItem> items, std::span<std::uint64_t> words, TKeyPlace place, std::int32_t& bits);

  bool IsEnd(const TKeyPlace& place) const { return place.column == columns_.size(); }

  /// -1, 0 or 1 of two rows by the columns from `column` on.
  std::int32_t Compare(const TSortItem& a, const TSortItem& b, std::size_t column) const;

 private:
  /// What the words of a column have in common; nulls apart.
  struct TSpread {
    std::uint64_t any = 0;
    std::uint64_t all = ~std::uint64_t{0};
    std::uint64_t least = ~std::uint64_t{0};
    std::uint64_t greatest = 0;
    bool nulls = false;
    bool values = false;
  };
  class TField;

  const TVXRAMRow* Row(const TSortItem& item) const { return static_cast<const TVXRAMRow*>(rows_[item.row]); }
  TSpread ReadColumn(std::span<const TSortItem> items, const TKeyPlace& place);
  TSpread ReadText(std::span<const TSortItem> items, const TKeyPlace& place);
  template <class T>
  TSpread ReadNumbers(std::span<const TSortItem> items, const TVXRAMFieldSlot& slot);
  template <class ReadWord>
  TSpread Read(std::span<const TSortItem> items, const TVXRAMFieldSlot& slot, const ReadWord& read);
  void Append(std::span<TSortItem> items, const TField& field, std::uint64_t flip) const;

  std::span<void* const> rows_;
  const std::vector<TSortColumn>& columns_;
  std::span<std::uint64_t> words_;  // of the column that is being packed, one for each item
};

}  // namespace vx
