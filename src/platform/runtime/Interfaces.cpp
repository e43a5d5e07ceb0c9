#include "platform/runtime/Interfaces.h"

#include <cassert>

namespace vx {

std::string GUIDToString(const TGUID& guid) {
  constexpr char kDigits[] = "0123456789ABCDEF";
  std::string text(guid_internal::kPattern);
  std::size_t digits = 0;
  for (char& letter : text) {
    if (letter != 'X') continue;
    const std::uint8_t byte = guid.Bytes[digits / 2];
    letter = kDigits[digits % 2 == 0 ? byte >> 4 : byte & 0x0F];
    ++digits;
  }
  return text;
}

TGUID StringToGUID(std::string_view text) {
  TGUID guid;
  if (!TGUID::TryParse(text, guid)) throw EConvertError("'" + std::string(text) + "' is not a valid GUID");
  return guid;
}

bool SameObject(const TInterfaceRef<IUnknown>& a, const TInterfaceRef<IUnknown>& b) {
  return a == b || (a && b && a.Query<IUnknown>() == b.Query<IUnknown>());
}

const TClass& TInterfacedObject::StaticClass() {
  static const TClass info("TInterfacedObject", &TObject::StaticClass());
  return info;
}

HRESULT TInterfacedObject::QueryInterface(const TGUID& iid, void** object) noexcept {
  if (object == nullptr) return E_POINTER;
  *object = FindInterface(iid);
  if (*object == nullptr) return E_NOINTERFACE;
  _AddRef();
  return S_OK;
}

std::int32_t TInterfacedObject::_AddRef() noexcept { return ++refCount_; }

std::int32_t TInterfacedObject::_Release() noexcept {
  const std::int32_t left = --refCount_;
  assert(left >= 0 && "one release too many");
  if (left == 0) FreeAnyway();
  return left;
}

void* TInterfacedObject::FindInterface(const TGUID& iid) noexcept {
  return iid == IUnknown::kIID ? static_cast<IUnknown*>(this) : nullptr;
}

void TInterfacedObject::ReleaseMemory() {
  assert(refCount_ == 0 && "freed while referred to");
  TObject::ReleaseMemory();
}

}  // namespace vx
