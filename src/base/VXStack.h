// VXStack.h: a stack and queue of pointers that owns nothing.
//
//   const auto stack = Make<TVXStack>();
//   stack->Push(a);
//   stack->Push(b);
//   stack->PopFirst();      // a
//   stack->PopLast();       // b
//   stack->PopLast();       // null: nothing is left
//
// Kept: a null that is pushed counts until the next pop, which drops all nulls of the stack beside its own entry.
//
// Cost. Push and PopLast are O(1); PopFirst is TList's Delete at the front; a pop after a null was pushed walks all.
#pragma once

#include <cstdint>

#include "platform/runtime/List.h"
#include "platform/runtime/Object.h"

namespace vx {

class TVXStack : public TObject {
 public:
  static const TClass& StaticClass();
  const TClass& ClassType() const override { return StaticClass(); }

  TVXStack();

  std::int32_t Count() const { return list_->Count(); }
  void Push(void* item);
  /// The entry pushed last, or null.
  void* PopLast() { return Pop(Count() - 1); }
  /// The entry pushed first, or null.
  void* PopFirst() { return Pop(0); }

 private:
  void* Pop(std::int32_t index);

  TOwned<TList> list_;
  bool holdsNull_ = false;
};

}  // namespace vx
