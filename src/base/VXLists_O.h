// VXLists_O.h: a list of doubles in one block, for calculations that run over it.
//
//   const auto list = Make<TVXDoubleList>();
//   list->Add(2.5);                                  // 0
//   list->Get(1);                                    // EDoubleListError "List index out of bounds (1)"
//   for (const double value : list->Values()) sum += value;
//
// Errors. A position outside the list, or a count or capacity that no list can have or the memory doesn't hold, raises
// EDoubleListError with the offending number. Unless a member says otherwise, nothing has changed then.
//
// Cost. 8 bytes an item. Add is O(1) amortised; Insert, Delete, Move, IndexOf and Remove are O(n).
#pragma once

#include <cstdint>
#include <cstdlib>
#include <memory>
#include <span>
#include <string>
#include <utility>

#include "platform/runtime/Object.h"

namespace vx {

class EDoubleListError : public TNamedException<EDoubleListError> {
 public:
  static constexpr const char* kName = "EDoubleListError";
  explicit EDoubleListError(std::string message, const void* address = nullptr)
      : TNamedException(std::move(message)), address_(address) {}

  /// The code that called TVXDoubleList::Error: the member that refused, or whoever it was compiled into; null if that
  /// isn't known.
  const void* Address() const { return address_; }

 private:
  const void* address_;
};

/// Answers below, at or above 0 as the first stands before, beside or behind the second.
using TDoubleListSortCompare = std::int32_t (*)(double first, double second);

class TVXDoubleList : public TObject {
 public:
  /// Neither count nor capacity reaches this.
  static constexpr std::int32_t kLimit = 0x8000000;

  static const TClass& StaticClass();
  const TClass& ClassType() const override { return StaticClass(); }

  // -- Reading --------------------------------------------------------------------------------------------------------
  std::int32_t Count() const { return count_; }
  double Get(std::int32_t index) const {
    CheckIndex(index, count_);
    return items_.get()[index];
  }
  double First() const { return Get(0); }
  double Last() const { return Get(count_ - 1); }
  /// Position of the first item that equals the value to the last bit; -1 if there is none. NaN equals nothing, and
  /// the two zeros equal each other.
  std::int32_t IndexOf(double value) const;
  /// The items in their block; a change of the list's count or capacity ends its validity.
  std::span<const double> Values() const { return {items_.get(), static_cast<std::size_t>(count_)}; }
  std::span<double> Values() { return {items_.get(), static_cast<std::size_t>(count_)}; }

  // -- Changing -------------------------------------------------------------------------------------------------------
  /// Appends and answers the position.
  std::int32_t Add(double value);
  void Put(std::int32_t index, double value) {
    CheckIndex(index, count_);
    items_.get()[index] = value;
  }
  /// `index` may equal Count.
  void Insert(std::int32_t index, double value);
  void Delete(std::int32_t index);
  /// Takes out the first item that IndexOf finds and answers where it stood; -1 if it wasn't there.
  std::int32_t Remove(double value);
  void Exchange(std::int32_t first, std::int32_t second);
  /// Takes the item at `from` out and inserts it at `to`. Kept: the target is looked at last, so a wrong one raises
  /// when the item is already gone. Equal positions do nothing, not even raise.
  void Move(std::int32_t from, std::int32_t to);
  /// Empties the list and gives its memory back.
  void Clear();
  /// Sorts by the house's quicksort (QuickSort.h); not stable. `compare` may raise, which leaves the list half sorted
  /// with every item still in it; answers that contradict each other end in an index error or in some order.
  void Sort(TDoubleListSortCompare compare);

  // -- Room -----------------------------------------------------------------------------------------------------------
  std::int32_t Capacity() const { return capacity_; }
  /// Makes room for exactly so many items, at least Count and below kLimit.
  void SetCapacity(std::int32_t capacity);
  /// 0 to below kLimit. New items are zero; the capacity follows upwards only.
  void SetCount(std::int32_t count);
  /// Grows if the list is full, and answers the list.
  TVXDoubleList* Expand();

 protected:
  /// Raises the capacity: by a quarter if it is above 64, by 16 if it is above 8, else by 4. A list that would pass
  /// kLimit by this raises; SetCapacity still gives it the rest.
  virtual void Grow();
  /// Raises EDoubleListError with `format`, in which "%d" becomes the number. An override that doesn't raise only comes
  /// first: the list then raises itself, since nothing may happen behind an error.
  virtual void Error(const char* format, std::int32_t number) const;

 private:
  static constexpr char kIndexError[] = "List index out of bounds (%d)";

  struct TFreeBlock {
    void operator()(double* block) const { std::free(block); }
  };

  /// Compiled into its callers, so that the address of an error tells one from another.
  [[noreturn, gnu::always_inline]] void Raise(const char* format, std::int32_t number) const {
    Error(format, number);
    RaiseAnyway(format, number);
  }
  [[noreturn]] static void RaiseAnyway(const char* format, std::int32_t number);
  [[gnu::always_inline]] void CheckIndex(std::int32_t index, std::int32_t limit) const {
    if (index < 0 || index >= limit) Raise(kIndexError, index);
  }
  void MakeRoomForOne();

  std::unique_ptr<double, TFreeBlock> items_;
  std::int32_t count_ = 0;
  std::int32_t capacity_ = 0;
};

}  // namespace vx
