#include "platform/runtime/Object.h"

#include <cassert>

namespace vx {

const TClass& TObject::StaticClass() {
  static const TClass info("TObject", nullptr);
  return info;
}

void TObject::Free() {
  if (beingFreed_) return;
  beingFreed_ = true;
  try {
    BeforeDestruction();
  } catch (...) {
    beingFreed_ = false;
    throw;
  }
  TearDown();
  ReleaseMemory();
}

void TObject::FreeAnyway() noexcept {
  if (beingFreed_) return;
  beingFreed_ = true;
  try {
    BeforeDestruction();
  } catch (...) {
    // The object would rather stay, but its owner goes: TearDown alone leads to a safe end.
  }
  TearDown();
  ReleaseMemory();
}

const TClass& TPersistent::StaticClass() {
  static const TClass info("TPersistent", &TObject::StaticClass());
  return info;
}

namespace {

[[noreturn]] void RaiseCannotAssign(const std::string& source, const TPersistent& dest) {
  throw EConvertError("Cannot assign a " + source + " to a " + dest.ClassName());
}

}  // namespace

void TPersistent::Assign(const TPersistent* source) {
  if (source == nullptr) RaiseCannotAssign("nil", *this);
  source->AssignTo(this);
}

void TPersistent::AssignTo(TPersistent* dest) const { RaiseCannotAssign(ClassName(), *dest); }

std::string TPersistent::GetNamePath() const {
  const TPersistent* const owner = GetOwner();
  const std::string path = owner == nullptr ? std::string() : owner->GetNamePath();
  return path.empty() ? ClassName() : path + "." + ClassName();
}

void RaiseInvalidCast(const TObject& object, const std::string& wanted) {
  throw EInvalidCast("Invalid class typecast: a " + object.ClassName() + " is no " + wanted);
}

}  // namespace vx
