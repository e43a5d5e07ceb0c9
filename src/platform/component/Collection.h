// Collection.h: an owned, ordered list of items of one class.
//
// A collection makes its items by a class reference and frees them; an item knows its collection, its position and an
// id that is never given twice. `item->Free()` and `Delete(index)` are the same.
//
//   class TRule : public TCollectionItem { public: using TCollectionItem::TCollectionItem; … };
//   class TRules : public TCollectionOf<TRule> { … };
//
//   TRule* rule = rules.Add();                      // whole, and in its place: rule->Index() is Count() - 1
//   rule->SetIndex(0);                              // moved to the front
//
// Making. The item's constructor enters it at the end; its AfterConstruction() runs with a valid index and tells the
// collection. If either raises, the item is gone.
//
// Telling. Every change calls Update(): with an item if that one alone changed, with null if anything may have changed.
// Inside a bracket nothing is told; the end of the outermost bracket tells null, once, also if nothing changed: an
// empty bracket is how a user asks for a refresh. What Update raises passes on, but for an item that goes by itself:
// its end can't be stopped.
//
// Freeing. An item may refuse in BeforeDestruction: Clear() then stops there, those after it are gone. The end of the
// collection takes down all, and tells nothing.
//
// Cost: Add, Items and Index O(1); Insert, Delete and SetIndex O(items behind); FindItemID O(n).
#pragma once

#include <cstdint>
#include <string>
#include <type_traits>
#include <vector>

#include "platform/component/MemoryKeeper.h"
#include "platform/runtime/Object.h"

namespace vx {

class TCollection;

class TCollectionItem : public TPersistent {
 public:
  using TClassArguments = TArguments<TCollection*>;

  /// A null collection makes an item that nobody owns.
  explicit TCollectionItem(TCollection* collection);
  static const TClass& StaticClass();
  const TClass& ClassType() const override { return StaticClass(); }

  /// Tells the collection. Raises EInvalidCast if the collection holds items of another class.
  void AfterConstruction() override;
  /// Leaves the collection.
  void TearDown() override;

  TCollection* Collection() const { return collection_; }
  /// Moves to the end of another collection and gets a new id there; null leaves the item to the caller. EInvalidCast
  /// if that one holds items of another class, EInvalidOperation if it is a part of this item; nothing has changed
  /// then.
  void SetCollection(TCollection* collection);
  /// Counts up from 0 in each collection; never used again there.
  std::int32_t ID() const { return id_; }
  /// Position in the collection; -1 without one.
  std::int32_t Index() const;
  /// Moves the item. EListError outside 0 to Count - 1.
  void SetIndex(std::int32_t index);

  std::string DisplayName() const { return GetDisplayName(); }
  /// What a list of the items shows; the class name unless overridden.
  virtual std::string GetDisplayName() const { return ClassName(); }
  virtual void SetDisplayName(const std::string& value);

  TPersistent* GetOwner() const override;
  /// Path of the collection and the index in brackets: "Form.Rules[2]".
  std::string GetNamePath() const override;

 protected:
  /// The C++ end of an item whose construction failed; all others have gone through TearDown().
  ~TCollectionItem() override;
  /// Tells the collection that this item changed, or that all may have.
  void Changed(bool allItems);

 private:
  friend class TCollection;

  TCollection* collection_ = nullptr;
  std::int32_t id_ = 0;
  std::int32_t number_ = -1;  // see TCollection::PlaceOf
};

class TCollection : public TPersistent {
 public:
  explicit TCollection(TClassOf<TCollectionItem> itemClass) : itemClass_(itemClass) {}
  static const TClass& StaticClass();
  const TClass& ClassType() const override { return StaticClass(); }

  void TearDown() override;
  /// Another collection: becomes a copy of its items, each made by Add and assigned, in one bracket. If an item refuses
  /// to go or to be assigned, what was done so far stays. EInvalidOperation if `source` is a part of one of the items.
  /// Itself: nothing. Anything else as the base class.
  void Assign(const TPersistent* source) override;
  /// Path of the owner and the name of its property that holds this collection, as far as known; else the class name.
  std::string GetNamePath() const override;

