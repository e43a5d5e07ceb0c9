#include "base/VXIntegerList_UNT.h"

#include <utility>
#include <vector>

#include "platform/runtime/QuickSort.h"

namespace vx {

namespace {

void* ToSlot(std::int32_t value) { return reinterpret_cast<void*>(static_cast<std::intptr_t>(value)); }
std::int32_t FromSlot(const void* slot) { return static_cast<std::int32_t>(reinterpret_cast<std::intptr_t>(slot)); }

/// `compare` of two integers must depend on nothing else and answer 0 for equal ones: then every part that the sort
/// looks at ends at its pivot or at an item already swapped, and no index leaves the list.
template <class Compare>
void SortSlots(TList& list, const Compare& compare) {
  QuickSort(TPlainItems<void*>{list.Data()}, list.Count(),
            [&compare](const void* first, const void* second) { return compare(FromSlot(first), FromSlot(second)); });
}

/// Wraps beyond 32 bits.
std::int32_t Difference(std::int32_t first, std::int32_t second) {
  return static_cast<std::int32_t>(static_cast<std::uint32_t>(first) - static_cast<std::uint32_t>(second));
}

}  // namespace

// -- TVXCustomIntegerList ---------------------------------------------------------------------------------------------

const TClass& TVXCustomIntegerList::StaticClass() {
  static const TClass info("TVXCustomIntegerList", &TObject::StaticClass());
  return info;
}

TVXCustomIntegerList::TVXCustomIntegerList() : list_(Make<TList>()) {}

std::int32_t TVXCustomIntegerList::GetItem(std::int32_t index) const { return FromSlot(list_->Items(index)); }

void TVXCustomIntegerList::SetItem(std::int32_t index, std::int32_t value) { list_->Put(index, ToSlot(value)); }

std::int32_t TVXCustomIntegerList::IndexOf(std::int32_t value) const { return list_->IndexOf(ToSlot(value)); }

std::int32_t TVXCustomIntegerList::Add(std::int32_t value) { return list_->Add(ToSlot(value)); }

std::int32_t TVXCustomIntegerList::Remove(std::int32_t value) { return list_->Remove(ToSlot(value)); }

Variant TVXCustomIntegerList::GetAsVariantArray() const {
  std::vector<Variant> elements;
  elements.reserve(static_cast<std::size_t>(Count()));
  for (std::int32_t i = 0; i < Count(); ++i) elements.emplace_back(GetItem(i));
  return Variant::Array(std::move(elements));
}

void TVXCustomIntegerList::SetAsVariantArray(const Variant& value) {
  Clear();
  if (value.IsNull() || value.IsEmpty()) return;
  for (const Variant& element : value.Elements()) Add(element.AsInteger());
}

// -- TVXIntegerList ---------------------------------------------------------------------------------------------------

const TClass& TVXIntegerList::StaticClass() {
  static const TClass info("TVXIntegerList", &TVXCustomIntegerList::StaticClass());
  return info;
}

void TVXIntegerList::Insert(std::int32_t index, std::int32_t value) { List().Insert(index, ToSlot(value)); }

void TVXIntegerList::Sort() { SortSlots(List(), Difference); }

// -- TVXSortedIntegerList ---------------------------------------------------------------------------------------------

const TClass& TVXSortedIntegerList::StaticClass() {
  static const TClass info("TVXSortedIntegerList", &TVXCustomIntegerList::StaticClass());
  return info;
}

bool TVXSortedIntegerList::Before(std::int32_t first, std::int32_t second) const {
  return ascending_ ? first < second : first > second;
}

bool TVXSortedIntegerList::Find(std::int32_t value, std::int32_t& position) const {
  std::int32_t low = 0;
  std::int32_t high = Count() - 1;
  bool found = false;
  while (low <= high) {
    const std::int32_t mid = low + (high - low) / 2;
    const std::int32_t item = GetItem(mid);
    if (Before(item, value)) {
      low = mid + 1;
    } else {
      high = mid - 1;
      if (item != value) continue;
      found = true;
      low = mid;
    }
  }
  position = low;
  return found;
}

std::int32_t TVXSortedIntegerList::IndexOf(std::int32_t value) const {
  std::int32_t position = 0;
  return Find(value, position) ? position : -1;
}

std::int32_t TVXSortedIntegerList::Add(std::int32_t value) {
  std::int32_t position = 0;
  if (!Find(value, position)) List().Insert(position, ToSlot(value));
  return position;
}

void TVXSortedIntegerList::SetAscending(bool ascending) {
  if (ascending == ascending_) return;
  ascending_ = ascending;
  // The compare matches that of Find. A difference, as in TVXIntegerList::Sort, would hide values that lie far apart.
  SortSlots(List(), [this](std::int32_t first, std::int32_t second) {
    return static_cast<std::int32_t>(Before(second, first)) - static_cast<std::int32_t>(Before(first, second));
  });
}

}  // namespace vx
