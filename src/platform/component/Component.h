// Component.h: objects with a name, an owner, and friends who are told when they go.
//
// A component may have an owner, which frees it; owners form a tree. `New<T>(owner, …)` makes one: its constructor
// enters it into the owner's list without telling anybody, and AfterConstruction() tells the owner (opInsert). If
// either raises, the owner is as it was before.
//
//   TVXRAMTable* table = New<TVXRAMTable>(form);
//   table->SetName("Orders");
//   form->FindComponent("orders");                  // table
//
// A class of one's own says what it is; with that it can be cast, listed, and once registered, read from a stream:
//
//   class TBell : public TComponent {
//    public:
//     using TComponent::TComponent;
//     static const TClass& StaticClass();                          // built next to the implementation: Published.h
//     const TClass& ClassType() const override { return StaticClass(); }
//   };
//
// Freeing. TearDown() works in this order: the component and all it owns are marked csDestroying; everyone who asked by
// FreeNotification() is told (opRemove), the latest first; weak references become null; owned components are freed,
// last to first, those that refuse too; the component leaves its owner, who is told as well. Notifications may free,
// add or remove what they like, the sender included (that is without effect). What a listener raises while a component
// goes is dropped: the end can't be stopped.
//
// Two ways not to dangle: FreeNotification() for whoever must act when another component goes, and a TComponentRef for
// whoever just must not touch it any more.
//
// Cost: a name is found by hashing, a position by bisection; entering and leaving the owner's list at either end is
// O(1), in its middle a move of the pointers before or behind. A notification costs what there are listeners in the
// owner's tree: a component whose class doesn't override Notification(), and that owns nobody whose class does, is
// passed over. Make() tells which class an object is of; whoever is made otherwise counts as a listener. A component
// that owns nothing and has no friends pays three empty pointers for all of this.
#pragma once

#include <cstdint>
#include <initializer_list>
#include <memory>
#include <string>
#include <string_view>
#include <type_traits>
#include <typeinfo>
#include <utility>
#include <vector>

#include "platform/component/EnumSet.h"
#include "platform/component/MemoryKeeper.h"
#include "platform/runtime/Object.h"

namespace vx {

enum TComponentStateFlag : std::uint8_t {
  csLoading,     ///< a stream has made it and hasn't called Loaded() yet
  csReading,     ///< a stream is reading its properties right now
  csWriting,     ///< a stream is writing its properties right now
  csDestroying,  ///< it is being freed, or its owner is
  csDesigning,   ///< it is shown in a form's editor
  csAncestor,    ///< it was brought in by an ancestor form
  csUpdating,    ///< it takes over changes of an ancestor form
};
using TComponentState = TSetOf<TComponentStateFlag>;

enum TOperation : std::uint8_t { opInsert, opRemove };

class TComponent : public TPersistent {
 public:
  using TClassArguments = TArguments<TComponent*>;

  /// `owner` frees this component; null for none.
  explicit TComponent(TComponent* owner = nullptr);
  static const TClass& StaticClass();
  const TClass& ClassType() const override { return StaticClass(); }

  // -- Life ----------------------------------------------------------------------------------------------------------
  /// Tells the owner (opInsert). Overriders call it before they use the owner's services.
  void AfterConstruction() override;
  void TearDown() override;
  /// Marks this and all that it owns as csDestroying.
  void Destroying();
  /// Make() says of what class this is; without effect unless that is exactly so. A class must not lift
  /// TComponent::Notification by a using-declaration past an ancestor that overrides it: it would count as deaf.
  template <class T>
  void NoteClass() noexcept {
    // An override that is out of reach or one of several members of that name isn't of this type either.
    if constexpr (requires {
                    requires std::is_same_v<decltype(&T::Notification), void (TComponent::*)(TComponent*, TOperation)>;
                  })
      if (typeid(*this) == typeid(T)) NoteDeaf();
  }