  // -- Items ---------------------------------------------------------------------------------------------------------
  const TClassOf<TCollectionItem>& ItemClass() const { return itemClass_; }
  std::int32_t Count() const { return static_cast<std::int32_t>(items_.size()); }
  /// EListError "List index out of bounds (%d)" outside 0 to Count - 1.
  TCollectionItem* Items(std::int32_t index) const;
  /// The item with that id; null if there is none.
  TCollectionItem* FindItemID(std::int32_t id) const;

  /// Makes an item at the end.
  TCollectionItem* Add();
  /// Makes an item and moves it to `index`, 0 to Count. EListError outside, and nothing has changed.
  TCollectionItem* Insert(std::int32_t index);
  /// Frees the item.
  void Delete(std::int32_t index);
  /// Frees all items, last to first.
  void Clear();

  // -- Brackets ------------------------------------------------------------------------------------------------------
  void BeginUpdate() { ++updateCount_; }
  /// Without a BeginUpdate before it: no effect.
  void EndUpdate();
  std::int32_t UpdateCount() const { return updateCount_; }

 protected:
  ~TCollection() override;
  /// Waits until the collection isn't at work any more: an item or listener may have freed it.
  void ReleaseMemory() override;
  /// Calls Update(null), unless in a bracket.
  void Changed();
  /// Something changed: `item` alone, or anything if it is null.
  virtual void Update(TCollectionItem* item) { static_cast<void>(item); }
  /// An item came, went or moved. Runs at once, in a bracket too, and for an item that is still being constructed: for
  /// dropping what was computed from the items. Must not raise.
  virtual void ItemsMoved() {}

 private:
  friend class TCollectionItem;
  friend class TMemoryKeeper<TCollection>;

  void CheckIndex(std::int32_t index, std::int32_t limit) const;
  void CheckTakes(const TCollectionItem& item) const;
  template <class F>
  void Bracket(F&& change);
  void Enter(TCollectionItem& item);
  void Leave(TCollectionItem& item) noexcept;
  void Move(std::int32_t from, std::int32_t to);
  /// Items carry numbers that rise along the list. An item that leaves doesn't make all behind it take new ones: up to
  /// `numbered_` the numbers are the positions, behind that they only tell the order, and the position is searched.
  std::int32_t PlaceOf(const TCollectionItem& item) const noexcept;
  void Renumber(std::size_t from) noexcept;
  TCollectionItem* LastFreeable() const;

  TClassOf<TCollectionItem> itemClass_;
  std::vector<TCollectionItem*> items_;
  std::int32_t numbered_ = 0;
  std::int32_t nextID_ = 0;
  std::int32_t updateCount_ = 0;
  bool closed_ = false;       // torn down: takes no items any more
  std::int32_t keepers_ = 0;  // see MemoryKeeper.h
  bool released_ = false;
};

/// A collection whose items are known to be of class Item.
template <class Item>
class TCollectionOf : public TCollection {
 public:
  TCollectionOf() : TCollection(TClassOf<TCollectionItem>::Of<Item>()) {
    // Compared as types: g++ under the sanitizers doesn't take a comparison of the addresses for a constant.
    static_assert(!std::is_same_v<TMaker<&Item::StaticClass>, TMaker<&TCollectionItem::StaticClass>>,
                  "an item class needs its own class info");
  }

  Item* Items(std::int32_t index) const { return static_cast<Item*>(TCollection::Items(index)); }
  Item* FindItemID(std::int32_t id) const { return static_cast<Item*>(TCollection::FindItemID(id)); }
  Item* Add() { return static_cast<Item*>(TCollection::Add()); }
  Item* Insert(std::int32_t index) { return static_cast<Item*>(TCollection::Insert(index)); }

 private:
  template <const TClass& (*)()>
  struct TMaker {};
};

}  // namespace vx
