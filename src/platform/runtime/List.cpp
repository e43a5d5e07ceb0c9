#include "platform/runtime/List.h"

#include <algorithm>

namespace vx {

void RaiseListError(const char* format, std::int64_t value) {
  std::string text = format;
  const std::size_t at = text.find("%d");
  if (at != std::string::npos) text.replace(at, 2, std::to_string(value));
  throw EListError(text);
}

const TClass& TList::StaticClass() {
  static const TClass info("TList", &TObject::StaticClass());
  return info;
}

std::int32_t TList::IndexOf(const void* item) const {
  const auto at = std::find(items_.begin(), items_.end(), item);
  return at == items_.end() ? -1 : static_cast<std::int32_t>(at - items_.begin());
}

void TList::Insert(std::int32_t index, void* item) {
  if (index < 0 || index > Count()) RaiseListError(kListIndexError, index);
  items_.insert(items_.begin() + index, item);
}

void TList::Put(std::int32_t index, void* item) {
  CheckIndex(index);
  items_[static_cast<std::size_t>(index)] = item;
}

void TList::Delete(std::int32_t index) {
  CheckIndex(index);
  items_.erase(items_.begin() + index);
}

std::int32_t TList::Remove(const void* item) {
  const std::int32_t at = IndexOf(item);
  if (at >= 0) items_.erase(items_.begin() + at);
  return at;
}

void TList::Exchange(std::int32_t first, std::int32_t second) {
  CheckIndex(first);
  CheckIndex(second);
  std::swap(items_[static_cast<std::size_t>(first)], items_[static_cast<std::size_t>(second)]);
}

void TList::Move(std::int32_t from, std::int32_t to) {
  CheckIndex(from);
  CheckIndex(to);
  const auto at = items_.begin();
  if (from < to)
    std::rotate(at + from, at + from + 1, at + to + 1);
  else
    std::rotate(at + to, at + from, at + from + 1);
}

void TList::Clear() { std::vector<void*>().swap(items_); }

void TList::Pack() { items_.erase(std::remove(items_.begin(), items_.end(), nullptr), items_.end()); }

void TList::SetCapacity(std::int32_t capacity) {
  if (capacity < Count()) RaiseListError(kListCapacityError, capacity);
  if (capacity > Capacity()) return items_.reserve(static_cast<std::size_t>(capacity));
  std::vector<void*> tight;
  tight.reserve(static_cast<std::size_t>(capacity));
  tight.assign(items_.begin(), items_.end());
  items_.swap(tight);
}

}  // namespace vx
