// Variant.h: a value that carries its kind.
//
// A Variant is copied like any value. Texts are copied, arrays are immutable and shared, an interface is held by a
// count. Fresh it is unassigned, which isn't Null: Null is "known to have no value", as in a field of a row.
//
//   Variant value = 12;                        // vkInteger
//   value = "12";                              // vkString
//   value == 12.0                              // true: the text is converted
//   VarCompare(Variant::Date(45351), 45352)    // vrLess: a date is a number
//   Variant("twelve") == 12                    // raises EVariantError, which quotes the text
//
// VarCompare, kind by kind. "number" is any integer, a double or a date; the table is symmetric.
//
//              unassigned   Null   Boolean      number        text            array      interface
//   unassigned equal        ne     as False     as 0          as empty text   ne         ne
//   Null                    equal  ne           ne            ne              ne         ne
//   Boolean                        -1 or 0      -1 or 0       "True","False"  error      error
//   number                                      by value      text to number  error      error
//   text                                                      bytes           error      error
//   array                                                                     members    error
//   interface                                                                            identity
//
//   ne        vrNotEqual: different, and neither is less.
//   error     EVariantError, which names both kinds.
//   by value  exactly: no 64-bit integer is rounded to meet a double. NaN equals NaN and follows all others.
//   -1 or 0   True counts as -1 and False as 0, so True comes before False.
//   "True"    the Boolean becomes that text, and the texts are compared by bytes: "true" isn't True.
//   text to number   by the locale's DecimalSeparator, blanks around skipped; any other, the empty one too, is an error
//   members   by the first pair that differs, then by length.
//   identity  the same object or not; two null interfaces are equal.
//
// Within the numbers and Booleans, and within the texts, VarCompare is a strict weak order; across kinds it isn't, and
// a sort of mixed values has to choose one kind first.
//
// Errors. EVariantError, with kinds and text. Cost. 64 bytes; numbers and Booleans never allocate.
#pragma once

#include <bit>
#include <concepts>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>
#include <vector>

#include "platform/runtime/DateTime.h"
#include "platform/runtime/Exceptions.h"
#include "platform/runtime/Interfaces.h"

namespace vx {

enum TVariantKind : std::uint8_t {
  vkUnassigned,  ///< never given a value
  vkNull,        ///< known to have none
  vkBoolean,
  vkByte,      ///< unsigned, 8 bits
  vkSmallint,  ///< signed, 16 bits
  vkWord,      ///< unsigned, 16 bits
  vkInteger,   ///< signed, 32 bits
  vkInt64,     ///< signed, 64 bits
  vkDouble,
  vkDate,       ///< a TDateTime
  vkString,     ///< UTF-8
  vkArray,      ///< of Variants, from index 0
  vkInterface,  ///< an IUnknown, perhaps null
};

/// "Unassigned", "Null", "Boolean", …; the words of the messages.
const char* VariantKindName(TVariantKind kind);

enum TVariantRelation : std::uint8_t { vrLess, vrEqual, vrGreater, vrNotEqual };

/// The integers that a Variant holds: all of C++ but those beyond 64 signed bits, and characters.
template <class T>
concept TVariantInteger = std::is_integral_v<T> && !std::is_same_v<T, bool> && !std::is_same_v<T, char> &&
                          !std::is_same_v<T, wchar_t> && !std::is_same_v<T, char8_t> && !std::is_same_v<T, char16_t> &&
                          !std::is_same_v<T, char32_t> && (std::is_signed_v<T> || sizeof(T) < 8);

class Variant {
 public:
  /// Arrays nest at most so deep, and count at most so many elements, those of nested arrays included.
  static constexpr std::int32_t kMaxArrayDepth = 64;
  static constexpr std::uint64_t kMaxArrayElements = 1u << 24;

