// VXDateFunc_UNT.h: the one vocabulary of dates, times and durations: how they print, how they are read, how weeks
// count.
//
// All controls and all bucket keys print dates by one format, made from the locale's formats: days and months with two
// digits, years as they are, times with two digits each. What a user types is read by one rule, which fills what is
// missing from the clock.
//
//   SysDateToStr(45351.75)             // "02/29/2024 06:00:00 PM ", with the blank, in the classic locale
//   SysDateToDateStr(45351.75)         // "02/29/2024"
//   StrToSysDate("2/29/2024 6:00p", false)  // 45351.75
//   StrToSysDate("12:30", false)       // today at half past twelve
//   DurationToStr(5400, 1, vxduAuto)   // "1.5 h"
//   StrToDuration("1.5 h", vxduMin)    // 5400
//
// The locale is asked at each call. Weeks begin on GVXStartOfWeek, which an application may set, as it may
// GVXFirstWeekTriggerDay; 2 (Monday) and 4 give the weeks of ISO 8601. A duration is a number of seconds; its units are
// fixed lengths, and no calendar is consulted.
//
// Errors. Text that can't be read raises EVXDateFuncException, with one message for all that may be wrong with a date.
//
// Cost. Each call prints or reads in less than a microsecond; a text of any length is read in linear time. Main thread
// only.
#pragma once

#include <array>
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

// -- Settings ---------------------------------------------------------------------------------------------------------

/// The weekday on which weeks begin: 1 is Sunday, the default; 2 is Monday.
extern std::int32_t GVXStartOfWeek;
/// The day of January that always lies in week 1, and the least number of that week's days in the new year. Default 1.
extern std::int32_t GVXFirstWeekTriggerDay;

// -- Units of durations -----------------------------------------------------------------------------------------------

/// The order is the ordinal, indexes the three tables below, and is stored.
enum TVXDurUnit : std::uint8_t {
  vxduAuto,  ///< the coarsest unit that the duration fills; as a factor, a second
  vxduSec,
  vxduMin,
  vxduHour,
  vxduDay,
  vxduWeek,
  vxduMonth,  ///< a twelfth of a year
  vxduYear,   ///< 365 days
};

/// Seconds of a unit.
inline constexpr std::array<std::int32_t, 8> DurValue = {-1, 1, 60, 3600, 86'400, 604'800, 2'628'000, 31'536'000};
/// Codes for stored preferences, never translated. Note that "m" is minutes and "mo" is months.
inline constexpr std::array<std::string_view, 8> PrefDurUnitString = {"a", "s", "m", "h", "d", "w", "mo", "y"};
/// What is shown and typed: the texts 14659 to 14664, 14669 and 14670, loaded when the unit starts and when a
/// translation replaces texts.
extern const std::array<std::string, 8>& DurUnitString;

/// A duration as it was typed.
struct TVXDurationWithUnit {
  double Value = 0;               ///< seconds
  TVXDurUnit DurUnit = vxduAuto;  ///< the unit that the text named, or else the default; vxduAuto for an empty text
};

