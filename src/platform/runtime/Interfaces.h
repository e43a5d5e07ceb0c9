// Interfaces.h: counted interfaces.
//
// An interface is an abstract class that derives *virtually* from IUnknown and names itself by a GUID, `kIID`. Who
// holds one asks for others by QueryInterface and keeps the object alive by a count; the object goes when the count
// comes to 0. Operations of interfaces answer result codes and never raise.
//
//   struct IShape : virtual IUnknown {
//     static constexpr TGUID kIID = TGUID::Of("{7B1C9F52-0C1E-4B57-9A53-2D6C0A5D9E11}");
//     virtual std::int32_t Sides() = 0;
//   };
//   class TSquare : public TImplements<IShape> { public: std::int32_t Sides() override { return 4; } };
//
//   TInterfaceRef<IShape> shape = MakeCounted<TSquare>();   // count 1
//   TInterfaceRef<INamed> named = shape.Query<INamed>();    // null: a square has no name
//
// Identity. Two references name the same object when their IUnknown from QueryInterface are the same pointer.
// Cycles. Two objects that hold each other by TInterfaceRef live for ever; the one that is a part keeps a plain
// pointer back.
// Threads. The count is atomic; nothing else is.
#pragma once

#include <array>
#include <atomic>
#include <concepts>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>

#include "platform/runtime/Object.h"

namespace vx {

// -- Result codes -----------------------------------------------------------------------------------------------------

/// Negative is failure.
using HRESULT = std::int32_t;

/// The code of a result that is written in hexadecimal digits.
constexpr HRESULT ResultCode(std::uint32_t digits) { return static_cast<HRESULT>(digits); }

inline constexpr HRESULT S_OK = 0;
inline constexpr HRESULT S_FALSE = 1;
inline constexpr HRESULT E_NOTIMPL = ResultCode(0x80004001);
inline constexpr HRESULT E_NOINTERFACE = ResultCode(0x80004002);
inline constexpr HRESULT E_POINTER = ResultCode(0x80004003);
inline constexpr HRESULT E_FAIL = ResultCode(0x80004005);
inline constexpr HRESULT E_UNEXPECTED = ResultCode(0x8000FFFF);
inline constexpr HRESULT E_OUTOFMEMORY = ResultCode(0x8007000E);
inline constexpr HRESULT E_INVALIDARG = ResultCode(0x80070057);

constexpr bool Succeeded(HRESULT result) { return result >= 0; }
constexpr bool Failed(HRESULT result) { return result < 0; }

// -- TGUID ------------------------------------------------------------------------------------------------------------

/// Sixteen bytes in the order in which they are printed; the order of two is that of their texts.
struct TGUID {
  std::array<std::uint8_t, 16> Bytes{};

  constexpr auto operator<=>(const TGUID&) const = default;

  /// Reads "{XXXXXXXX-XXXX-XXXX-XXXX-XXXXXXXXXXXX}", digits of either case. Answers false, and leaves `guid`, for any
  /// other text.
  static constexpr bool TryParse(std::string_view text, TGUID& guid);
  /// The same for literals: a wrong one doesn't compile.
  static consteval TGUID Of(std::string_view text);
};

/// "{00000000-0000-0000-0000-000000000000}", digits in capitals.
std::string GUIDToString(const TGUID& guid);
/// Raises EConvertError that names the text.
TGUID StringToGUID(std::string_view text);

// -- IUnknown ---------------------------------------------------------------------------------------------------------

class IUnknown {
 public:
  static constexpr TGUID kIID{{0, 0, 0, 0, 0, 0, 0, 0, 0xC0, 0, 0, 0, 0, 0, 0, 0x46}};

  /// Puts the interface named `iid` into `*object` and counts it: S_OK. Else puts null: E_NOINTERFACE. E_POINTER if
  /// `object` is null. What comes back is a pointer to exactly the interface asked for.
  virtual HRESULT QueryInterface(const TGUID& iid, void** object) noexcept = 0;
  /// Answer the new count.
  virtual std::int32_t _AddRef() noexcept = 0;
  virtual std::int32_t _Release() noexcept = 0;

 protected:
  ~IUnknown() = default;  // objects go by _Release, never by an interface pointer
};

// -- TInterfaceRef ----------------------------------------------------------------------------------------------------

/// Holds one count of an object. Null by default. `->` and `*` on null raise ENilAccess.
template <class I>
class TInterfaceRef {
 public:
  TInterfaceRef() = default;
  TInterfaceRef(std::nullptr_t) {}  // NOLINT: null is written as null
  /// Adds a count of its own.
  TInterfaceRef(I* object) : object_(object) { AddRef(); }  // NOLINT
  TInterfaceRef(const TInterfaceRef& other) : TInterfaceRef(other.object_) {}
  TInterfaceRef(TInterfaceRef&& other) noexcept : object_(std::exchange(other.object_, nullptr)) {}
  template <class Derived>
  requires std::convertible_to<Derived*, I*> TInterfaceRef(const TInterfaceRef<Derived>& other)
      : TInterfaceRef(other.Get()) {}  // NOLINT
  ~TInterfaceRef() { Reset(); }

  TInterfaceRef& operator=(TInterfaceRef other) noexcept {
    std::swap(object_, other.object_);
    return *this;
  }

