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
// Freeing. TearDown() works in this order: the component and all it owns are marked csDestroying; everyone who asked by
// FreeNotification() is told (opRemove), the latest first; weak references become null; owned components are freed,
// last to first, those that refuse too; the component leaves its owner, who is told as well. Notifications may free,
// add or remove what they like, the sender included (that is without effect). What a listener raises while a component
// goes is dropped: the end can't be stopped.
//
// Two ways not to dangle: FreeNotification() for whoever must act when another component goes, and a TComponentRef for
// whoever just must not touch it any more.
//
// Cost: a component is found by a walk over its owner's list. A notification reaches all that the owner's tree holds.
#pragma once

#include <cstdint>
#include <initializer_list>
#include <memory>
#include <string>
#include <string_view>
#include <type_traits>
#include <vector>

#include "platform/component/EnumSet.h"
#include "platform/component/ListenerList.h"
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
  std::int32_t ComponentCount() const { return static_cast<std::int32_t>(components_.Count()); }
  /// EListError outside 0 to ComponentCount - 1.
  TComponent* Components(std::int32_t index) const;
  /// Position in the owner's list; -1 without an owner.
  std::int32_t ComponentIndex() const;
  /// The owned component of that name, letter case ignored; null if there is none. Owned ones only, not theirs.
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
  friend class TComponentLink;
  friend class TMemoryKeeper<TComponent>;

  enum class TStage : std::uint8_t { Whole, Going, Closed, Gone };

  void CheckTakes(const TComponent& component) const;
  void Enter(TComponent& component);
  void Leave(TComponent& component) noexcept;
  void Tell(TComponent* component, TOperation operation);
  void TellGoing(TComponent* component) noexcept;
  void TellFriends() noexcept;
  void FreeOwned() noexcept;
  bool Knows(const TComponent* other) const;
  bool WasTold(const TComponent* other) const;
  void Forget(const TComponent* other) noexcept;

  TComponent* owner_ = nullptr;
  std::string name_;
  std::int32_t tag_ = 0;
  TComponentState state_;
  TStage stage_ = TStage::Whole;  // Closed: owns nothing any more; Gone: has told everyone
  TListenerList<TComponent> components_;
  std::vector<TComponent*> friends_;  // whoever asked here, and whom this one asked
  std::vector<TComponent*> told_;     // whom this one has told that it goes
  std::shared_ptr<bool> alive_;       // made for the first weak reference; false once torn down
  std::int32_t keepers_ = 0;          // see MemoryKeeper.h
  bool released_ = false;
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
  explicit TLoading(TComponent& component);
  TLoading(const TLoading&) = delete;
  TLoading& operator=(const TLoading&) = delete;
  ~TLoading();
  void Finish();

 private:
  TComponentLink link_;
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

/// Registers the classes and puts them on the palette page, after those that are there; pages stand in the order of
/// their first use. A class stands on one page: a later call moves it.
void RegisterComponents(const std::string& page, std::initializer_list<const TClass*> classes);
void UnregisterComponents(std::initializer_list<const TClass*> classes);
/// All pages with their classes, in order. Valid until the next registration.
const std::vector<TPalettePage>& Palette();

}  // namespace vx