  // -- Making ---------------------------------------------------------------------------------------------------------
  Variant() = default;
  Variant(const Variant&) = default;
  Variant& operator=(const Variant&) = default;
  /// Leaves the other unassigned.
  Variant(Variant&& other) noexcept
      : kind_(std::exchange(other.kind_, vkUnassigned)),
        bits_(other.bits_),
        text_(std::move(other.text_)),
        box_(std::move(other.box_)) {}
  Variant& operator=(Variant&& other) noexcept {
    if (this == &other) return *this;
    kind_ = std::exchange(other.kind_, vkUnassigned);
    bits_ = other.bits_;
    text_ = std::move(other.text_);
    box_ = std::move(other.box_);
    return *this;
  }
  ~Variant() = default;
  template <class T>
  requires std::is_same_v<T, bool> Variant(T value)
      : kind_(vkBoolean), bits_(value) {}  // NOLINT: values turn into Variants by themselves
  /// The kind follows from the type: the smallest that holds all its values, unsigned 32 bits being vkInt64.
  template <TVariantInteger T>
  Variant(T value) : kind_(KindOfInteger<T>()), bits_(static_cast<std::int64_t>(value)) {}  // NOLINT
  Variant(double value) : kind_(vkDouble), bits_(std::bit_cast<std::int64_t>(value)) {}     // NOLINT
  Variant(std::string text) : kind_(vkString), text_(std::move(text)) {}                    // NOLINT
  Variant(std::string_view text) : Variant(std::string(text)) {}                            // NOLINT
  Variant(const char* text) : Variant(std::string(text == nullptr ? "" : text)) {}          // NOLINT
  template <std::derived_from<IUnknown> I>
  Variant(const TInterfaceRef<I>& object) : Variant(OfInterface(object)) {}  // NOLINT
  /// Unsigned 64 bits, characters and enumerations would lose their meaning on the way: say which integer is meant.
  template <class T>
  requires((std::is_integral_v<T> && !std::is_same_v<T, bool> && !TVariantInteger<T>) || std::is_enum_v<T>)
      Variant(T value)
  = delete;
  static Variant Null();
  static Variant Date(TDateTime date);
  /// Raises EVariantError beyond the limits on depth and number.
  static Variant Array(std::vector<Variant> elements);

  // -- Asking ---------------------------------------------------------------------------------------------------------
  TVariantKind Kind() const { return kind_; }
  bool IsNull() const { return kind_ == vkNull; }
  /// Unassigned; an empty text isn't.
  bool IsEmpty() const { return kind_ == vkUnassigned; }
  bool IsInteger() const { return kind_ >= vkByte && kind_ <= vkInt64; }
  /// An integer, a double or a date.
  bool IsNumber() const { return kind_ >= vkByte && kind_ <= vkDate; }

  // -- Converting; what can't be converted raises EVariantError -------------------------------------------------------
  // Unassigned gives 0, false or the empty text; Null, an array and an interface raise (but see each).

  /// A fraction is rounded, a half to the even number; True is -1. Out of range raises.
  std::int32_t AsInteger() const;
  std::int64_t AsInt64() const;
  double AsDouble() const;
  /// As AsDouble; a text may also be a date, or a date and a time, as the locale writes it.
  TDateTime AsDate() const;
  /// A number is true if it isn't 0, a text if it is "True" or a number that isn't 0; letter case is ignored.
  bool AsBoolean() const;
  /// Numbers by FloatToStr, dates by DateTimeToStr, "True" and "False".
  std::string AsString() const;
  /// The text itself, uncopied. Raises unless the kind is vkString.
  const std::string& Text() const;
  /// The elements. Raises unless the kind is vkArray.
  const std::vector<Variant>& Elements() const;
  /// Null for unassigned and a null interface; raises for every other kind.
  TInterfaceRef<IUnknown> AsInterface() const;

 private:
  /// An array or an interface. Immutable once made, so that no array can hold itself.
  struct TBox {
    std::vector<Variant> Elements;
    std::int32_t Depth = 0;    ///< 1 for an array without arrays in it
    std::uint64_t Number = 0;  ///< of elements, nested ones counted as often as they occur
    TInterfaceRef<IUnknown> Object;
  };

  static Variant OfInterface(TInterfaceRef<IUnknown> object);

  template <class T>
  static constexpr TVariantKind KindOfInteger() {
    if constexpr (sizeof(T) == 1) return std::is_signed_v<T> ? vkSmallint : vkByte;
    if constexpr (sizeof(T) == 2) return std::is_signed_v<T> ? vkSmallint : vkWord;
    return sizeof(T) == 4 && std::is_signed_v<T> ? vkInteger : vkInt64;
  }

  [[noreturn]] void RaiseCannotConvert(const char* wanted) const;
  std::int64_t Int() const { return bits_; }
  double Real() const { return std::bit_cast<double>(bits_); }
  std::int64_t ToInt64(const char* wanted) const;
  double ToDouble(const char* wanted) const;

  friend class TVariantComparer;

  TVariantKind kind_ = vkUnassigned;
  std::int64_t bits_ = 0;  ///< an integer or Boolean, or the bits of a double
  std::string text_;
  std::shared_ptr<const TBox> box_;
};

/// By the table above. May raise EVariantError.
TVariantRelation VarCompare(const Variant& a, const Variant& b);
inline bool operator==(const Variant& a, const Variant& b) { return VarCompare(a, b) == vrEqual; }

inline bool VarIsNull(const Variant& value) { return value.IsNull(); }
inline bool VarIsEmpty(const Variant& value) { return value.IsEmpty(); }
/// "True" or "False".
const char* BoolToStr(bool value);

}  // namespace vx
