// EnumInfo.h: the names of an enumeration's members, registered once, so that texts go both ways.
//
//   template <>
//   struct TEnumInfo<TVXRAMFieldType> {
//     static constexpr std::string_view kTypeName = "TVXRAMFieldType";
//     static constexpr std::string_view kPrefix = "vxrft";                     // may be left out
//     static constexpr std::string_view kNames[] = {"vxrftBoolean", "vxrftCurrency", …};   // from ordinal 0 upwards
//   };
//
//   EnumText(vxrftString);                          // "vxrftString"
//   EnumShortText(vxrftString);                     // "String"
//   TextToEnum<TVXRAMFieldType>("VXRFTstring");     // vxrftString; empty for an unknown text
//
// Names are written exactly as registered and read without regard to the case of ASCII letters.
//
// An enumeration that is rather a number, of which some values have a name (a colour), registers how to find these; it
// is published as an integer, which streams write by name where it has one:
//
//   template <>
//   struct TEnumInfo<TColor> {
//     static constexpr std::string_view kTypeName = "TColor";
//     static std::string NameOf(TColor color);                          // empty if it has none
//     static std::optional<TColor> ValueOf(std::string_view name);      // empty for an unknown name
//   };
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "platform/component/EnumSet.h"

namespace vx {

template <class E>
struct TEnumInfo;  // specialised next to each enumeration

template <class E>
concept CNamedEnum = requires {
  TEnumInfo<E>::kTypeName;
  TEnumInfo<E>::kNames;
};

template <class E>
concept CNumberEnum = !CNamedEnum<E> && requires(E value) {
  TEnumInfo<E>::kTypeName;
  TEnumInfo<E>::NameOf(value);
  TEnumInfo<E>::ValueOf(std::string_view());
};

template <>
struct TEnumInfo<bool> {
  static constexpr std::string_view kTypeName = "Boolean";
  static constexpr std::string_view kNames[] = {"False", "True"};
};

/// A registered enumeration without its type, for tables. The ordinal of a member is its place in Names.
struct TEnumTable {
  std::string_view TypeName;
  std::string_view Prefix;
  std::span<const std::string_view> Names;
};

template <CNamedEnum E>
const TEnumTable& EnumTableOf() {
  static constexpr std::string_view kPrefix = [] {
    if constexpr (requires { TEnumInfo<E>::kPrefix; })
      return std::string_view(TEnumInfo<E>::kPrefix);
    else
      return std::string_view();
  }();
  static const TEnumTable table{TEnumInfo<E>::kTypeName, kPrefix, TEnumInfo<E>::kNames};
  return table;
}

/// The same of an enumeration that is rather a number.
struct TNumberNames {
  std::string (*NameOf)(std::int64_t value);                      ///< empty if it has none
  std::optional<std::int64_t> (*ValueOf)(std::string_view name);  ///< empty for an unknown name
};

template <CNumberEnum E>
const TNumberNames& NumberNamesOf() {
  static constexpr TNumberNames names{[](std::int64_t value) { return TEnumInfo<E>::NameOf(static_cast<E>(value)); },
                                      [](std::string_view name) -> std::optional<std::int64_t> {
                                        if (const std::optional<E> value = TEnumInfo<E>::ValueOf(name))
                                          return static_cast<std::int64_t>(*value);
                                        return std::nullopt;
                                      }};
  return names;
}

/// The member's name; the number in decimal for an ordinal without one.
std::string GetEnumName(const TEnumTable& table, std::int64_t ordinal);
/// The ordinal of the member; -1 if there is none of that name.
std::int32_t GetEnumValue(const TEnumTable& table, std::string_view text);
/// "[a,b]", in the order of the ordinals.
std::string SetToText(const TEnumTable& table, std::uint64_t bits);
/// Reads what SetToText writes; brackets may be missing, blanks are passed over. Empty if a name is unknown.
std::optional<std::uint64_t> TextToSet(const TEnumTable& table, std::string_view text);

template <CNamedEnum E>
std::string EnumText(E value) {
  return GetEnumName(EnumTableOf<E>(), static_cast<std::int64_t>(value));
}
/// The name without the prefix that all members share.
template <CNamedEnum E>
std::string EnumShortText(E value) {
  const std::string name = EnumText(value);
  const std::string_view prefix = EnumTableOf<E>().Prefix;
  return name.starts_with(prefix) ? name.substr(prefix.size()) : name;
}
template <CNamedEnum E>
std::optional<E> TextToEnum(std::string_view text) {
  const std::int32_t ordinal = GetEnumValue(EnumTableOf<E>(), text);
  if (ordinal < 0) return std::nullopt;
  return static_cast<E>(ordinal);
}

}  // namespace vx
