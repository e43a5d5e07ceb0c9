// List.h: a list of pointers that owns nothing.
//
// Positions run from 0 to Count - 1. A position outside raises EListError and changes nothing.
//
//   TList rows;
//   rows.Add(a);                                    // 0
//   rows.Items(1);                                  // EListError "List index out of bounds (1)"
//
// Deleting. A long list that loses items one by one doesn't move all others each time: it notes the places that became
// empty, and closes up when there are many, or when somebody wants the array. Nobody sees this but by the clock.
//
// Cost: Add is O(1) amortised, Items O(1), O(log n) right after deletions; Delete from a long list is a thousandth of
// its length, amortised; Insert, Remove and IndexOf O(n).
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "platform/runtime/Object.h"

namespace vx {

/// Raises EListError with `format`, in which "%d" becomes `value`.
[[noreturn]] void RaiseListError(const char* format, std::int64_t value);
inline constexpr char kListIndexError[] = "List index out of bounds (%d)";
inline constexpr char kListCapacityError[] = "List capacity out of bounds (%d)";

class TList : public TObject {
 public:
  static const TClass& StaticClass();
  const TClass& ClassType() const override { return StaticClass(); }

  // -- Reading --------------------------------------------------------------------------------------------------------
  std::int32_t Count() const { return static_cast<std::int32_t>(items_.size() - holes_.size()); }
  void* Items(std::int32_t index) const {
    CheckIndex(index);
    return items_[Place(index)];
  }
  void* First() const { return Items(0); }
  void* Last() const { return Items(Count() - 1); }
  /// Position of the first occurrence from `from` on; -1 if there is none.
  std::int32_t IndexOf(const void* item, std::int32_t from = 0) const;

  // -- Changing -------------------------------------------------------------------------------------------------------
  /// Appends and answers the position.
  std::int32_t Add(void* item) {
    ++appends_;
    items_.push_back(item);
    return Count() - 1;
  }
  /// `index` may equal Count.
  void Insert(std::int32_t index, void* item);
  void Put(std::int32_t index, void* item);
  void Delete(std::int32_t index);
  /// Takes out the first occurrence and answers where it stood; -1 if it wasn't there.
  std::int32_t Remove(const void* item);
  void Exchange(std::int32_t first, std::int32_t second);
  void Move(std::int32_t from, std::int32_t to);
  /// Empties the list and gives its memory back.
  void Clear();
  /// Drops null entries; the others keep their order.
  void Pack();

  std::int32_t Capacity() const { return static_cast<std::int32_t>(items_.capacity()); }
  /// Makes room ahead. Below Count, or negative, raises EListError.
  void SetCapacity(std::int32_t capacity);

  /// Raised by every change, and by asking for the array to write in: who keeps what was computed from the list may go
  /// on from it as long as the number is the one that he knows.
  std::uint64_t Changes() const { return rewrites_ + appends_; }
  /// The same but for appending: the items that stood there stand there still.
  std::uint64_t Rewrites() const { return rewrites_; }

  // -- Whole runs, for sorting and walking ----------------------------------------------------------------------------
  /// The items as an array of Count pointers; any change of the list's length ends its validity.
  void** Data() {
    ++rewrites_;
    if (!holes_.empty()) CloseUp();
    return items_.data();
  }
  void* const* Data() const {
    if (!holes_.empty()) CloseUp();
    return items_.data();
  }

 private:
  void CheckIndex(std::int32_t index) const {
    if (index < 0 || index >= Count()) RaiseListError(kListIndexError, index);
  }
  /// Where the item at `index` stands in items_.
  std::size_t Place(std::int32_t index) const {
    return static_cast<std::size_t>(holes_.empty() ? index : PlaceAmongHoles(index));
  }
  std::int32_t PlaceAmongHoles(std::int32_t index) const;
  void CloseUp() const;

  mutable std::vector<void*> items_;
  mutable std::vector<std::int32_t> holes_;  // the places in items_ that are empty, ascending
  std::uint64_t rewrites_ = 0;
  std::uint64_t appends_ = 0;
};

}  // namespace vx