  // -- Owner and name ------------------------------------------------------------------------------------------------
  TComponent* Owner() const { return owner_; }
  TPersistent* GetOwner() const override { return owner_; }
  /// The name, or the class name as long as there is none.
  std::string GetNamePath() const override;
  const std::string& Name() const { return name_; }
  /// A letter or underscore, then letters, digits and underscores; unique in the owner, letter case ignored; or empty.
  /// EComponentError otherwise.
  virtual void SetName(const std::string& name);
  /// Any number, for the application.
  std::int32_t Tag() const { return tag_; }
  void SetTag(std::int32_t tag) { tag_ = tag; }

  // -- Owned components ----------------------------------------------------------------------------------------------
  std::int32_t ComponentCount() const;
  /// EListError outside 0 to ComponentCount - 1.
  TComponent* Components(std::int32_t index) const;
  /// Position in the owner's list; -1 without an owner.
  std::int32_t ComponentIndex() const;
  /// The first owned component of that name, letter case ignored; null if there is none. Owned ones only, not theirs.
  TComponent* FindComponent(std::string_view name) const;
  /// Becomes the owner of `component`, which leaves its former one. EComponentError if the name is taken, if
  /// `component` owns this one directly or by others, or if either is past its end.
  void InsertComponent(TComponent* component);
  /// Gives up the ownership; nobody frees it then. Without effect on a component of another owner.
  void RemoveComponent(TComponent* component);

  // -- State ---------------------------------------------------------------------------------------------------------
  TComponentState ComponentState() const { return state_; }
  bool Is(TComponentStateFlag flag) const { return state_.Has(flag); }
  /// Sets or clears csDesigning here and in all owned components.
  void SetDesigning(bool value);

  // -- Who wants to know ---------------------------------------------------------------------------------------------
  /// Both will be told when the other one goes, at first; as a part of its owner's tree a second time, when it leaves.
  /// Asking twice is harmless; null and itself are ignored.
  void FreeNotification(TComponent* other);
  void RemoveFreeNotification(TComponent* other);

 protected:
  /// The C++ end of an object whose construction failed; all others have gone through TearDown().
  ~TComponent() override;
  /// Waits until no Notification() of this component is running any more.
  void ReleaseMemory() override;
  /// A stream has read this component and all that belongs to it.
  virtual void Loaded();
  /// `component` joins or leaves the owner's tree, or goes and this one has asked to be told. Passes the news on to all
  /// owned components; overriders call the inherited one. A going component is past its own TearDown: compare it, don't
  /// use it.
  virtual void Notification(TComponent* component, TOperation operation);
  /// Raises EComponentError if an owned component other than `component` has that name.
  virtual void ValidateRename(const TComponent* component, const std::string& name) const;

 private:
  friend class TLoading;
  friend class TWriting;
  friend class TComponentLink;
  friend class TMemoryKeeper<TComponent>;

  enum class TStage : std::uint8_t { Whole, Going, Closed, Gone };

  class TChildren;
  struct TFriendship;

  void CheckTakes(const TComponent& component) const;
  void Enter(TComponent& component);
  void Leave(TComponent& component) noexcept;
  void Tell(TComponent* component, TOperation operation);
  void TellGoing(TComponent* component) noexcept;
  void TellFriends() noexcept;
  void FreeOwned() noexcept;
  void NoteDeaf() noexcept;
  bool Hears() const noexcept;
  void ListAsListener();

  TStage stage_ = TStage::Whole;  // Closed: owns nothing any more; Gone: has told everyone
  bool released_ = false;         // see MemoryKeeper.h
  bool overrides_ = true;         // may have a Notification() of its own
  bool listed_ = false;           // stands among the listeners of its owner
  std::int32_t keepers_ = 0;      // see MemoryKeeper.h
  std::int32_t tag_ = 0;
  TComponentState state_;
  TComponent* owner_ = nullptr;
  std::uint64_t order_ = 0;  // among the owner's components: who came later has more
  std::string name_;
  std::unique_ptr<TChildren> children_;  // made for the first
  TFriendship* friends_ = nullptr;       // whoever asked here, and whom this one asked, the latest first
  TFriendship* told_ = nullptr;          // those of whom one has told the other that it goes
  std::shared_ptr<bool> alive_;          // made for the first weak reference; false once torn down
};

/// The part of a weak reference that doesn't depend on its type.
class TComponentLink {
 public:
  TComponentLink() = default;
  explicit TComponentLink(TComponent* component);