namespace VXDateFunc_UNT {

// -- Formats and masks ------------------------------------------------------------------------------------------------

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
/// Masks of a masked edit: 9 for a digit, a for a letter. M/d/yyyy gives 99/99/9999. A format that ends in a field of
/// one letter gives a mask without that field.
std::string GetSysDateMask();
std::string GetSysTimeMask();
std::string GetSysDateTimeMask();

// -- Dates to text ----------------------------------------------------------------------------------------------------

std::string SysDateToStr(TDateTime date);      ///< by GetDateTimeFormat
std::string SysDateToDateStr(TDateTime date);  ///< by GetDateFormat
/// The text before the first blank; empty if there is none.
std::string ExtractDate(std::string_view dateTime);
/// The text behind the last blank; all of it if there is none.
std::string ExtractTime(std::string_view dateTime);
/// The date-time mask as it looks with nothing typed.
std::string GetEmptyDateTime();
/// The text with its date blanked, or its time.
std::string GetEmptyDate(std::string_view dateTime);
std::string GetEmptyTime(std::string_view dateTime);

// -- Text to dates ----------------------------------------------------------------------------------------------------

/// Reads a date, a time or both, as a user types them, in the order of the locale's formats. Missing fields of a date
/// come from the clock; missing minutes and seconds are 0; a date without a time carries the present time of day, a
/// time without a date is today's. A year of two digits, where the format has two, is 2000 to 2039 or 1940 to 1999. "p"
/// stands for PM. "*" is now, to the second. Without any field it is 0, or today at midnight with `emptyIsToday`.
///
/// Raises EVXDateFuncException for what can't be read and for dates outside 1970-01-02 to 2038-01-17.
TDateTime StrToSysDate(std::string_view text, bool emptyIsToday);

// -- Durations --------------------------------------------------------------------------------------------------------

/// A number of `decimals` decimals, a blank, and the unit: "1.50 min". Beyond 2 to the power 63 prints as that.
std::string DurationToStr(double seconds, std::int32_t decimals, TVXDurUnit unit);
/// All units that count, from years down: "1 h 1 min 1 s".
std::string DurationToExpandedStr(std::int32_t seconds);
/// Seconds in `unit`.
double GetDurationValue(double seconds, TVXDurUnit unit);
/// A value in `unit` as seconds.
double GetDurInSecond(double value, TVXDurUnit unit);
/// Reads an optional "-", a number, and one of DurUnitString, letter case ignored; without a unit `defaultUnit` counts,
/// where vxduAuto is seconds. No more than 2147483646 seconds either way. Raises EVXDateFuncException, with one message
/// for an unknown unit and one for a wrong number. An empty text is 0.
TVXDurationWithUnit StrToDurationWithUnit(std::string_view text, TVXDurUnit defaultUnit);
/// Its value alone.
double StrToDuration(std::string_view text, TVXDurUnit defaultUnit);
/// The unit of one of PrefDurUnitString, letter case ignored. Raises EVXDateFuncException for another code.
TVXDurUnit GetStrToDurUnit(std::string_view code);
/// The same; vxduAuto for another code.
TVXDurUnit DurUnitPrefStrToDurUnit(std::string_view code);

// -- Weeks ------------------------------------------------------------------------------------------------------------

/// 1 to 7, counted from GVXStartOfWeek.
std::int32_t GetDayOfWeek(TDateTime date);
/// The day on which the week of `date` begins, at the time of day of `date`.
TDateTime GetFirstDayOfWeek(TDateTime date);
/// Number of the week. `year` is set to the year that the week counts in: the one before for the first days of some
/// Januaries, the one after for the last days of some Decembers. Raises EConvertError if January has no
/// GVXFirstWeekTriggerDay, or the date isn't in the calendar. Kept: which years have 53 weeks is settled as for ISO
/// 8601 with any settings; with others than its own, some weeks change their number at the turn of the year.
std::uint8_t DateToWeekNumber(TDateTime date, std::uint16_t& year);

// -- Start and end ----------------------------------------------------------------------------------------------------

/// Loads DurUnitString and sets the two settings of weeks to 1, on the first of several calls. The program's start
/// makes the first.
void InitializeUnit();
/// Releases DurUnitString on the last of as many calls. The program's end makes the last.
void FinalizeUnit();

}  // namespace VXDateFunc_UNT

using VXDateFunc_UNT::ComputeNbChar;
using VXDateFunc_UNT::DateToWeekNumber;
using VXDateFunc_UNT::DurationToExpandedStr;
using VXDateFunc_UNT::DurationToStr;
using VXDateFunc_UNT::DurUnitPrefStrToDurUnit;
using VXDateFunc_UNT::ExtractDate;
using VXDateFunc_UNT::ExtractTime;
using VXDateFunc_UNT::GetDateFormat;
using VXDateFunc_UNT::GetDateTimeFormat;
using VXDateFunc_UNT::GetDayOfWeek;
using VXDateFunc_UNT::GetDurationValue;
using VXDateFunc_UNT::GetDurInSecond;
using VXDateFunc_UNT::GetEmptyDate;
using VXDateFunc_UNT::GetEmptyDateTime;
using VXDateFunc_UNT::GetEmptyTime;
using VXDateFunc_UNT::GetFirstDayOfWeek;
using VXDateFunc_UNT::GetStrToDurUnit;
using VXDateFunc_UNT::GetSysDateMask;
using VXDateFunc_UNT::GetSysDateTimeMask;
using VXDateFunc_UNT::GetSysTimeMask;
using VXDateFunc_UNT::GetTimeFormat;
using VXDateFunc_UNT::Is24HoursFormat;
using VXDateFunc_UNT::StrToDuration;
using VXDateFunc_UNT::StrToDurationWithUnit;
using VXDateFunc_UNT::StrToSysDate;
using VXDateFunc_UNT::SysDateToDateStr;
using VXDateFunc_UNT::SysDateToStr;

}  // namespace vx
