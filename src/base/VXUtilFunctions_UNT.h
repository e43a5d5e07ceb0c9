// VXUtilFunctions_UNT.h: small helpers of the units: numbers as people read them, what a class is, other programs,
// searches for characters.
//
//   FloatToString(1234.5, 2, true)                      // 1,234.50
//   PercentageToString(12.5, 1, true)                   // 12.5 %
//   IsA(editor, &TComponent::StaticClass())             // true
//   catch (const Exception& e) { if (!IsSilentException(e)) ShowMessage(e.Message()); }
//   FindFirstOf("12 h", "dhms")                         // 4
//
// Main thread only.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "platform/runtime/Exceptions.h"
#include "platform/runtime/Interfaces.h"
#include "platform/runtime/Object.h"
#include "platform/system/Process.h"

namespace vx {

/// A form class without its form.
class EVXDfmResourceNotFound : public TNamedException<EVXDfmResourceNotFound> {
 public:
  static constexpr const char* kName = "EVXDfmResourceNotFound";
  using TNamedException::TNamedException;
};

namespace VXUtilFunctions_UNT {

// -- Numbers to text --------------------------------------------------------------------------------------------------

/// Above 999000000000000 with an exponent of four digits, in `decimals` + 1 significant digits; else with `decimals`,
/// and groups of thousands if it is for `display`.
std::string FloatToString(double value, std::int32_t decimals, bool display);
/// `value` is the number of percents, and prints with groups of thousands and " %" if it is for `display`.
std::string PercentageToString(double value, std::int32_t decimals, bool display);

// -- Classes and exceptions -------------------------------------------------------------------------------------------

/// True if `type` or an ancestor has the name of `ancestor`: classes of one name in two modules are one class here.
/// False if either is null.
bool IsChildOf(const TClass* type, const TClass* ancestor);
/// The same for the class of an object, perhaps null.
bool IsA(const TObject* object, const TClass* type);
/// True for EAbort and what derives from it: no word to the user. False for null.
bool IsSilentExceptionClass(const TClass* type);
/// A silent class, or an EOleSysError with GetSilentExceptionErrorCode: an EAbort that came through an interface.
bool IsSilentException(const Exception& error);
/// The result code as which an EAbort leaves an operation of an interface.
HRESULT GetSilentExceptionErrorCode();

/// Checks that a form class has its form, and so have its ancestors up to and with `stop`: a resource of raw data that
/// is named as the class, in any module of the program. If one hasn't, shows a message (platform/system/ShowMessage.h)
/// and raises EVXDfmResourceNotFound with it; the message names `original`, the class that is being made. A null class,
/// or a `stop` that is no ancestor of classes that all have forms, raises ENilAccess.
void CheckClassResource(const TClass* type, const TClass* stop, const TClass* original);

// -- Programs ---------------------------------------------------------------------------------------------------------

/// RunProcess of platform/system/Process.h: starts a program, waits for its end, and answers its exit code. Raises
/// EOSError if it can't be started.
std::int32_t ExecuteAndWait(std::string_view commandLine, TProcessInformation& information);

// -- Characters -------------------------------------------------------------------------------------------------------
// Characters are code points, positions count from 1. O(n log m) for m characters in `set`.

/// Position of the first character that occurs in `set`; 0 if none does.
std::int32_t FindFirstOf(std::string_view text, std::string_view set);
/// Position of the first that doesn't.
std::int32_t FindFirstNotOf(std::string_view text, std::string_view set);

}  // namespace VXUtilFunctions_UNT

using VXUtilFunctions_UNT::CheckClassResource;
using VXUtilFunctions_UNT::ExecuteAndWait;
using VXUtilFunctions_UNT::FindFirstNotOf;
using VXUtilFunctions_UNT::FindFirstOf;
using VXUtilFunctions_UNT::FloatToString;
using VXUtilFunctions_UNT::GetSilentExceptionErrorCode;
using VXUtilFunctions_UNT::IsA;
using VXUtilFunctions_UNT::IsChildOf;
using VXUtilFunctions_UNT::IsSilentException;
using VXUtilFunctions_UNT::IsSilentExceptionClass;
using VXUtilFunctions_UNT::PercentageToString;

}  // namespace vx
