// VXRAMKnownSort.h: a sort that remembers what the one before it left.
//
// A cursor sorts its list again at every insertion. Where all rows differ in what they are sorted by, there is but one
// order, and a list that was in it and got one new or changed row is brought into it again by moving that row. Where
// two rows compare equal, only the sort's own moves tell their order: then all is sorted again.
//
// Cost: O(log n) and the moving of the pointers in between for one row; else that of SortRows. The first call after a
// sort of all looks whether all rows differ.
#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "data/VXRAMLists.h"
#include "data/VXRAMSort.h"

namespace vx {

class TVXRAMKnownSort {
 public:
  /// Brings `rows` into the order that SortRows makes. `touched` is the one row that was added to the list or changed
  /// since the last call, null for none or several. `stamp` differs from the last call's if other rows were changed.
  void Sort(TVXList& rows, const std::vector<TSortColumn>& columns, std::uint64_t stamp, const TVXRAMRow* touched);
  /// Where the row seems to stand in a list that was sorted last; -1 says nothing. Rows and list may have changed
  /// since.
  std::int32_t Search(const TVXList& rows, const TVXRAMRow* row) const;
  /// The next call sorts all.
  void Forget() { list_ = nullptr; }

 private:
  bool IsKnown(const TVXList& rows, const std::vector<TSortColumn>& columns, std::uint64_t stamp) const;
  std::int32_t Compare(const TVXRAMRow* first, const TVXRAMRow* second) const;
  bool Differ(const TVXList& rows, const TVXRAMRow* but) const;
  std::int32_t Find(const TVXList& rows, const TVXRAMRow* row) const;
  std::int32_t PlaceOf(const TVXList& rows, const TVXRAMRow* row, std::int32_t at) const;
  bool Replace(TVXList& rows, const TVXRAMRow* row);

  const TVXList* list_ = nullptr;
  std::vector<TSortColumn> columns_;
  std::uint64_t stamp_ = 0;
  std::uint64_t changes_ = 0;   // of the list
  std::uint64_t rewrites_ = 0;  // those that weren't appending
  std::int32_t count_ = 0;      // its length
  std::optional<bool> differ_;  // no two rows compare equal; unset: not looked at
};

}  // namespace vx
