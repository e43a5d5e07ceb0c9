#include "base/VXStack.h"

namespace vx {

const TClass& TVXStack::StaticClass() {
  static const TClass info("TVXStack", &TObject::StaticClass());
  return info;
}

TVXStack::TVXStack() : list_(Make<TList>()) {}

void TVXStack::Push(void* item) {
  list_->Add(item);
  holdsNull_ |= item == nullptr;
}

void* TVXStack::Pop(std::int32_t index) {
  if (Count() == 0) return nullptr;
  void* const item = list_->Items(index);
  list_->Delete(index);
  if (holdsNull_) list_->Pack();
  holdsNull_ = false;
  return item;
}

}  // namespace vx