  /// Null for an unset link, and as soon as the component is torn down.
  TComponent* Component() const { return alive_ != nullptr && *alive_ ? component_ : nullptr; }
  /// True for the component that was put in, also while and after it goes: for use in Notification().
  bool RefersTo(const TComponent* component) const { return component != nullptr && component_ == component; }

 private:
  TComponent* component_ = nullptr;
  std::shared_ptr<const bool> alive_;
};

/// What a stream holds while it makes and reads a component: csLoading and csReading. Finish() ends both and calls
/// Loaded(); a scope left without it (an error) just ends them.
class TLoading {
 public:
  TLoading() = default;
  explicit TLoading(TComponent& component);
  TLoading(TLoading&&) noexcept = default;
  TLoading& operator=(TLoading&& other) noexcept {
    std::swap(link_, other.link_);
    return *this;
  }
  ~TLoading();
  /// Null once the component is torn down.
  TComponent* Component() const { return link_.Component(); }
  /// All its properties are there: csReading ends, csLoading stays.
  void EndReading();
  void Finish();

 private:
  TComponentLink link_;
};

/// What a stream holds while it writes a component, whose memory is kept as long: csWriting.
class TWriting {
 public:
  explicit TWriting(TComponent& component) : component_(component), was_(component.Is(csWriting)) {
    component.state_.Include(csWriting);
  }
  TWriting(const TWriting&) = delete;
  TWriting& operator=(const TWriting&) = delete;
  ~TWriting() { component_.state_.Put(csWriting, was_); }

 private:
  TComponent& component_;
  bool was_;
};

/// A reference that never dangles: null once its component is torn down. T is a component class, or an interface that
/// components implement. O(1); two words and the component's share.
template <class T = TComponent>
class TComponentRef {
 public:
  TComponentRef() = default;
  TComponentRef(std::nullptr_t) {}  // NOLINT: assigned as a pointer is
  TComponentRef(T* object)          // NOLINT
      : link_(ComponentOf(object)), object_(object) {}

  T* Get() const { return link_.Component() == nullptr ? nullptr : object_; }
  /// The component behind it, for casts to the interfaces that it implements.
  TComponent* Component() const { return link_.Component(); }
  template <class I>
  I* As() const {
    return dynamic_cast<I*>(link_.Component());
  }
  bool RefersTo(const TComponent* component) const { return link_.RefersTo(component); }

  explicit operator bool() const { return Get() != nullptr; }
  /// Raises ENilAccess if it is null.
  T* operator->() const { return &Need(Get(), "component reference"); }
  T& operator*() const { return Need(Get(), "component reference"); }
  bool operator==(const TComponentRef& other) const { return Get() == other.Get(); }
  bool operator==(const T* other) const { return Get() == other; }

 private:
  static TComponent* ComponentOf(T* object) {
    if constexpr (std::is_base_of_v<TComponent, T>) {
      return object;
    } else {
      auto* const component = dynamic_cast<TComponent*>(object);
      if (object != nullptr && component == nullptr) throw EInvalidCast("A weak reference needs a component");
      return component;
    }
  }

  TComponentLink link_;
  T* object_ = nullptr;
};

// -- The class registry ----------------------------------------------------------------------------------------------

struct TPalettePage {
  std::string Name;
  std::vector<const TClass*> Classes;
};

/// Makes a class known by its name, letter case ignored. Twice is harmless; EComponentError if another class has the
/// name.
void RegisterClass(const TClass& type);
void UnregisterClass(const TClass& type);
/// The class registered under `name`; null if there is none.
const TClass* GetClass(std::string_view name);
/// All registered classes, on a palette page or not, in the order of their names in lower case.
std::vector<const TClass*> RegisteredClasses();

/// Registers the classes and puts them on the palette page, after those that are there; pages stand in the order of
/// their first use. A class stands on one page: a later call moves it.
void RegisterComponents(const std::string& page, std::initializer_list<const TClass*> classes);
void UnregisterComponents(std::initializer_list<const TClass*> classes);
/// All pages with their classes, in order. Valid until the next registration.
const std::vector<TPalettePage>& Palette();

}  // namespace vx
