// Event.h: a slot for one handler.
//
// An event is a value with an identity: it says which code runs on which object, can be kept, compared and given back.
// Calling an unassigned event does nothing and gives R{}. A slot doesn't own the object: who assigned the handler
// clears the slot before that object dies.
//
//   TNotifyEvent OnChange;
//   OnChange = TNotifyEvent(form, &TForm::TableChange);            // a method of an object, or of a base of its class
//   OnChange = [&](TObject* sender) { Log(sender); };              // any callable; a plain function too
//   OnChange(this);
//
//   const TNotifyEvent kept = std::exchange(table.OnChange, mine); // chaining: `mine` calls `kept` in turn
//   if (table.OnChange == mine) table.OnChange = kept;             // given back only if nobody came in between
//
// Equality. Two methods are equal if code and object are the same. A plain function is its own code. Any other callable
// is equal only to the copies of the event that it was first put into; its type counts as its code (SameCode). Events
// without a handler are equal. Events of different signatures don't convert into each other, not even where a call
// would be possible: the copy would have lost its identity.
//
// A running call keeps what it runs: a handler may reassign, clear or free the very slot that called it.
//
// Cost: an assignment allocates once, a copy counts a reference, a call is one virtual call.
#pragma once

#include <cstddef>
#include <memory>
#include <type_traits>
#include <typeinfo>
#include <utility>

namespace vx {

class TObject;

template <class Signature>
class TEvent;

/// What all handlers have in common, whatever their signature.
class TEventHandler {
 public:
  TEventHandler() = default;
  TEventHandler(const TEventHandler&) = delete;
  TEventHandler& operator=(const TEventHandler&) = delete;
  virtual ~TEventHandler() = default;
  virtual bool SameCode(const TEventHandler& other) const = 0;
  virtual bool SameObject(const TEventHandler& other) const = 0;
};

template <class>
inline constexpr bool kIsEvent = false;
template <class Signature>
inline constexpr bool kIsEvent<TEvent<Signature>> = true;

template <class R, class... Args>
class TEvent<R(Args...)> {
  struct THandler : TEventHandler {
    virtual R Call(Args... args) const = 0;
  };

  template <class Cls, class Method>
  struct TMethodHandler final : THandler {
    TMethodHandler(Cls& object, Method method) : object_(&object), method_(method) {}
    R Call(Args... args) const override { return (object_->*method_)(std::forward<Args>(args)...); }
    bool SameCode(const TEventHandler& other) const override {
      const auto* const same = dynamic_cast<const TMethodHandler*>(&other);
      return same != nullptr && same->method_ == method_;
    }
    bool SameObject(const TEventHandler& other) const override {
      const auto* const same = dynamic_cast<const TMethodHandler*>(&other);
      return same != nullptr && same->object_ == object_;
    }
    Cls* object_;
    Method method_;
  };

  template <class F>
  struct TCallableHandler final : THandler {
    explicit TCallableHandler(F handler) : handler_(std::move(handler)) {}
    R Call(Args... args) const override {
      if constexpr (std::is_void_v<R>)
        handler_(std::forward<Args>(args)...);
      else
        return handler_(std::forward<Args>(args)...);
    }
    bool SameCode(const TEventHandler& other) const override {
      const auto* const same = dynamic_cast<const TCallableHandler*>(&other);
      if constexpr (std::is_pointer_v<F>) return same != nullptr && same->handler_ == handler_;
      return same != nullptr;
    }
    bool SameObject(const TEventHandler& other) const override {
      return std::is_pointer_v<F> ? SameCode(other) : this == &other;
    }
    mutable F handler_;
  };

 public:
  /// Unassigned: calling it does nothing and gives R{}.
  TEvent() = default;
  TEvent(std::nullptr_t) {}  // NOLINT: an unassigned event is written as null

  /// `object` is not owned and must outlive its stay in the slot. `method` belongs to its class or a base of it.
  template <class Obj, class Cls>
  requires(std::is_base_of_v<Cls, Obj> && !std::is_const_v<Obj>) TEvent(Obj& object, R (Cls::*method)(Args...))
      : handler_(std::make_shared<TMethodHandler<Cls, R (Cls::*)(Args...)>>(object, method)) {}
  template <class Obj, class Cls>
  requires std::is_base_of_v<Cls, std::remove_const_t<Obj>> TEvent(Obj& object, R (Cls::*method)(Args...) const)
      : handler_(std::make_shared<TMethodHandler<const Cls, R (Cls::*)(Args...) const>>(object, method)) {}

  /// Any callable. A null function pointer and an empty std::function leave the event unassigned.
  template <class F>
  requires(!kIsEvent<std::decay_t<F>> && std::is_invocable_r_v<R, std::decay_t<F>&, Args...>)
      TEvent(F&& handler) {  // NOLINT: a handler is assigned as it is written
    using THeld = std::decay_t<F>;
    THeld held(std::forward<F>(handler));
    if constexpr (std::is_constructible_v<THeld, std::nullptr_t>) {
      if (held == nullptr) return;
    }
    handler_ = std::make_shared<TCallableHandler<THeld>>(std::move(held));
  }

  explicit operator bool() const { return handler_ != nullptr; }
  /// Same code on the same object.
  bool operator==(const TEvent& other) const {
    return handler_ == other.handler_ || (SameCode(other) && handler_->SameObject(*other.handler_));
  }
  /// Same method, whatever the object; also true for two unassigned events.
  bool SameCode(const TEvent& other) const {
    if (handler_ == nullptr || other.handler_ == nullptr) return handler_ == other.handler_;
    return handler_->SameCode(*other.handler_);
  }

  R operator()(Args... args) const {
    // From here on `this` may be gone: only the local counts.
    if (const auto held = handler_) return held->Call(std::forward<Args>(args)...);
    if constexpr (!std::is_void_v<R>) return R{};
  }

 private:
  friend class TAnyEvent;

  std::shared_ptr<const THandler> handler_;
};

/// The type of most events: who sends it, and nothing else.
using TNotifyEvent = TEvent<void(TObject*)>;

/// An event whose signature is known only while the program runs; what property tables hand about.
class TAnyEvent {
 public:
  TAnyEvent() = default;
  template <class Signature>
  TAnyEvent(const TEvent<Signature>& event)  // NOLINT: every event is one
      : handler_(event.handler_), signature_(&typeid(Signature)) {}

  explicit operator bool() const { return handler_ != nullptr; }
  bool operator==(const TAnyEvent& other) const {
    return handler_ == other.handler_ || (SameCode(other) && handler_->SameObject(*other.handler_));
  }
  bool SameCode(const TAnyEvent& other) const {
    if (handler_ == nullptr || other.handler_ == nullptr) return handler_ == other.handler_;
    return handler_->SameCode(*other.handler_);
  }
  /// True if this can be put into an event of that signature. An unassigned one fits everywhere.
  bool Fits(const std::type_info& signature) const { return handler_ == nullptr || *signature_ == signature; }
  /// The event of that signature; unassigned if this doesn't fit.
  template <class Signature>
  TEvent<Signature> As() const {
    TEvent<Signature> event;
    if (Fits(typeid(Signature)))
      event.handler_ = std::static_pointer_cast<const typename TEvent<Signature>::THandler>(handler_);
    return event;
  }

 private:
  std::shared_ptr<const TEventHandler> handler_;
  const std::type_info* signature_ = nullptr;
};

}  // namespace vx