  /// A pointer that already carries a count for us, as QueryInterface gives it.
  static TInterfaceRef Adopt(I* counted) {
    TInterfaceRef answer;
    answer.object_ = counted;
    return answer;
  }

  I* Get() const { return object_; }
  I& operator*() const { return Need(object_, "interface"); }
  I* operator->() const { return &Need(object_, "interface"); }
  explicit operator bool() const { return object_ != nullptr; }

  /// Another interface of the same object; null if it has none, or if this is null.
  template <class Other>
  TInterfaceRef<Other> Query() const {
    void* found = nullptr;
    if (object_ == nullptr || Failed(object_->QueryInterface(Other::kIID, &found))) return nullptr;
    return TInterfaceRef<Other>::Adopt(static_cast<Other*>(found));
  }

  /// The reference is null before the object hears of it, so that a dying object may reach this slot again.
  void Reset() {
    if (I* const old = std::exchange(object_, nullptr)) old->_Release();
  }
  /// Gives the pointer and its count away.
  I* Detach() { return std::exchange(object_, nullptr); }

  /// The same pointer; for the same object see SameObject.
  bool operator==(const TInterfaceRef& other) const { return object_ == other.object_; }
  bool operator==(std::nullptr_t) const { return object_ == nullptr; }

 private:
  void AddRef() {
    if (object_ != nullptr) object_->_AddRef();
  }

  I* object_ = nullptr;
};

/// Both null, or both parts of one object.
bool SameObject(const TInterfaceRef<IUnknown>& a, const TInterfaceRef<IUnknown>& b);

// -- TInterfacedObject ------------------------------------------------------------------------------------------------

/// Base of objects that live by their count. A fresh one has count 0; MakeCounted gives the first reference. When the
/// count comes back to 0 the object is freed, and one that refuses is taken down all the same. References that are
/// taken and given back while it goes don't free it a second time.
///
/// Objects of this base are made by MakeCounted alone: a TOwned would free them a second time. A release too many, and
/// Free() on an object that is still referred to, are mistakes of the caller, at which a debug build stops.
class TInterfacedObject : public TObject, public virtual IUnknown {
 public:
  static const TClass& StaticClass();
  const TClass& ClassType() const override { return StaticClass(); }

  HRESULT QueryInterface(const TGUID& iid, void** object) noexcept override;
  std::int32_t _AddRef() noexcept override;
  std::int32_t _Release() noexcept override;
  std::int32_t RefCount() const { return refCount_.load(); }

  /// The interface named `iid`, not counted; null if there is none. An overrider that doesn't know `iid` asks its base.
  virtual void* FindInterface(const TGUID& iid) noexcept;

 protected:
  void ReleaseMemory() override;

 private:
  std::atomic<std::int32_t> refCount_{0};
};

/// An interfaced object with the interfaces listed. Interfaces that one of them derives from are listed too where they
/// shall be found.
template <class... Interfaces>
class TImplements : public TInterfacedObject, public Interfaces... {
 public:
  void* FindInterface(const TGUID& iid) noexcept override {
    void* found = nullptr;
    static_cast<void>(((iid == Interfaces::kIID && (found = static_cast<Interfaces*>(this)) != nullptr) || ...));
    return found != nullptr ? found : TInterfacedObject::FindInterface(iid);
  }
};

/// Makes a counted object. AfterConstruction already runs with the first reference, so that handing itself out there is
/// safe.
template <class T, class... Args>
TInterfaceRef<T> MakeCounted(Args&&... args) {
  TInterfaceRef<T> object(new T(std::forward<Args>(args)...));
  object->AfterConstruction();
  return object;
}

// -- TGUID, the parts that compile into literals ----------------------------------------------------------------------

namespace guid_internal {

constexpr int HexDigit(char letter) {
  if (letter >= '0' && letter <= '9') return letter - '0';
  if (letter >= 'A' && letter <= 'F') return letter - 'A' + 10;
  if (letter >= 'a' && letter <= 'f') return letter - 'a' + 10;
  return -1;
}

inline constexpr std::string_view kPattern = "{XXXXXXXX-XXXX-XXXX-XXXX-XXXXXXXXXXXX}";

}  // namespace guid_internal

constexpr bool TGUID::TryParse(std::string_view text, TGUID& guid) {
  if (text.size() != guid_internal::kPattern.size()) return false;
  TGUID read;
  std::size_t digits = 0;
  for (std::size_t at = 0; at < text.size(); ++at) {
    const char wanted = guid_internal::kPattern[at];
    if (wanted != 'X' && text[at] != wanted) return false;
    if (wanted != 'X') continue;
    const int digit = guid_internal::HexDigit(text[at]);
    if (digit < 0) return false;
    std::uint8_t& byte = read.Bytes[digits++ / 2];
    byte = static_cast<std::uint8_t>(byte << 4 | digit);
  }
  guid = read;
  return true;
}

consteval TGUID TGUID::Of(std::string_view text) {
  TGUID guid;
  if (!TryParse(text, guid)) throw std::invalid_argument("not a GUID");
  return guid;
}

}  // namespace vx

template <>
struct std::hash<vx::TGUID> {
  std::size_t operator()(const vx::TGUID& guid) const noexcept {
    std::uint64_t mixed = 0xCBF29CE484222325u;
    for (const std::uint8_t byte : guid.Bytes) mixed = (mixed ^ byte) * 0x100000001B3u;
    return static_cast<std::size_t>(mixed);
  }
};
