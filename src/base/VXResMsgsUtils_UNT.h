// VXResMsgsUtils_UNT.h: messages by number, and the formatter that fills them.
//
// A specifier is  % [index :] [l] letter,  letters in either case. It takes the argument at `index`, else the one after
// the last taken. What isn't a specifier stays as text: "%%", "100 %", "%0s". What comes from an argument is never
// looked at again.
//
//   FmtStr("%1:s before %0:s", {"a", "b"});                  // b before a
//   FmtStr("%u, %lu", {5400, 5400}, vxduMin, 1);             // 90.0 min, 1 h 30 min
//   FmtStr("%s has %d rows%p", {"Orders", 7});               // Orders has 7 rows7
//   FmtMsg(14666, {"5 q"});                                  // Invalid duration unit: 5 q.
//   FmtStr("%d and %d", {"text", 1.5});                      // text and <Parameter 1 is not of the correct type>
//
// letter   takes      prints
//   a      date       as SysDateToStr
//   d      integer    its digits
//   f      double     two decimals, "%lf" four
//   m      double     the locale's money format
//   p      nothing    once more the text of the specifier before it; it counts as a position nevertheless
//   s      text
//   t      date       as TimeToStr
//   u      integer    a number of seconds as DurationToStr, "%lu" as DurationToExpandedStr
//
// A text is an argument for every letter and is taken as it is. An integer is any kind of integer that a Variant holds,
// since which one it is follows from the C++ type that somebody wrote; a Boolean is none.
//
// Errors. None is raised: what is wrong stands in the result, in the texts 14677 (no such argument), 14679 (an argument
// of another kind) and 14678 (an argument that can't be converted: "%lu" beyond 32 bits), with the position. A position
// beyond 32 bits counts as 2147483647, and no position comes after that one.
//
// Cost. Linear in format and result. Main thread only: texts and formats are those of the locale.
#pragma once

#include <cstdint>
#include <initializer_list>
#include <span>
#include <string>
#include <string_view>

#include "datetime/VXDateFunc_UNT.h"
#include "platform/runtime/Variant.h"

namespace vx {
namespace VXResMsgsUtils_UNT {

/// The text of a number. Never empty: of an unknown one, a text that tells so and ends in the number in brackets.
std::string GetResMsg(std::int32_t id);

// -- Formatting -------------------------------------------------------------------------------------------------------
// `unit` and `decimals` are for durations.

std::string FmtStr(std::string_view format, std::span<const Variant> args, TVXDurUnit unit = vxduAuto,
                   std::int32_t decimals = 0);
std::string FmtStr(std::string_view format, std::initializer_list<Variant> args, TVXDurUnit unit = vxduAuto,
                   std::int32_t decimals = 0);
/// The elements of an array; any other Variant is the only argument.
std::string FmtStr(std::string_view format, const Variant& args, TVXDurUnit unit = vxduAuto, std::int32_t decimals = 0);

/// FmtStr with the text of a number as the format.
std::string FmtMsg(std::int32_t id, std::span<const Variant> args, TVXDurUnit unit = vxduAuto,
                   std::int32_t decimals = 0);
std::string FmtMsg(std::int32_t id, std::initializer_list<Variant> args, TVXDurUnit unit = vxduAuto,
                   std::int32_t decimals = 0);
std::string FmtMsg(std::int32_t id, const Variant& args, TVXDurUnit unit = vxduAuto, std::int32_t decimals = 0);

/// Takes the specifier with which `source` begins: `source` then begins behind it, `spec` is its text, `type` its
/// letter in small. `index` is written only if the specifier has one. False, and nothing touched, if `source` doesn't
/// begin with a specifier.
bool ExtractFormatString(std::string_view& source, std::int32_t& index, bool& longFlag, std::string_view& spec,
                         char& type);

}  // namespace VXResMsgsUtils_UNT

using VXResMsgsUtils_UNT::ExtractFormatString;
using VXResMsgsUtils_UNT::FmtMsg;
using VXResMsgsUtils_UNT::FmtStr;
using VXResMsgsUtils_UNT::GetResMsg;

}  // namespace vx
