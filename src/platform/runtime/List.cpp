#include "platform/runtime/List.h"

#include <algorithm>

namespace vx {

namespace {

constexpr std::size_t kShortMove = 4096;  // items that are moved at once when one before them goes
constexpr std::size_t kMostHoles = 1024;  // before a list closes up

}  // namespace

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

std::int32_t TList::IndexOf(const void* item, std::int32_t from) const {
  if (from < 0 || from >= Count()) return -1;
  for (auto at = items_.begin() + static_cast<std::ptrdiff_t>(Place(from));; ++at) {
    at = std::find(at, items_.end(), item);
    if (at == items_.end()) return -1;
    const auto place = static_cast<std::int32_t>(at - items_.begin());
    const auto hole = std::lower_bound(holes_.begin(), holes_.end(), place);
    if (hole == holes_.end() || *hole != place) return place - static_cast<std::int32_t>(hole - holes_.begin());
  }
}

void TList::Insert(std::int32_t index, void* item) {
  if (index < 0 || index > Count()) RaiseListError(kListIndexError, index);
  CloseUp();
  ++rewrites_;
  items_.insert(items_.begin() + index, item);
}

void TList::Put(std::int32_t index, void* item) {
  CheckIndex(index);
  ++rewrites_;
  items_[Place(index)] = item;
}

void TList::Delete(std::int32_t index) {
  CheckIndex(index);
  ++rewrites_;
  const std::size_t place = Place(index);
  if (holes_.empty() && items_.size() - place <= kShortMove) {
    items_.erase(items_.begin() + static_cast<std::ptrdiff_t>(place));
    return;
  }
  const auto hole = static_cast<std::int32_t>(place);
  holes_.insert(std::lower_bound(holes_.begin(), holes_.end(), hole), hole);
  items_[place] = nullptr;
  if (holes_.size() >= kMostHoles) CloseUp();
}

std::int32_t TList::Remove(const void* item) {
  const std::int32_t at = IndexOf(item);
  if (at >= 0) Delete(at);
  return at;
}

void TList::Exchange(std::int32_t first, std::int32_t second) {
  CheckIndex(first);
  CheckIndex(second);
  ++rewrites_;
  std::swap(items_[Place(first)], items_[Place(second)]);
}

void TList::Move(std::int32_t from, std::int32_t to) {
  CheckIndex(from);
  CheckIndex(to);
  void** const items = Data();
  if (from < to)
    std::rotate(items + from, items + from + 1, items + to + 1);
  else
    std::rotate(items + to, items + from, items + from + 1);
}

void TList::Clear() {
  ++rewrites_;
  std::vector<void*>().swap(items_);
  std::vector<std::int32_t>().swap(holes_);
}

void TList::Pack() {
  CloseUp();
  const auto end = std::remove(items_.begin(), items_.end(), nullptr);
  if (end == items_.end()) return;
  ++rewrites_;
  items_.erase(end, items_.end());
}

void TList::SetCapacity(std::int32_t capacity) {
  if (capacity < Count()) RaiseListError(kListCapacityError, capacity);
  CloseUp();
  if (capacity > Capacity()) return items_.reserve(static_cast<std::size_t>(capacity));
  std::vector<void*> tight;
  tight.reserve(static_cast<std::size_t>(capacity));
  tight.assign(items_.begin(), items_.end());
  items_.swap(tight);
}

// -- Holes ------------------------------------------------------------------------------------------------------------

std::int32_t TList::PlaceAmongHoles(std::int32_t index) const {
  // The hole at position k of the list of holes has holes_[k] - k items before it.
  std::int32_t low = 0;
  auto high = static_cast<std::int32_t>(holes_.size());
  while (low < high) {
    const std::int32_t middle = (low + high) / 2;
    if (holes_[static_cast<std::size_t>(middle)] - middle <= index)
      low = middle + 1;
    else
      high = middle;
  }
  return index + low;
}

void TList::CloseUp() const {
  if (holes_.empty()) return;
  auto to = items_.begin() + holes_.front();
  for (std::size_t i = 0; i < holes_.size(); ++i) {
    const auto from = items_.begin() + holes_[i] + 1;
    const auto end = i + 1 < holes_.size() ? items_.begin() + holes_[i + 1] : items_.end();
    to = std::move(from, end, to);
  }
  items_.erase(to, items_.end());
  holes_.clear();
}

}  // namespace vx
