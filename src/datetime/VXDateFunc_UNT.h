// VXDateFunc_UNT.h: the one vocabulary of dates: how they print, and how weeks count.
//
// All controls and all bucket keys print dates by one format, made from the locale's formats: days and months with two
// digits, years as they are, times with two digits each.
//
//   SysDateToStr(45351.75)       // "02/29/2024 06:00:00 PM ", with the blank, in the classic locale
//   SysDateToDateStr(45351.75)   // "02/29/2024"
//
// The locale is asked at each call. Weeks begin on GVXStartOfWeek, which an application may set, as it may
// GVXFirstWeekTriggerDay; 2 (Monday) and 4 give the weeks of ISO 8601.
//
// Main thread only.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "platform/runtime/DateTime.h"
#include "platform/runtime/Exceptions.h"

namespace vx {

/// Every error of this unit.
class EVXDateFuncException : public TNamedException<EVXDateFuncException> {
 public:
  static constexpr const char* kName = "EVXDateFuncException";
  using TNamedException::TNamedException;
};

/// The weekday on which weeks begin: 1 is Sunday, the default; 2 is Monday.
extern std::int32_t GVXStartOfWeek;
/// The day of January that always lies in week 1, and the least number of that week's days in the new year. Default 1.
extern std::int32_t GVXFirstWeekTriggerDay;

namespace VXDateFunc_UNT {

// -- Formats --------------------------------------------------------------------------------------------------------

/// Length of the run of `character`, letter case ignored, from position `start` of `text`. Positions count characters
/// from 1; 0 for a position outside the text.
std::int32_t ComputeNbChar(char character, std::int32_t start, std::string_view text);
/// ShortDateFormat with days and months of two digits; names of days vanish. M/d/yyyy becomes mm/dd/yyyy.
std::string GetDateFormat();
/// LongTimeFormat with two digits each. h:mm:ss AMPM becomes hh:mm:ss AMPM and a blank.
std::string GetTimeFormat();
/// Both, with a blank between.
std::string GetDateTimeFormat();
/// True unless LongTimeFormat holds "AMPM".
bool Is24HoursFormat();

// -- Text -----------------------------------------------------------------------------------------------------------

std::string SysDateToStr(TDateTime date);      ///< by GetDateTimeFormat
std::string SysDateToDateStr(TDateTime date);  ///< by GetDateFormat

// -- Weeks ----------------------------------------------------------------------------------------------------------

/// 1 to 7, counted from GVXStartOfWeek.
std::int32_t GetDayOfWeek(TDateTime date);
/// The day on which the week of `date` begins, at the time of day of `date`.
TDateTime GetFirstDayOfWeek(TDateTime date);
/// Number of the week. `year` is set to the year that the week counts in: the one before for the first days of some
/// Januaries, the one after for the last days of some Decembers. Raises EConvertError if January has no
/// GVXFirstWeekTriggerDay, or the date isn't in the calendar.
std::uint8_t DateToWeekNumber(TDateTime date, std::uint16_t& year);

}  // namespace VXDateFunc_UNT

using VXDateFunc_UNT::ComputeNbChar;
using VXDateFunc_UNT::DateToWeekNumber;
using VXDateFunc_UNT::GetDateFormat;
using VXDateFunc_UNT::GetDateTimeFormat;
using VXDateFunc_UNT::GetDayOfWeek;
using VXDateFunc_UNT::GetFirstDayOfWeek;
using VXDateFunc_UNT::GetTimeFormat;
using VXDateFunc_UNT::Is24HoursFormat;
using VXDateFunc_UNT::SysDateToDateStr;
using VXDateFunc_UNT::SysDateToStr;

}  // namespace vx
