// InForce.h: the one of its kind that counts right now: the clock, the clipboard's store, the display.
//
// A host brings such things for as long as it lives, and hosts may stand within each other: what came last counts, and
// when it ends, what was in force before. Ends may come in any order.
//
//   const TInForce<IRegistryStore*>::TScope scope(&store);     // `store` is in force for the life of the scope
//   TInForce<IRegistryStore*>::Current();                      // &store
//
// V is a pointer to an interface, or a value; V{} stands for "nobody brought one". What a pointer points to belongs to
// the caller. Main thread only. Nothing allocates.
#pragma once

#include <utility>

namespace vx {

template <class V>
class TInForce {
 public:
  class TScope {
   public:
    explicit TScope(V value) : value_(std::move(value)), outer_(std::exchange(Innermost(), this)) {}
    TScope(const TScope&) = delete;
    TScope& operator=(const TScope&) = delete;
    ~TScope() {
      TScope** link = &Innermost();
      while (*link != this) link = &(*link)->outer_;
      *link = outer_;
    }

   private:
    friend class TInForce;
    V value_;
    TScope* outer_;
  };

  /// That of the innermost scope; outside of all scopes, what was last put here. A new scope or its end makes the
  /// reference stale. Writing to it replaces what is in force until that scope ends.
  static V& Current() { return Innermost() != nullptr ? Innermost()->value_ : Base(); }

 private:
  static TScope*& Innermost() {
    static TScope* scope = nullptr;
    return scope;
  }
  static V& Base() {
    static V value{};
    return value;
  }
};

}  // namespace vx
