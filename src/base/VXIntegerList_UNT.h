// VXIntegerList_UNT.h: lists of 32-bit integers that put no object around a number.
//
// The numbers stand in the pointer slots of a TList, which gives them its costs and its errors: a position outside
// raises EListError and changes nothing.
//
//   TVXIntegerList        keeps what it is given where it is given: Insert, Exchange, Move, Sort.
//   TVXSortedIntegerList  keeps each value once, in order, upwards or downwards, and finds it in O(log n).
//
//   const auto days = Make<TVXSortedIntegerList>();
//   days->SetAsVariantArray(Variant::Array({28, 1, 28}));      // 1, 28
//   days->Add(15);                                             // 1: where it stands now
//   days->Add(15);                                             // 1 again, and nothing is added
#pragma once

#include <cstdint>

#include "platform/runtime/List.h"
#include "platform/runtime/Object.h"
#include "platform/runtime/Variant.h"

namespace vx {

class TVXCustomIntegerList : public TObject {
 public:
  static const TClass& StaticClass();
  const TClass& ClassType() const override { return StaticClass(); }

  TVXCustomIntegerList();

  std::int32_t Count() const { return list_->Count(); }
  std::int32_t GetItem(std::int32_t index) const;
  /// Position of the first occurrence; -1 if there is none.
  std::int32_t IndexOf(std::int32_t value) const;

  /// Takes the value in and answers its position.
  virtual std::int32_t Add(std::int32_t value);
  void Delete(std::int32_t index) { list_->Delete(index); }
  /// Takes out the first occurrence and answers where it stood; -1 if it wasn't there.
  std::int32_t Remove(std::int32_t value);
  /// Empties the list and gives its memory back.
  void Clear() { list_->Clear(); }

  std::int32_t Capacity() const { return list_->Capacity(); }
  void SetCapacity(std::int32_t capacity) { list_->SetCapacity(capacity); }

  // -- As a Variant ---------------------------------------------------------------------------------------------------
  /// An array of integers, without elements if the list has none. Raises EVariantError beyond what an array holds.
  Variant GetAsVariantArray() const;
  /// Empties the list, then adds every element, so that a sorted list sorts and drops duplicates as it takes them. Null
  /// and unassigned add nothing. What is no array, or an element that is no integer, raises EVariantError; the elements
  /// before it are then in the list, and those that were there are not.
  void SetAsVariantArray(const Variant& value);

 protected:
  void SetItem(std::int32_t index, std::int32_t value);
  TList& List() { return *list_; }
  const TList& List() const { return *list_; }

 private:
  TOwned<TList> list_;
};

class TVXIntegerList : public TVXCustomIntegerList {
 public:
  static const TClass& StaticClass();
  const TClass& ClassType() const override { return StaticClass(); }

  using TVXCustomIntegerList::SetItem;
  /// `index` may equal Count.
  void Insert(std::int32_t index, std::int32_t value);
  void Exchange(std::int32_t first, std::int32_t second) { List().Exchange(first, second); }
  void Move(std::int32_t from, std::int32_t to) { List().Move(from, to); }
  /// Ascending, by the house's quicksort (QuickSort.h). Kept: the compare subtracts in 32 bits, so values that lie
  /// 2^31 or more apart count the wrong way round.
  void Sort();
};

class TVXSortedIntegerList : public TVXCustomIntegerList {
 public:
  static const TClass& StaticClass();
  const TClass& ClassType() const override { return StaticClass(); }

  /// Answers whether the value is there, and where it stands or belongs.
  bool Find(std::int32_t value, std::int32_t& position) const;
  /// The position or -1; O(log n).
  std::int32_t IndexOf(std::int32_t value) const;
  /// Of a value that is there, the position; nothing is added then.
  std::int32_t Add(std::int32_t value) override;

  /// True from the start.
  bool Ascending() const { return ascending_; }
  /// Turns the order round.
  void SetAscending(bool ascending);

 private:
  /// Whether the first belongs in front of the second.
  bool Before(std::int32_t first, std::int32_t second) const;

  bool ascending_ = true;
};

}  // namespace vx
