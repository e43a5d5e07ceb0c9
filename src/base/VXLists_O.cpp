#include "base/VXLists_O.h"

#include <algorithm>
#include <cstddef>

#include "platform/runtime/Format.h"
#include "platform/runtime/QuickSort.h"

namespace vx {

namespace {

constexpr char kCapacityError[] = "List capacity out of bounds (%d)";
constexpr char kCountError[] = "List count out of bounds (%d)";

std::size_t Bytes(std::int32_t items) { return static_cast<std::size_t>(items) * sizeof(double); }

/// Items that a stranger's compare may lead astray or change under our feet: every access is checked.
struct TCheckedItems {
  TVXDoubleList& list;
  double Get(std::int32_t i) const { return list.Get(i); }
  void Swap(std::int32_t i, std::int32_t j) const { list.Exchange(i, j); }
};

}  // namespace

const TClass& TVXDoubleList::StaticClass() {
  static const TClass info("TVXDoubleList", &TObject::StaticClass());
  return info;
}

// -- Errors -----------------------------------------------------------------------------------------------------------

void TVXDoubleList::Error(const char* format, std::int32_t number) const {
  throw EDoubleListError(Format(format, {number}), __builtin_return_address(0));
}

void TVXDoubleList::RaiseAnyway(const char* format, std::int32_t number) {
  throw EDoubleListError(Format(format, {number}));
}

// -- Reading and changing ---------------------------------------------------------------------------------------------

std::int32_t TVXDoubleList::IndexOf(double value) const {
  const auto values = Values();
  const auto at = std::find(values.begin(), values.end(), value);
  return at == values.end() ? -1 : static_cast<std::int32_t>(at - values.begin());
}

std::int32_t TVXDoubleList::Add(double value) {
  MakeRoomForOne();
  items_.get()[count_] = value;
  return count_++;
}

void TVXDoubleList::Insert(std::int32_t index, double value) {
  CheckIndex(index, count_ + 1);
  MakeRoomForOne();
  CheckIndex(index, count_ + 1);  // an override of Grow may have emptied the list
  double* const at = items_.get() + index;
  std::copy_backward(at, items_.get() + count_, items_.get() + count_ + 1);
  *at = value;
  ++count_;
}

void TVXDoubleList::Delete(std::int32_t index) {
  CheckIndex(index, count_);
  double* const at = items_.get() + index;
  std::copy(at + 1, items_.get() + count_, at);
  --count_;
}

std::int32_t TVXDoubleList::Remove(double value) {
  const std::int32_t at = IndexOf(value);
  if (at >= 0) Delete(at);
  return at;
}

void TVXDoubleList::Exchange(std::int32_t first, std::int32_t second) {
  CheckIndex(first, count_);
  CheckIndex(second, count_);
  std::swap(items_.get()[first], items_.get()[second]);
}

void TVXDoubleList::Move(std::int32_t from, std::int32_t to) {
  if (from == to) return;
  const double value = Get(from);
  Delete(from);
  Insert(to, value);
}

void TVXDoubleList::Clear() {
  SetCount(0);
  SetCapacity(0);
}

void TVXDoubleList::Sort(TDoubleListSortCompare compare) {
  if (count_ > 0) QuickSort(TCheckedItems{*this}, count_, Need(compare, "compare of a sort"));
}

// -- Room -------------------------------------------------------------------------------------------------------------

void TVXDoubleList::SetCapacity(std::int32_t capacity) {
  if (capacity < count_ || capacity >= kLimit) Raise(kCapacityError, capacity);
  if (capacity == capacity_) return;
  if (capacity == 0) {
    items_.reset();
  } else {
    auto* const block = static_cast<double*>(std::realloc(items_.get(), Bytes(capacity)));
    if (block == nullptr) Raise(kCapacityError, capacity);
    static_cast<void>(items_.release());
    items_.reset(block);
  }
  capacity_ = capacity;
}

void TVXDoubleList::SetCount(std::int32_t count) {
  if (count < 0 || count >= kLimit) Raise(kCountError, count);
  if (count > capacity_) SetCapacity(count);
  if (count > count_) std::fill(items_.get() + count_, items_.get() + count, 0.0);
  count_ = count;
}

TVXDoubleList* TVXDoubleList::Expand() {
  if (count_ == capacity_) Grow();
  return this;
}

void TVXDoubleList::Grow() {
  if (capacity_ > 64) return SetCapacity(capacity_ + capacity_ / 4);
  SetCapacity(capacity_ + (capacity_ > 8 ? 16 : 4));
}

void TVXDoubleList::MakeRoomForOne() {
  Expand();
  if (count_ == capacity_) Raise(kCapacityError, capacity_ + 1);  // an override of Grow that made no room
}

}  // namespace vx
