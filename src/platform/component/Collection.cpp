#include "platform/component/Collection.h"

#include <algorithm>
#include <limits>

#include "platform/component/Published.h"
#include "platform/runtime/List.h"
#include "platform/runtime/Wrapping.h"

namespace vx {

namespace {

/// True if `part` is `whole` or belongs to it, by whatever chain of owners.
bool BelongsTo(const TPersistent* part, const TPersistent* whole) {
  while (part != nullptr && part != whole) part = part->GetOwner();
  return part != nullptr;
}

}  // namespace

// -- TCollectionItem --------------------------------------------------------------------------------------------------

const TClass& TCollectionItem::StaticClass() {
  static const TClass info("TCollectionItem", &TPersistent::StaticClass());
  return info;
}

TCollectionItem::TCollectionItem(TCollection* collection) {
  if (collection != nullptr) collection->Enter(*this);
}

TCollectionItem::~TCollectionItem() {
  if (collection_ != nullptr) collection_->Leave(*this);
}

void TCollectionItem::AfterConstruction() {
  TPersistent::AfterConstruction();
  if (collection_ == nullptr) return;
  collection_->CheckTakes(*this);
  collection_->Changed();
}

void TCollectionItem::TearDown() {
  if (TCollection* const collection = collection_) {
    collection->Leave(*this);
    try {
      collection->Changed();
    } catch (...) {
      // The item has gone, whatever the collection thinks of it.
    }
  }
  TPersistent::TearDown();
}

void TCollectionItem::SetCollection(TCollection* collection) {
  if (collection == collection_) return;
  if (collection != nullptr) collection->CheckTakes(*this);
  TCollection* const former = collection_;
  const TMemoryKeeper<TCollection> keepFormer(former), keepNew(collection);
  if (former != nullptr) former->Leave(*this);
  if (collection != nullptr) collection->Enter(*this);
  // Both lists are in order now; from here on whoever is told may free this item.
  if (former != nullptr) former->Changed();
  if (collection != nullptr) collection->Changed();
}

std::int32_t TCollectionItem::Index() const { return collection_ == nullptr ? -1 : collection_->PlaceOf(*this); }

void TCollectionItem::SetIndex(std::int32_t index) {
  if (collection_ == nullptr) return;
  collection_->CheckIndex(index, collection_->Count());
  if (index == Index()) return;
  collection_->Move(Index(), index);
  Changed(true);
}

void TCollectionItem::SetDisplayName(const std::string&) { Changed(false); }

TPersistent* TCollectionItem::GetOwner() const { return collection_; }

std::string TCollectionItem::GetNamePath() const {
  if (collection_ == nullptr) return ClassName();
  return collection_->GetNamePath() + "[" + std::to_string(Index()) + "]";
}

void TCollectionItem::Changed(bool allItems) {
  if (collection_ != nullptr && collection_->updateCount_ == 0) collection_->Update(allItems ? nullptr : this);
}

// -- TCollection: life and work ---------------------------------------------------------------------------------------

const TClass& TCollection::StaticClass() {
  static const TClass info("TCollection", &TPersistent::StaticClass());
  return info;
}

TCollection::~TCollection() { TCollection::TearDown(); }

void TCollection::TearDown() {
  if (closed_) return;
  BeginUpdate();  // never ended: nothing is told any more
  while (TCollectionItem* const item = LastFreeable()) item->FreeAnyway();
  closed_ = true;
  // Those that remain are being freed further up the stack.
  while (!items_.empty()) Leave(*items_.back());
  TPersistent::TearDown();
}

void TCollection::ReleaseMemory() {
  if (!TMemoryKeeper<TCollection>::Delays(*this)) TPersistent::ReleaseMemory();
}

void TCollection::EndUpdate() {
  if (updateCount_ == 0) return;
  --updateCount_;
  Changed();
}

void TCollection::Changed() {
  if (updateCount_ == 0) Update(nullptr);
}

/// Runs `change` in a bracket, which also ends if `change` raises.
template <class F>
void TCollection::Bracket(F&& change) {
  const TMemoryKeeper<TCollection> keep(this);
  BeginUpdate();
  try {
    change();
  } catch (...) {
    EndUpdate();
    throw;
  }
  EndUpdate();
}

void TCollection::Assign(const TPersistent* source) {
  const auto* const other = As<TCollection>(source);
  if (other == nullptr) {
    TPersistent::Assign(source);
    return;
  }
  if (other == this) return;
  if (BelongsTo(other, this)) throw EInvalidOperation("A collection can't be assigned a part of its own items");
  Bracket([&] {
    Clear();
    for (std::int32_t i = 0; i < other->Count(); ++i) Add()->Assign(other->Items(i));
  });
}

std::string TCollection::GetNamePath() const {
  if (TPersistent* const owner = GetOwner())
    for (const TPropInfo* const property : GetPropList(owner))
      if (property->Kind == tkClass && GetObjectProp(owner, property) == this)
        return owner->GetNamePath() + "." + property->Name;
  return TPersistent::GetNamePath();
}

// -- TCollection: items -----------------------------------------------------------------------------------------------

TCollectionItem* TCollection::Items(std::int32_t index) const {
  CheckIndex(index, Count());
  return items_[static_cast<std::size_t>(index)];
}

TCollectionItem* TCollection::FindItemID(std::int32_t id) const {
  const auto at =
      std::find_if(items_.begin(), items_.end(), [id](const TCollectionItem* item) { return item->id_ == id; });
  return at == items_.end() ? nullptr : *at;
}

TCollectionItem* TCollection::Add() { return itemClass_.Make(this).release(); }

TCollectionItem* TCollection::Insert(std::int32_t index) {
  CheckIndex(index, Count() + 1);
  TCollectionItem* item = nullptr;
  Bracket([&] {
    item = Add();
    item->SetIndex(index);
  });
  return item;
}

void TCollection::Delete(std::int32_t index) { Items(index)->Free(); }

void TCollection::Clear() {
  if (items_.empty()) return;
  Bracket([this] {
    while (TCollectionItem* const item = LastFreeable()) item->Free();
  });
}

/// The last item that isn't being freed already.
TCollectionItem* TCollection::LastFreeable() const {
  const auto at =
      std::find_if(items_.rbegin(), items_.rend(), [](const TCollectionItem* item) { return !item->IsBeingFreed(); });
  return at == items_.rend() ? nullptr : *at;
}

void TCollection::CheckIndex(std::int32_t index, std::int32_t limit) const {
  if (index < 0 || index >= limit) RaiseListError(kListIndexError, index);
}

void TCollection::CheckTakes(const TCollectionItem& item) const {
  if (closed_) throw EInvalidOperation("A collection that is being freed takes no items");
  const TClass* const wanted = itemClass_.Class();
  if (wanted != nullptr && !item.InheritsFrom(*wanted)) RaiseInvalidCast(item, wanted->Name());
  if (BelongsTo(this, &item)) throw EInvalidOperation("An item can't move into a collection of its own");
}

void TCollection::Enter(TCollectionItem& item) {
  if (closed_) throw EInvalidOperation("A collection that is being freed takes no items");
  if (!items_.empty() && items_.back()->number_ == std::numeric_limits<std::int32_t>::max()) Renumber(0);
  const std::int32_t number = items_.empty() ? 0 : items_.back()->number_ + 1;
  items_.push_back(&item);
  item.collection_ = this;
  item.number_ = number;
  if (numbered_ == number) ++numbered_;
  item.id_ = CountOn(nextID_);
  ItemsMoved();
}

void TCollection::Leave(TCollectionItem& item) noexcept {
  const std::int32_t at = PlaceOf(item);
  items_.erase(items_.begin() + at);
  item.collection_ = nullptr;
  numbered_ = std::min(numbered_, at);
  ItemsMoved();
}

void TCollection::Move(std::int32_t from, std::int32_t to) {
  const auto begin = items_.begin();
  if (from < to)
    std::rotate(begin + from, begin + from + 1, begin + to + 1);
  else
    std::rotate(begin + to, begin + from, begin + from + 1);
  Renumber(static_cast<std::size_t>(std::min({from, to, numbered_})));
  ItemsMoved();
}

void TCollection::Renumber(std::size_t from) noexcept {
  for (std::size_t i = from; i < items_.size(); ++i) items_[i]->number_ = static_cast<std::int32_t>(i);
  numbered_ = Count();
}

std::int32_t TCollection::PlaceOf(const TCollectionItem& item) const noexcept {
  if (item.number_ < numbered_) return item.number_;
  const auto at = std::lower_bound(items_.begin() + numbered_, items_.end(), item.number_,
                                   [](const TCollectionItem* other, std::int32_t n) { return other->number_ < n; });
  return static_cast<std::int32_t>(at - items_.begin());
}

}  // namespace vx
