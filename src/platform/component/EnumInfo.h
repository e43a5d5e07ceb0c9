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
