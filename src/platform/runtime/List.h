// List.h: a list of pointers that owns nothing.
//
// Positions run from 0 to Count - 1. A position outside raises EListError and changes nothing.
//
//   TList rows;
//   rows.Add(a);                                    // 0
//   rows.Items(1);                                  // EListError "List index out of bounds (1)"
//
// Cost: Add is O(1) amortised, Items O(1), Insert, Delete, Remove and IndexOf O(n).
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
  std::int32_t Count() const { return static_cast<std::int32_t>(items_.size()); }
  void* Items(std::int32_t index) const {
    CheckIndex(index);
    return items_[static_cast<std::size_t>(index)];
  }
  void* First() const { return Items(0); }
  void* Last() const { return Items(Count() - 1); }
  /// Position of the first occurrence; -1 if there is none.
  std::int32_t IndexOf(const void* item) const;

  // -- Changing -------------------------------------------------------------------------------------------------------
  /// Appends and answers the position.
  std::int32_t Add(void* item) {
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

  // -- Whole runs, for sorting and walking ----------------------------------------------------------------------------
  /// The items as an array of Count pointers; any change of the list's length ends its validity.
  void** Data() { return items_.data(); }
  void* const* Data() const { return items_.data(); }

 private:
  void CheckIndex(std::int32_t index) const {
    if (index < 0 || index >= Count()) RaiseListError(kListIndexError, index);
  }

  std::vector<void*> items_;
};

}  // namespace vx
