// VXCodeSite_UNT.h: trace calls, which do nothing.
//
// They stand at the entry and exit points of the units and say what would be worth seeing in a trace. Each takes what
// its name says, stores nothing, returns nothing, and compiles to nothing; null pointers and empty texts are as good as
// any. A build that wants a trace puts bodies in here.
//
//   CSEnterMethod(this, "Rebuild");
//   CSSendInteger("rows", count);
//   CSExitMethod(this, "Rebuild");
//
// A call costs what its arguments cost: give it a text that is there, not one that is made for it. The forms with the
// ending Ex say which kind of message it is in front, a number of the trace's own. Formats are those of Format.h. Any
// thread, at any time.
#pragma once

#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <string>
#include <string_view>
#include <type_traits>

#include "platform/canvas/Color.h"
#include "platform/canvas/Geometry.h"
#include "platform/runtime/DateTime.h"
#include "platform/runtime/Format.h"

namespace vx {

class TComponent;
class TObject;
class TStrings;

/// Any text, a null one too; it isn't looked at.
struct TTraceText {
  constexpr TTraceText(std::nullptr_t) {}    // NOLINT: texts are written as they are
  constexpr TTraceText(const char*) {}       // NOLINT
  constexpr TTraceText(std::string_view) {}  // NOLINT
  TTraceText(const std::string&) {}          // NOLINT
};

/// The arguments of a format.
using TTraceArgs = std::initializer_list<TFormatArg>;
/// The kind of a message, for the forms with the ending Ex.
using TTraceKind = std::int32_t;

namespace VXCodeSite_UNT {

// -- Messages ---------------------------------------------------------------------------------------------------------

inline void CSSendMsg(TTraceText) {}
inline void CSSendMsgEx(TTraceKind, TTraceText) {}
inline void CSSendFmtMsg(TTraceText, TTraceArgs) {}
inline void CSSendFmtMsgEx(TTraceKind, TTraceText, TTraceArgs) {}
inline void CSSendNote(TTraceText) {}
inline void CSSendFmtNote(TTraceText, TTraceArgs) {}
inline void CSSendError(TTraceText) {}
inline void CSSendFmtError(TTraceText, TTraceArgs) {}
inline void CSSendWarning(TTraceText) {}
inline void CSSendFmtWarning(TTraceText, TTraceArgs) {}

// -- Values: a text that names the value, then the value --------------------------------------------------------------

inline void CSSendAssigned(TTraceText, const void*) {}
inline void CSSendAssignedEx(TTraceKind, TTraceText, const void*) {}
inline void CSSendBoolean(TTraceText, bool) {}
inline void CSSendBooleanEx(TTraceKind, TTraceText, bool) {}
inline void CSSendColor(TTraceText, TColor) {}
inline void CSSendColorEx(TTraceKind, TTraceText, TColor) {}
inline void CSSendCurrency(TTraceText, double) {}
inline void CSSendCurrencyEx(TTraceKind, TTraceText, double) {}
inline void CSSendDateTime(TTraceText, TDateTime) {}
inline void CSSendDateTimeEx(TTraceKind, TTraceText, TDateTime) {}
inline void CSSendDWord(TTraceText, std::uint32_t) {}
inline void CSSendDWordEx(TTraceKind, TTraceText, std::uint32_t) {}
inline void CSSendNumAsHex(TTraceText, std::int64_t) {}
inline void CSSendNumAsHexEx(TTraceKind, TTraceText, std::int64_t) {}
template <class E>
requires std::is_enum_v<E>
inline void CSSendEnum(TTraceText, E) {}
template <class E>
requires std::is_enum_v<E>
inline void CSSendEnumEx(TTraceKind, TTraceText, E) {}
inline void CSSendFloat(TTraceText, double) {}
inline void CSSendFloatEx(TTraceKind, TTraceText, double) {}
inline void CSSendInteger(TTraceText, std::int64_t) {}
inline void CSSendIntegerEx(TTraceKind, TTraceText, std::int64_t) {}
inline void CSSendPoint(TTraceText, TPoint) {}
inline void CSSendPointEx(TTraceKind, TTraceText, TPoint) {}
inline void CSSendRect(TTraceText, const TRect&) {}
inline void CSSendRectEx(TTraceKind, TTraceText, const TRect&) {}
inline void CSSendString(TTraceText, TTraceText) {}
inline void CSSendStringEx(TTraceKind, TTraceText, TTraceText) {}

// -- Objects: a text, then the object ---------------------------------------------------------------------------------

/// The published property `name` of an object.
inline void CSSendProperty(TTraceText, const TObject*, TTraceText /*name*/) {}
inline void CSSendObject(TTraceText, const TObject*) {}
/// A stream of any kind.
inline void CSSendStream(TTraceText, const void*) {}
inline void CSSendStringList(TTraceText, const TStrings*) {}
inline void CSSendComponentState(TTraceText, const TComponent*) {}

// -- The trace itself -------------------------------------------------------------------------------------------------

inline void CSAddCheckPoint() {}
inline void CSAddSeparator() {}
inline void CSClear() {}
/// A text in a line of the scratch pad, in place of what stood there.
inline void CSScratchPad(std::int32_t /*line*/, TTraceText) {}
inline void CSFmtScratchPad(std::int32_t /*line*/, TTraceText, TTraceArgs) {}
inline void CSEnterMethod(TTraceText /*method*/) {}
inline void CSEnterMethod(const TObject*, TTraceText /*method*/) {}
inline void CSExitMethod(TTraceText /*method*/) {}
inline void CSExitMethod(const TObject*, TTraceText /*method*/) {}
inline void CSSaveLogFile(TTraceText /*fileName*/) {}

}  // namespace VXCodeSite_UNT

using VXCodeSite_UNT::CSAddCheckPoint;
using VXCodeSite_UNT::CSAddSeparator;
using VXCodeSite_UNT::CSClear;
using VXCodeSite_UNT::CSEnterMethod;
using VXCodeSite_UNT::CSExitMethod;
using VXCodeSite_UNT::CSFmtScratchPad;
using VXCodeSite_UNT::CSSaveLogFile;
using VXCodeSite_UNT::CSScratchPad;
using VXCodeSite_UNT::CSSendAssigned;
using VXCodeSite_UNT::CSSendAssignedEx;
using VXCodeSite_UNT::CSSendBoolean;
using VXCodeSite_UNT::CSSendBooleanEx;
using VXCodeSite_UNT::CSSendColor;
using VXCodeSite_UNT::CSSendColorEx;
using VXCodeSite_UNT::CSSendComponentState;
using VXCodeSite_UNT::CSSendCurrency;
using VXCodeSite_UNT::CSSendCurrencyEx;
using VXCodeSite_UNT::CSSendDateTime;
using VXCodeSite_UNT::CSSendDateTimeEx;
using VXCodeSite_UNT::CSSendDWord;
using VXCodeSite_UNT::CSSendDWordEx;
using VXCodeSite_UNT::CSSendEnum;
using VXCodeSite_UNT::CSSendEnumEx;
using VXCodeSite_UNT::CSSendError;
using VXCodeSite_UNT::CSSendFloat;
using VXCodeSite_UNT::CSSendFloatEx;
using VXCodeSite_UNT::CSSendFmtError;
using VXCodeSite_UNT::CSSendFmtMsg;
using VXCodeSite_UNT::CSSendFmtMsgEx;
using VXCodeSite_UNT::CSSendFmtNote;
using VXCodeSite_UNT::CSSendFmtWarning;
using VXCodeSite_UNT::CSSendInteger;
using VXCodeSite_UNT::CSSendIntegerEx;
using VXCodeSite_UNT::CSSendMsg;
using VXCodeSite_UNT::CSSendMsgEx;
using VXCodeSite_UNT::CSSendNote;
using VXCodeSite_UNT::CSSendNumAsHex;
using VXCodeSite_UNT::CSSendNumAsHexEx;
using VXCodeSite_UNT::CSSendObject;
using VXCodeSite_UNT::CSSendPoint;
using VXCodeSite_UNT::CSSendPointEx;
using VXCodeSite_UNT::CSSendProperty;
using VXCodeSite_UNT::CSSendRect;
using VXCodeSite_UNT::CSSendRectEx;
using VXCodeSite_UNT::CSSendStream;
using VXCodeSite_UNT::CSSendString;
using VXCodeSite_UNT::CSSendStringEx;
using VXCodeSite_UNT::CSSendStringList;
using VXCodeSite_UNT::CSSendWarning;

}  // namespace vx
